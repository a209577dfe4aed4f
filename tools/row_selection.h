// Which rows of a table are wanted, which of their columns, in which order and how many: the options that list and rows
// have alike, and the rows that meet them.
//
// Rows go by one after another; memory does not grow with the table (tools/row_scan.h).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jet/sql/query.h"
#include "tools/open_file.h"
#include "tools/row_condition.h"
#include "tools/row_printer.h"

namespace tools {

class Declaration;

struct SelectionOptions {
    std::vector<std::string> where;
    std::optional<std::string> columns;
    std::optional<std::string> sort;
    std::optional<std::string> from;
    std::optional<std::string> to;
    std::optional<int> limit;

    void declare(Declaration& declaration);
};

class RowSelection {
public:
    // `columns`: those to be shown where the options choose none; empty: all of the table's. UsageError for options
    // that do not go with the table.
    RowSelection(jet::Database& database, jet::Table& table, const SelectionOptions& options,
                 const Names& columns = {});

    const Names& names() const { return names_; }
    // Calls `visit` with each row of the table, or of the statement's rows, until it returns false.
    void for_each(const RowVisitor& visit, const std::string& statement = {}) const;

private:
    std::size_t position_of(const std::string& column) const;
    void choose_columns(const Names& columns);
    void parse_order(const std::string& text);
    void add_span(const SelectionOptions& options);
    bool matches(const jet::RowView& row) const;
    Row row_of(const jet::RowView& row) const;

    jet::Database& database_;
    jet::Table& table_;
    Names names_;
    std::vector<std::optional<std::size_t>> positions_;  // by name; none: the file lacks the column
    std::vector<RowCondition> conditions_;
    std::vector<jet::sql::OrderKey> order_;
    std::optional<std::size_t> limit_;
};

// "a, b" cut at the commas.
Names split_list(const std::string& text);

}  // namespace tools

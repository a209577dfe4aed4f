// Rows of named values on standard output, in the forms that the commands offer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "tools/names.h"

namespace tools {

using Row = std::vector<jet::Value>;

// Takes a row; false when no more are wanted.
using RowVisitor = std::function<bool(const Row& row)>;

enum class RowFormat { kPlain, kCsv, kJson };

// Row after row: plain with tabs between the values, CSV with a line of names, or one JSON array. Nothing is printed
// before the first row or the end.
class RowPrinter {
public:
    RowPrinter(RowFormat format, Names names);
    void print(const Row& row);
    // Once, behind the last row.
    void finish();

private:
    void begin();

    RowFormat format_;
    Names names_;
    bool has_begun_ = false;
    bool any_ = false;
};

// Prints what `rows` gives to its argument, as long as somebody takes it. What came before a failure is printed as a
// whole.
void print_rows(RowPrinter& printer, const std::function<void(const RowVisitor&)>& rows);

// One row by itself: a line per value, CSV, or one JSON object.
void print_record(RowFormat format, const Names& names, const Row& row);
// The rows with the wanted ones of their columns only.
std::vector<Row> chosen(const Names& columns, const std::vector<Row>& rows, const Names& wanted);
// For people: columns as wide as what stands in them, each line indented.
void print_aligned(const Names& names, const std::vector<Row>& rows);

}  // namespace tools

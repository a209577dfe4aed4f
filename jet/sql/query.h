// Jet SQL: SELECT over one table, as far as hosts use it. Errors surface when a query is prepared.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/candidates.h"
#include "jet/tables/database.h"

namespace jet::sql {

struct ResultColumn {
    std::u16string name;  // column name or alias
    ColumnType type = ColumnType::kLong;
    std::uint16_t length_bytes = 0;
    std::size_t position = 0;  // in the table's columns (not for SUM)
};

struct OrderKey {
    std::size_t position = 0;
    bool descending = false;
};

// A statement bound to its table. Parsing is cached by the statement's shape (its text without the
// values of its literals).
class Query {
public:
    // Errors: 3061, 3075, 3078, 3117, 3122, 3129, 3131, 3138, 3141, 3142, 3145, 3464.
    static Query prepare(Database& database, std::u16string_view statement);
    Query(Query&&) noexcept;
    Query& operator=(Query&&) noexcept;
    ~Query();

    Table& table() const;
    const std::vector<ResultColumn>& columns() const;
    bool is_aggregate() const;  // SELECT SUM(...)
    bool has_condition() const;
    // Whether the row meets the condition (true only; unknown is no).
    bool matches(const RowView& row) const;
    // As above, of a row that the column's map has given for `span`.
    bool matches(const RowView& row, const MapSpan& span) const;
    // A span worth using instead of a scan: an equality on a Long column, else a range on a Date column.
    std::optional<MapSpan> span() const;
    const std::vector<OrderKey>& order() const;
    // SUM over all matching rows: Null over nothing, a double, or a Currency for currency columns.
    Value aggregate() const;

private:
    struct Impl;
    explicit Query(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

}  // namespace jet::sql

// A statement's condition bound to a table's columns and the literals of one text, and its evaluation.
#pragma once

#include <optional>
#include <vector>

#include "jet/schema/table_def.h"
#include "jet/sql/lexer.h"
#include "jet/sql/like.h"
#include "jet/sql/statement.h"

namespace jet::sql {

// Three-valued logic: AND is the smaller, OR the larger of two.
enum class Truth : std::uint8_t { kFalse, kUnknown, kTrue };

// Where the values of one row come from; `position` counts the table's columns.
class ValueSource {
public:
    virtual ~ValueSource() = default;
    virtual Value value(std::size_t position) const = 0;
    virtual bool is_null(std::size_t position) const = 0;
};

struct Binding {
    std::vector<std::uint32_t> positions;  // by column of the statement
    std::vector<Literal> literals;
    std::vector<std::optional<LikePattern>> patterns;  // by LIKE of the statement; none: taken from each row
};

// Errors: 3061 for an unknown column, 3464 for values that cannot be compared, 3075 for a bad pattern, 3117
// and 3122 for the sort keys.
Binding bind_statement(const Statement& statement, const TableDef& def, std::vector<Literal> literals);

// Of the whole condition; kTrue when there is none. Reads only columns that the condition names.
Truth evaluate(const Statement& statement, const Binding& binding, const ValueSource& row);

}  // namespace jet::sql

// Binds a parsed statement to a table's columns and to the literals of one text.
#pragma once

#include <optional>
#include <vector>

#include "jet/schema/table_def.h"
#include "jet/sql/lexer.h"
#include "jet/sql/like.h"
#include "jet/sql/statement.h"

namespace jet::sql {

struct Binding {
    std::vector<std::uint32_t> positions;  // by column of the statement
    std::vector<Literal> literals;
    std::vector<std::optional<LikePattern>> patterns;  // by LIKE of the statement; none: taken from each row
};

// Errors: 3061 for an unknown column, 3464 for values that cannot be compared, 3075 for a bad pattern, 3117
// and 3122 for the sort keys.
Binding bind_statement(const Statement& statement, const TableDef& def, std::vector<Literal> literals);

}  // namespace jet::sql

// The one place that knows a table's name in the place of a statement.
#pragma once

#include "jet/sql/lexer.h"
#include "jet/tables/database.h"

namespace jet::sql {

// The table that the text names, as hosts may give it: alone, in brackets or with blanks in it; null for a statement.
// 3078 and 3129 where it is neither.
Table* table_instead_of_statement(Database& database, const Lexed& lexed);

}  // namespace jet::sql

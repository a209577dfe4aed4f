// From tokens to a statement, by the grammar
//
//   statement  := SELECT (* | SUM ( column ) [AS name]) FROM table [WHERE expr] [ORDER BY key {, key}] [;]
//   expr       := and-expr {OR and-expr}
//   and-expr   := not-expr {AND not-expr}
//   not-expr   := [NOT] primary
//   primary    := ( expr ) | operand comparison
//   comparison := (= | <> | < | > | <= | >=) operand | [NOT] LIKE operand | IS [NOT] NULL
//   operand    := column | number | text | date | NULL
//   key        := column [ASC | DESC]
#pragma once

#include <memory>

#include "jet/sql/lexer.h"
#include "jet/sql/statement.h"

namespace jet::sql {

// Errors: 3075, 3122, 3131, 3138, 3141, 3142, 3145. The first token must be SELECT.
std::shared_ptr<const Statement> parse(const Lexed& lexed);

// As parse(), from the process-wide cache when a statement of this shape was parsed before. Any thread.
std::shared_ptr<const Statement> parse_cached(const Lexed& lexed);

// The statement that was remembered under a frame (jet/sql/skim.h); null when there is none. Any thread.
std::shared_ptr<const Statement> recall_statement(const std::u16string& frame);
void remember_statement(std::u16string frame, std::shared_ptr<const Statement> statement);

// The statement for a table's whole content, as when a host gives a table's name instead of a statement.
std::shared_ptr<const Statement> whole_table(std::u16string_view table);

}  // namespace jet::sql

// The statements of the component: SELECT * FROM [table] with a condition made of clauses.
//
// Values are inserted unescaped: a double quote inside a text value breaks the statement, and the
// wildcards of LIKE inside one are wildcards. Both are part of the published behaviour.
#pragma once

#include <kvdb/com.h>
#include <kvdb/ctime.h>

#include <string>

namespace studio {

// SELECT * FROM [table]
std::string whole_table(const char* table);
// SELECT * FROM [table] WHERE [column]=value
std::string rows_where(const char* table, const char* column, LONG value);
// SELECT * FROM [table] WHERE [column]="text"
std::string rows_named(const char* table, const char* column, const char* text);
// SELECT SUM(summed) AS [total] FROM [table] WHERE [column]=value
std::string sum_where(const char* summed, const char* table, const char* column, LONG value);

// The text between a clause and the one before it.
enum class Join {
    kAnd,
    kNone,  // nothing; the engine refuses such a statement. One filter needs it.
};

// A statement built clause by clause: " WHERE " before the first, the join before every other.
class Statement {
public:
    explicit Statement(const char* table) : text_(whole_table(table)) {}
    void add(const std::string& clause, Join join = Join::kAnd);
    const std::string& text() const { return text_; }

private:
    std::string text_;
    bool has_condition_ = false;
};

// Clauses. Dates are calendar dates between "#" marks.
namespace clause {

std::string equals(const char* column, LONG value);          // [c]=5
std::string equals(const char* column, const char* text);    // [c]="t"
std::string like(const char* column, const char* pattern);   // [c] LIKE "t"
std::string contains(const char* column, const char* text);  // [c] LIKE "*t*"
std::string contains(const char* column, LONG value);        // [c] LIKE "*5*"
std::string equals_or_zero(const char* column, LONG value);  // ([c]=5 OR [c]=0)
// One contains clause per number of a list "2;5", joined by OR, in parentheses. n separators make n + 1 numbers, an
// empty piece is 0; an empty list gives "()".
std::string contains_any(const char* column, const char* list);
std::string on_or_after(const char* column, CTime date);   // [c]>=#03/01/2005#
std::string on_or_before(const char* column, CTime date);  // [c]<=#03/01/2005#
// [c]>=#...# AND [c]<=#...# ORDER BY [c] ASC (or DESC): must be the last clause.
std::string ordered_span(const char* column, CTime from, CTime to, bool descending);

}  // namespace clause

}  // namespace studio

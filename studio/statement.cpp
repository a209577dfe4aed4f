#include "studio/statement.h"

#include <initializer_list>
#include <string_view>

#include "afx/number_text.h"
#include "db/values.h"

namespace studio {
namespace {

// Concatenates the parts.
std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    std::size_t length = 0;
    for (const std::string_view part : parts) length += part.size();
    text.reserve(length);
    for (const std::string_view part : parts) text += part;
    return text;
}

std::string date_clause(const char* column, const char* comparison, CTime date) {
    return joined({"[", column, "]", comparison, "#", db::date_text(date).GetString(), "#"});
}

}  // namespace

std::string whole_table(const char* table) { return joined({"SELECT * FROM [", table, "]"}); }

std::string rows_where(const char* table, const char* column, LONG value) {
    return joined({"SELECT * FROM [", table, "] WHERE ", clause::equals(column, value)});
}

std::string rows_named(const char* table, const char* column, const char* text) {
    return joined({"SELECT * FROM [", table, "] WHERE ", clause::equals(column, text)});
}

std::string sum_where(const char* summed, const char* table, const char* column, LONG value) {
    return joined({"SELECT SUM(", summed, ") AS [total] FROM [", table, "] WHERE ", clause::equals(column, value)});
}

void Statement::add(const std::string& clause, Join join) {
    if (!has_condition_) {
        text_ += " WHERE ";
    } else if (join == Join::kAnd) {
        text_ += " AND ";
    }
    text_ += clause;
    has_condition_ = true;
}

namespace clause {

std::string equals(const char* column, LONG value) { return joined({"[", column, "]=", std::to_string(value)}); }

std::string equals(const char* column, const char* text) { return joined({"[", column, "]=\"", text, "\""}); }

std::string like(const char* column, const char* pattern) { return joined({"[", column, "] LIKE \"", pattern, "\""}); }

std::string contains(const char* column, const char* text) { return joined({"[", column, "] LIKE \"*", text, "*\""}); }

std::string contains(const char* column, LONG value) { return contains(column, std::to_string(value).c_str()); }

std::string equals_or_zero(const char* column, LONG value) {
    return joined({"(", equals(column, value), " OR ", equals(column, LONG{0}), ")"});
}

std::string contains_any(const char* column, const char* list) {
    std::string_view rest(list);
    std::string group = "(";
    bool more = !rest.empty();
    while (more) {
        const std::size_t end = rest.find(';');
        if (group.size() > 1) group += " OR ";
        group += contains(column, LONG{afx::integer_of(rest.substr(0, end))});
        more = end != std::string_view::npos;
        if (more) rest.remove_prefix(end + 1);
    }
    return group + ")";
}

std::string on_or_after(const char* column, CTime date) { return date_clause(column, ">=", date); }

std::string on_or_before(const char* column, CTime date) { return date_clause(column, "<=", date); }

std::string ordered_span(const char* column, CTime from, CTime to, bool descending) {
    return joined({on_or_after(column, from), " AND ", on_or_before(column, to), " ORDER BY [", column,
                   descending ? "] DESC" : "] ASC"});
}

}  // namespace clause

}  // namespace studio

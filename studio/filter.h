// Turns the record given to an enumeration into a condition: the declaration of a filter, and the statement
// built from it.
//
// A clause applies when its member is set: an integer other than 0, a non-empty text, a date whose
// flag bit is set, a mode member with the clause's value. Clauses follow the order of their declaration.
#pragma once

#include <kvdb/cstring.h>

#include <span>
#include <string>

#include "studio/statement.h"

namespace studio {

template <class Record>
struct Clause {
    enum class Form {
        kEquals,
        kEqualsText,
        kLike,
        kContains,
        kContainsNumber,
        kEqualsOrZero,
        kContainsAny,
        kOnOrAfter,
        kOnOrBefore,
        kOrderedSpan,
    };

    Form form = Form::kEquals;
    const char* column = nullptr;
    LONG Record::*number = nullptr;  // for a date range: the mode, or null when the clause always applies
    CString Record::*text = nullptr;
    CTime Record::*from = nullptr;  // also the date of the one-sided forms
    CTime Record::*to = nullptr;
    DWORD Record::*flags = nullptr;
    DWORD bit = 0;
    LONG mode = 0;
    bool descending = false;
    Join join = Join::kAnd;

    bool applies(const Record& record) const {
        if (flags != nullptr) return (record.*flags & bit) != 0;
        if (form == Form::kOrderedSpan) return number == nullptr || record.*number == mode;
        if (text != nullptr) return !(record.*text).IsEmpty();
        return record.*number != 0;
    }

    std::string sql(const Record& record) const {
        switch (form) {
            case Form::kEquals: return clause::equals(column, record.*number);
            case Form::kEqualsText: return clause::equals(column, (record.*text).GetString());
            case Form::kLike: return clause::like(column, record.*text);
            case Form::kContains: return clause::contains(column, (record.*text).GetString());
            case Form::kContainsNumber: return clause::contains(column, record.*number);
            case Form::kEqualsOrZero: return clause::equals_or_zero(column, record.*number);
            case Form::kContainsAny: return clause::contains_any(column, record.*text);
            case Form::kOnOrAfter: return clause::on_or_after(column, record.*from);
            case Form::kOnOrBefore: return clause::on_or_before(column, record.*from);
            case Form::kOrderedSpan: return clause::ordered_span(column, record.*from, record.*to, descending);
        }
        return {};
    }
};

// Declarations of clauses: filter::equals("ClientID", &ProjInfo::ClientID).
namespace filter {

template <class R>
constexpr Clause<R> equals(const char* column, LONG R::*member, Join join = Join::kAnd) {
    return {.form = Clause<R>::Form::kEquals, .column = column, .number = member, .join = join};
}
template <class R>
constexpr Clause<R> equals(const char* column, CString R::*member) {
    return {.form = Clause<R>::Form::kEqualsText, .column = column, .text = member};
}
template <class R>
constexpr Clause<R> like(const char* column, CString R::*member) {
    return {.form = Clause<R>::Form::kLike, .column = column, .text = member};
}
template <class R>
constexpr Clause<R> contains(const char* column, CString R::*member) {
    return {.form = Clause<R>::Form::kContains, .column = column, .text = member};
}
template <class R>
constexpr Clause<R> contains(const char* column, LONG R::*member) {
    return {.form = Clause<R>::Form::kContainsNumber, .column = column, .number = member};
}
template <class R>
constexpr Clause<R> equals_or_zero(const char* column, LONG R::*member) {
    return {.form = Clause<R>::Form::kEqualsOrZero, .column = column, .number = member};
}
// A list of numbers separated by ";".
template <class R>
constexpr Clause<R> contains_any(const char* column, CString R::*member) {
    return {.form = Clause<R>::Form::kContainsAny, .column = column, .text = member};
}
template <class R>
constexpr Clause<R> on_or_after(const char* column, CTime R::*member, DWORD R::*flags, DWORD bit) {
    return {.form = Clause<R>::Form::kOnOrAfter, .column = column, .from = member, .flags = flags, .bit = bit};
}
template <class R>
constexpr Clause<R> on_or_before(const char* column, CTime R::*member, DWORD R::*flags, DWORD bit) {
    return {.form = Clause<R>::Form::kOnOrBefore, .column = column, .from = member, .flags = flags, .bit = bit};
}
enum class Order { kAscending, kDescending };
// Always applies. Must be the last clause of its filter, because it ends with ORDER BY.
template <class R>
constexpr Clause<R> ordered_span(const char* column, CTime R::*from, CTime R::*to, Order order) {
    return {.form = Clause<R>::Form::kOrderedSpan,
            .column = column,
            .from = from,
            .to = to,
            .descending = order == Order::kDescending};
}
// As above, but applies when the member has this value.
template <class R>
constexpr Clause<R> ordered_span(const char* column, CTime R::*from, CTime R::*to, Order order, LONG R::*mode,
                                 LONG value) {
    return {.form = Clause<R>::Form::kOrderedSpan,
            .column = column,
            .number = mode,
            .from = from,
            .to = to,
            .mode = value,
            .descending = order == Order::kDescending};
}

}  // namespace filter

// The key of a table: its auto-number column and the record's member.
template <class Record>
struct Key {
    const char* column = nullptr;
    LONG Record::*member = nullptr;
};

enum class FilterRule {
    kClauses,           // the clauses only
    kKeyBeforeClauses,  // a key other than 0 replaces all clauses
    kParent,            // the first clause always applies, also with 0; there are no others
};
enum class WhenNothingIsSet { kWholeTable, kNoRows };

// The statement for a record. With kNoRows, a record with nothing set selects key 0, which no row has.
template <class Record>
std::string filter_statement(const char* table, const Key<Record>& key, FilterRule rule,
                             std::span<const Clause<Record>> clauses, const Record& record,
                             WhenNothingIsSet otherwise = WhenNothingIsSet::kWholeTable) {
    if (rule == FilterRule::kParent) return rows_where(table, clauses[0].column, record.*clauses[0].number);
    if (rule == FilterRule::kKeyBeforeClauses && record.*key.member != 0) {
        return rows_where(table, key.column, record.*key.member);
    }
    Statement statement(table);
    bool any = false;
    for (const Clause<Record>& clause : clauses) {
        if (!clause.applies(record)) continue;
        statement.add(clause.sql(record), clause.join);
        any = true;
    }
    if (!any && otherwise == WhenNothingIsSet::kNoRows) return rows_where(table, key.column, 0);
    return statement.text();
}

}  // namespace studio

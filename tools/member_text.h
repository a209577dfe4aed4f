// Members of records as the user writes them and as they are shown: whole numbers, decimal amounts, dates as
// YYYY-MM-DD (with THH:MM where a table keeps the time of day) and texts in UTF-8.
//
// A date that is none (a negative count) is Null when shown and an empty text when written.
#pragma once

#include <kvdb/kvdb.h>

#include <string>

#include "jet/base/types.h"
#include "studio/columns.h"

namespace tools {

// A member's text as UTF-8 and back.
std::string to_utf8(const CString& text);
CString from_utf8(const std::string& text);

// A 32-bit decimal number; UsageError that names `what` when it is none.
LONG parse_number(const std::string& what, const std::string& text);

jet::Value shown(const CString& member);
jet::Value shown(LONG member);
jet::Value shown(float member);
jet::Value shown(CTime member, studio::Conversion conversion);

// They set the member, or throw a UsageError that names it: for what is no value of its kind, and for one that would
// come back as another.
void parse(const std::string& name, const std::string& text, CString& member);
void parse(const std::string& name, const std::string& text, LONG& member);
void parse(const std::string& name, const std::string& text, studio::Conversion conversion, float& member);
void parse(const std::string& name, const std::string& text, studio::Conversion conversion, CTime& member);

// The same for the member that a column declares.
template <class Record>
jet::Value shown(const Record& record, const studio::Column<Record>& column) {
    if (column.text != nullptr) return shown(record.*column.text);
    if (column.number != nullptr) return shown(record.*column.number);
    if (column.time != nullptr) return shown(record.*column.time, column.conversion);
    return shown(record.*column.amount);
}

template <class Record>
void parse(const std::string& text, const studio::Column<Record>& column, Record& record) {
    if (column.text != nullptr) {
        parse(column.name, text, record.*column.text);
    } else if (column.number != nullptr) {
        parse(column.name, text, record.*column.number);
    } else if (column.time != nullptr) {
        parse(column.name, text, column.conversion, record.*column.time);
    } else {
        parse(column.name, text, column.conversion, record.*column.amount);
    }
}

}  // namespace tools

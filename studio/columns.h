// The mapping between the current row and a record, in both directions: lists of columns in the order in which the
// engine is called, and the conversion of every kind of member.
#pragma once

#include <kvdb/cstring.h>
#include <kvdb/ctime.h>

#include <cstddef>
#include <span>
#include <vector>

#include "afx/dao_recordset.h"
#include "afx/exchanged_member.h"

namespace studio {

enum class Conversion {
    kText,
    kInteger,  // written as VT_I4, read as text and parsed
    kDate,     // the calendar date, without the time of day
    kDateToTheMinute,
    kCurrency,        // a float, split into currency; read as currency text and parsed
    kCurrencyByText,  // the same, but read from the value's own text
    kSingle,          // a float, stored as VT_R4; read as text and parsed
};

// A column and the record's member mapped to it; exactly one member pointer is not null.
template <class Record>
struct Column {
    const char* name = nullptr;
    Conversion conversion = Conversion::kText;
    CString Record::*text = nullptr;
    LONG Record::*number = nullptr;
    CTime Record::*time = nullptr;
    float Record::*amount = nullptr;
};

// Declarations of columns: column::text("Name", &ProjInfo::Name).
namespace column {

template <class R>
constexpr Column<R> text(const char* name, CString R::*member) {
    return {.name = name, .conversion = Conversion::kText, .text = member};
}
template <class R>
constexpr Column<R> integer(const char* name, LONG R::*member) {
    return {.name = name, .conversion = Conversion::kInteger, .number = member};
}
template <class R>
constexpr Column<R> date(const char* name, CTime R::*member) {
    return {.name = name, .conversion = Conversion::kDate, .time = member};
}
template <class R>
constexpr Column<R> date_to_the_minute(const char* name, CTime R::*member) {
    return {.name = name, .conversion = Conversion::kDateToTheMinute, .time = member};
}
template <class R>
constexpr Column<R> currency(const char* name, float R::*member) {
    return {.name = name, .conversion = Conversion::kCurrency, .amount = member};
}
template <class R>
constexpr Column<R> currency_by_text(const char* name, float R::*member) {
    return {.name = name, .conversion = Conversion::kCurrencyByText, .amount = member};
}
template <class R>
constexpr Column<R> single(const char* name, float R::*member) {
    return {.name = name, .conversion = Conversion::kSingle, .amount = member};
}

}  // namespace column

// Convert one value, of the field at a position; throw CDaoException*.
void read_value(CDaoRecordset& rows, int field, CString& member);
void read_value(CDaoRecordset& rows, int field, LONG& member);
void read_value(CDaoRecordset& rows, int field, Conversion conversion, CTime& member);
void read_value(CDaoRecordset& rows, int field, Conversion conversion, float& member);
void write_value(CDaoRecordset& rows, int field, const CString& member);
void write_value(CDaoRecordset& rows, int field, LONG member);
void write_value(CDaoRecordset& rows, int field, Conversion conversion, CTime member);
void write_value(CDaoRecordset& rows, int field, Conversion conversion, float member);

// Whether an error concerns one column: the column does not accept the value, or does not exist.
bool is_failed_mapping(const CDaoException& error);

// Calls visit(member) with the member of the column.
template <class Record, class Owner, class Visit>
void visit_member(const Column<Record>& column, Owner& record, Visit&& visit) {
    if (column.text != nullptr) {
        visit(record.*column.text);
    } else if (column.number != nullptr) {
        visit(record.*column.number);
    } else if (column.time != nullptr) {
        visit(record.*column.time);
    } else {
        visit(record.*column.amount);
    }
}

// How the exchange of fields sees a column whose member lies `offset` bytes behind its record's beginning.
afx::ExchangedMember exchanged_member(const char* name, Conversion conversion, std::size_t offset);

template <class Record>
const afx::FieldExchange& exchange_of(CDaoRecordset& rows, std::span<const Column<Record>> columns,
                                      const Record& record) {
    return rows.GetFieldExchange(columns, [&record](std::span<const Column<Record>> bound) {
        std::vector<afx::ExchangedMember> members;
        for (const Column<Record>& column : bound) {
            visit_member(column, record, [&](const auto& member) {
                const auto offset = reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&record);
                members.push_back(exchanged_member(column.name, column.conversion, static_cast<std::size_t>(offset)));
            });
        }
        return members;
    });
}

// Runs `mapping`; E_FAIL for the failure of a column, whose exception is deleted. Everything else that goes wrong, lack
// of memory first of all, is no matter of a column and goes on its way.
template <class Mapping>
HRESULT mapped(Mapping&& mapping) {
    try {
        mapping();
        return S_OK;
    } catch (CDaoException* e) {
        if (!is_failed_mapping(*e)) throw;
        e->Delete();
        return E_FAIL;
    }
}

template <class Record>
void read_by_value(CDaoRecordset& rows, int field, const Column<Record>& column, Record& record) {
    if (column.text != nullptr) {
        read_value(rows, field, record.*column.text);
    } else if (column.number != nullptr) {
        read_value(rows, field, record.*column.number);
    } else if (column.time != nullptr) {
        read_value(rows, field, column.conversion, record.*column.time);
    } else {
        read_value(rows, field, column.conversion, record.*column.amount);
    }
}

template <class Record>
void write_by_value(CDaoRecordset& rows, int field, const Column<Record>& column, const Record& record) {
    if (column.text != nullptr) {
        write_value(rows, field, record.*column.text);
    } else if (column.number != nullptr) {
        write_value(rows, field, record.*column.number);
    } else if (column.time != nullptr) {
        write_value(rows, field, column.conversion, record.*column.time);
    } else {
        write_value(rows, field, column.conversion, record.*column.amount);
    }
}

// Reads the columns of the current row into the record. Of a failure the members before it keep their new
// contents.
template <class Record>
HRESULT read_columns(CDaoRecordset& rows, std::span<const Column<Record>> columns, Record& record) {
    return mapped([&] {
        const afx::FieldExchange& exchange = exchange_of(rows, columns, record);
        for (std::size_t i = 0; (i = rows.ReadFields(exchange, i, &record)) < columns.size(); ++i) {
            read_by_value(rows, rows.GetExchangedField(exchange, i), columns[i], record);
        }
    });
}

// Sets the columns in the edit buffer. After a failure the columns before the failed one stay set; after an exception
// nothing of the buffer may be saved.
template <class Record>
HRESULT write_columns(CDaoRecordset& rows, std::span<const Column<Record>> columns, const Record& record) {
    return mapped([&] {
        const afx::FieldExchange& exchange = exchange_of(rows, columns, record);
        for (std::size_t i = 0; (i = rows.WriteFields(exchange, i, &record)) < columns.size(); ++i) {
            write_by_value(rows, rows.GetExchangedField(exchange, i), columns[i], record);
        }
    });
}

}  // namespace studio

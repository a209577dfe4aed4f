#include "studio/columns.h"

#include "afx/engine_errors.h"
#include "db/values.h"

namespace studio {
namespace {

db::TimeOfDay precision_of(Conversion conversion) {
    return conversion == Conversion::kDateToTheMinute ? db::TimeOfDay::kToTheMinute : db::TimeOfDay::kDropped;
}

CTime calendar_date(DATE days) { return db::time_of(COleDateTime(days), db::TimeOfDay::kDropped); }
CTime minute(DATE days) { return db::time_of(COleDateTime(days), db::TimeOfDay::kToTheMinute); }
float amount(CY stored) { return db::float_of(COleCurrency(stored)); }

bool days_of(CTime time, DATE& days, db::TimeOfDay precision) {
    const COleVariant value = db::date_value(time, precision);
    days = value.date;
    return value.vt == VT_DATE;
}
bool calendar_days(CTime time, DATE& days) { return days_of(time, days, db::TimeOfDay::kDropped); }
bool days_to_the_minute(CTime time, DATE& days) { return days_of(time, days, db::TimeOfDay::kToTheMinute); }
CY stored_amount(float value) { return db::currency_of(value); }

}  // namespace

afx::ExchangedMember exchanged_member(const char* name, Conversion conversion, std::size_t offset) {
    using Type = afx::ExchangedMember::Type;
    afx::ExchangedMember member{.column = name, .offset = offset};
    switch (conversion) {
        case Conversion::kText: member.type = Type::kText; break;
        case Conversion::kInteger: member.type = Type::kInteger; break;
        case Conversion::kDate:
            member.type = Type::kTime;
            member.time_of = calendar_date;
            member.days_of = calendar_days;
            break;
        case Conversion::kDateToTheMinute:
            member.type = Type::kTime;
            member.time_of = minute;
            member.days_of = days_to_the_minute;
            break;
        case Conversion::kCurrency:
        case Conversion::kCurrencyByText:
            member.type = Type::kAmount;
            member.amount_of = amount;
            member.stored_amount_of = stored_amount;
            break;
        case Conversion::kSingle: break;  // a float has digits that its text has not
    }
    return member;
}

bool is_failed_mapping(const CDaoException& error) {
    switch (error.m_pErrorInfo->m_lErrorCode) {
        case afx::errors::kTextTooLong:
        case afx::errors::kNotUpdatable:
        case afx::errors::kNotInCollection:
        case afx::errors::kBadConversion: return true;
        default: return false;
    }
}

void read_value(CDaoRecordset& rows, int field, CString& member) {
    COleVariant value;
    rows.GetFieldValue(field, value);
    if (value.vt == VT_BSTR) {
        member = reinterpret_cast<const char*>(value.bstrVal);  // copies the conversion's bytes
    } else {
        member = db::value_to_text(value);
    }
}

void read_value(CDaoRecordset& rows, int field, LONG& member) {
    COleVariant value;
    rows.GetFieldValue(field, value);
    member = db::value_to_integer(value);
}

void read_value(CDaoRecordset& rows, int field, Conversion conversion, CTime& member) {
    COleVariant value;
    rows.GetFieldValue(field, value);
    member = db::time_of(COleDateTime(value), precision_of(conversion));
}

void read_value(CDaoRecordset& rows, int field, Conversion conversion, float& member) {
    COleVariant value;
    rows.GetFieldValue(field, value);
    member = conversion == Conversion::kCurrency ? db::float_of(COleCurrency(value)) : db::value_to_float(value);
}

void write_value(CDaoRecordset& rows, int field, const CString& member) {
    rows.SetFieldValue(field, member.GetString());
}

void write_value(CDaoRecordset& rows, int field, LONG member) { rows.SetFieldValue(field, COleVariant(member, VT_I4)); }

void write_value(CDaoRecordset& rows, int field, Conversion conversion, CTime member) {
    rows.SetFieldValue(field, db::date_value(member, precision_of(conversion)));
}

void write_value(CDaoRecordset& rows, int field, Conversion conversion, float member) {
    if (conversion == Conversion::kSingle) {
        rows.SetFieldValue(field, COleVariant(member));
    } else {
        rows.SetFieldValue(field, COleVariant(db::currency_of(member)));
    }
}

}  // namespace studio

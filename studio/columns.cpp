#include "studio/columns.h"

#include "afx/engine_errors.h"
#include "db/values.h"

namespace studio {
namespace {

db::TimeOfDay precision_of(Conversion conversion) {
    return conversion == Conversion::kDateToTheMinute ? db::TimeOfDay::kToTheMinute : db::TimeOfDay::kDropped;
}

}  // namespace

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
    if (rows.GetFieldText(field, member)) return;
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

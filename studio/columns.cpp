#include "studio/columns.h"

#include "db/values.h"

namespace studio {
namespace {

db::TimeOfDay precision_of(Conversion conversion) {
    return conversion == Conversion::kDateToTheMinute ? db::TimeOfDay::kToTheMinute : db::TimeOfDay::kDropped;
}

}  // namespace

void read_value(CDaoRecordset& rows, const char* column, CString& member) {
    COleVariant value;
    rows.GetFieldValue(column, value);
    if (value.vt == VT_BSTR) {
        member = reinterpret_cast<const char*>(value.bstrVal);  // what the conversion gives, into the member's memory
    } else {
        member = db::value_to_text(value);
    }
}

void read_value(CDaoRecordset& rows, const char* column, LONG& member) {
    COleVariant value;
    rows.GetFieldValue(column, value);
    member = db::value_to_integer(value);
}

void read_value(CDaoRecordset& rows, const char* column, Conversion conversion, CTime& member) {
    COleVariant value;
    rows.GetFieldValue(column, value);
    member = db::time_of(COleDateTime(value), precision_of(conversion));
}

void read_value(CDaoRecordset& rows, const char* column, Conversion conversion, float& member) {
    COleVariant value;
    rows.GetFieldValue(column, value);
    member = conversion == Conversion::kCurrency ? db::float_of(COleCurrency(value)) : db::value_to_float(value);
}

void write_value(CDaoRecordset& rows, const char* column, const CString& member) {
    rows.SetFieldValue(column, member.GetString());
}

void write_value(CDaoRecordset& rows, const char* column, LONG member) {
    rows.SetFieldValue(column, COleVariant(member, VT_I4));
}

void write_value(CDaoRecordset& rows, const char* column, Conversion conversion, CTime member) {
    rows.SetFieldValue(column, db::date_value(member, precision_of(conversion)));
}

void write_value(CDaoRecordset& rows, const char* column, Conversion conversion, float member) {
    if (conversion == Conversion::kSingle) {
        rows.SetFieldValue(column, COleVariant(member));
    } else {
        rows.SetFieldValue(column, COleVariant(db::currency_of(member)));
    }
}

}  // namespace studio

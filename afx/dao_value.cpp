#include "afx/dao_value.h"

#include <cmath>
#include <cstdio>

#include "jet/base/error.h"
#include "os/system.h"

namespace afx {
namespace {

// {xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}; the first three groups are little-endian numbers.
std::string guid_text(const jet::Guid& guid) {
    constexpr char kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "{";
    for (const char index : kOrder) {
        if (index < 0) {
            text += '-';
            continue;
        }
        const std::uint8_t byte = guid.bytes[static_cast<std::size_t>(index)];
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text + "}";
}

double numeric_value(const jet::Numeric& numeric) {
    double value = 0;
    for (std::size_t word = 0; word < 4; ++word) {
        std::uint32_t bits = 0;
        for (std::size_t byte = 4; byte-- > 0;) bits = bits << 8 | numeric.bytes[1 + word * 4 + byte];
        value = value * 4294967296.0 + bits;
    }
    value /= std::pow(10.0, numeric.scale);
    return (numeric.bytes[0] & 0x80) != 0 ? -value : value;
}

struct Writer {
    COleVariant& out;

    void operator()(const jet::Null&) const {
        out.Clear();
        out.vt = VT_NULL;
    }
    void operator()(bool value) const { out = COleVariant(value ? 1 : 0, VT_BOOL); }
    void operator()(std::uint8_t value) const { out = COleVariant(static_cast<BYTE>(value)); }
    void operator()(std::int16_t value) const { out = COleVariant(static_cast<short>(value)); }
    // The types of most columns are written in place.
    void operator()(std::int32_t value) const {
        out.Clear();
        out.vt = VT_I4;
        out.lVal = value;
    }
    void operator()(const jet::Currency& value) const {
        out.Clear();
        out.vt = VT_CY;
        out.cyVal.int64 = value.ten_thousandths;
    }
    void operator()(float value) const { out = COleVariant(value); }
    void operator()(double value) const { out = COleVariant(value); }
    void operator()(const jet::Date& value) const {
        out.Clear();
        out.vt = VT_DATE;
        out.date = value.days;
    }
    void operator()(const std::u16string& value) const { out.SetText(std::u16string_view(value)); }
    void operator()(const jet::Guid& value) const { out.SetText(guid_text(value)); }
    void operator()(const jet::Numeric& value) const { out = COleVariant(numeric_value(value)); }
    void operator()(const std::vector<std::uint8_t>&) const {
        jet::fail(jet::errors::kBadConversion, "Binary columns cannot be read through variants.");
    }
};

}  // namespace

void to_variant(const jet::Value& value, COleVariant& out) { std::visit(Writer{out}, value); }

bool to_variant(jet::ByteSpan stored, jet::ColumnType type, COleVariant& out) {
    switch (type) {
        case jet::ColumnType::kLong: Writer{out}(jet::load_i32(stored, 0)); return true;
        case jet::ColumnType::kCurrency: Writer{out}(jet::Currency{jet::load_i64(stored, 0)}); return true;
        case jet::ColumnType::kDate: Writer{out}(jet::Date{jet::load_f64(stored, 0)}); return true;
        default: return false;
    }
}

jet::Value to_value(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_EMPTY:
        case VT_NULL: return jet::Null{};
        case VT_UI1: return static_cast<std::uint8_t>(variant.bVal);
        case VT_I2: return static_cast<std::int16_t>(variant.iVal);
        case VT_I4: return static_cast<std::int32_t>(variant.lVal);
        case VT_BOOL: return variant.boolVal != 0;
        case VT_R4: return variant.fltVal;
        case VT_R8: return variant.dblVal;
        case VT_CY: return jet::Currency{variant.cyVal.int64};
        case VT_DATE: return jet::Date{variant.date};
        case VT_BSTR: return os::widen(variant_text(variant));
        default: jet::fail(jet::errors::kBadConversion, "A value of this type cannot be stored.");
    }
}

}  // namespace afx

#include "db/values.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "afx/number_text.h"
#include "os/system.h"

namespace db {
namespace {

constexpr DWORD kNoFlags = 0;
constexpr LCID kUserLocale = 0x400;

// By type number; null where a type has no name.
constexpr const char* kTypeNames[] = {
    "VT_EMPTY", "VT_NULL",     "VT_I2",    "VT_I4",        "VT_R4",      "VT_R8",          "VT_CY",    "VT_DATE",
    "VT_BSTR",  "VT_DISPATCH", "VT_ERROR", "VT_BOOL",      "VT_VARIANT", "VT_UNKNOWN",     nullptr,    nullptr,
    "VT_I1",    "VT_UI1",      "VT_UI2",   "VT_UI4",       "VT_I8",      "VT_UI8",         "VT_INT",   "VT_UINT",
    "VT_VOID",  "VT_HRESULT",  "VT_PTR",   "VT_SAFEARRAY", "VT_CARRAY",  "VT_USERDEFINED", "VT_LPSTR", "VT_LPWSTR",
};
constexpr VARTYPE kFirstLateName = 64;
constexpr const char* kLateTypeNames[] = {
    "VT_FILETIME",      "VT_BLOB",        "VT_STREAM", "VT_STORAGE", "VT_STREAMED_OBJECT",
    "VT_STORED_OBJECT", "VT_BLOB_OBJECT", "VT_CF",     "VT_CLSID",
};

const char* type_name(VARTYPE type) {
    if (type < std::size(kTypeNames)) return kTypeNames[type];
    if (type >= kFirstLateName && type - kFirstLateName < static_cast<int>(std::size(kLateTypeNames))) {
        return kLateTypeNames[type - kFirstLateName];
    }
    return nullptr;
}

CString byte_text(BYTE value) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const char text[] = {'0', 'x', kDigits[value >> 4], kDigits[value & 15], 0};
    return text;
}

// The text of the type as given, flags included.
CString plain_text(const VARIANT& value) {
    switch (value.vt) {
        case VT_EMPTY:
        case VT_NULL: return {};
        case VT_I2: return std::to_string(value.iVal).c_str();
        case VT_I4: return std::to_string(value.lVal).c_str();
        case VT_R4: return afx::fixed6_text(value.fltVal).c_str();
        case VT_R8: return afx::exponent_text(value.dblVal).c_str();
        case VT_CY: return COleCurrency(value.cyVal).Format(kNoFlags, kUserLocale);
        case VT_DATE: return COleDateTime(value.date).Format("%d/%m/%Y");
        case VT_BSTR: return reinterpret_cast<const char*>(value.bstrVal);
        case VT_BOOL: return truth_text(value.boolVal);
        case VT_UI1: return byte_text(value.bVal);
        default: break;
    }
    const char* name = type_name(value.vt);
    return name != nullptr ? name : "Fish";
}

}  // namespace

std::string_view text_within(std::string_view text, std::size_t most_bytes) {
    constexpr std::size_t kMostBytesOfCharacter = 4;
    if (text.size() <= most_bytes) return text;
    for (std::size_t cut = 0; cut < kMostBytesOfCharacter && cut < most_bytes; ++cut) {
        const std::string_view begin = text.substr(0, most_bytes - cut);
        if (os::narrow(os::widen(begin)) == begin) return begin;
    }
    return text.substr(0, most_bytes);
}

CString truth_text(LONG value) { return value != 0 ? "TRUE" : "FALSE"; }

CString value_to_text(const VARIANT& value) {
    CString text = plain_text(value);
    const VARTYPE flags = value.vt & (VT_ARRAY | VT_BYREF);
    if (flags == 0) return text;
    if ((flags & VT_ARRAY) != 0) text = "Array of ";
    if ((flags & VT_BYREF) != 0) text += "Pointer to ";
    if (const char* name = type_name(static_cast<VARTYPE>(value.vt & ~flags)); name != nullptr) text += name;
    return text;
}

LONG value_to_integer(const VARIANT& value) {
    if (value.vt == VT_I4) return value.lVal;  // round trip through its text
    return afx::integer_of(value_to_text(value).GetString());
}

float value_to_float(const VARIANT& value) {
    return static_cast<float>(afx::double_of(value_to_text(value).GetString()));
}

int float_to_currency(float value, LONG* whole, LONG* ten_thousandths) {
    const double wide = value;
    if (!std::isfinite(wide) || std::abs(wide) >= 0x1p63) {
        *whole = std::numeric_limits<LONG>::min();
        *ten_thousandths = 0;
        return 0;
    }
    // Values beyond 32 bits keep the low 32, as the conversion always did.
    *whole = static_cast<LONG>(static_cast<std::uint32_t>(static_cast<std::int64_t>(wide)));
    // Exact: a float with a fraction has at most 24 bits.
    const double rest = std::abs(wide - *whole);
    *ten_thousandths =
        rest >= 0x1p24 ? 0 : static_cast<LONG>(static_cast<std::int64_t>(std::floor(rest * 10000 + 0.5)) % 10000);
    return 0;
}

COleCurrency currency_of(float value) {
    LONG whole = 0;
    LONG ten_thousandths = 0;
    float_to_currency(value, &whole, &ten_thousandths);
    return COleCurrency(whole, ten_thousandths);
}

float float_of(const COleCurrency& amount) {
    // Equals the conversion through text: an amount that a double holds exactly is divided with the same single
    // rounding.
    constexpr std::int64_t kExact = std::int64_t{1} << 53;
    if (amount.m_status == COleCurrency::valid && amount.m_cur.int64 <= kExact && amount.m_cur.int64 >= -kExact) {
        return static_cast<float>(static_cast<double>(amount.m_cur.int64) / 10000.0);
    }
    return static_cast<float>(afx::double_of(amount.Format(kNoFlags, kUserLocale).GetString()));
}

CString date_text(CTime time) {
    const auto two_digits = [](int value) { return std::string(value < 10 ? "0" : "") + std::to_string(value); };
    const std::string separator = os::date_separator();
    return (two_digits(time.GetMonth()) + separator + two_digits(time.GetDay()) + separator +
            std::to_string(time.GetYear()))
        .c_str();
}

COleVariant date_value(CTime time, TimeOfDay precision) {
    COleVariant value;
    std::tm parts{};
    if (time.GetLocalTm(&parts) == nullptr) {
        value.vt = VT_NULL;
        return value;
    }
    const bool with_time = precision == TimeOfDay::kToTheMinute;
    return COleVariant(COleDateTime(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                                    with_time ? parts.tm_hour : 0, with_time ? parts.tm_min : 0, 0));
}

CTime time_of(const COleDateTime& date, TimeOfDay precision) {
    COleDateTime::Parts parts;
    if (!date.GetParts(parts)) return CTime(-1);
    const bool with_time = precision == TimeOfDay::kToTheMinute;
    return CTime(parts.year, parts.month, parts.day, with_time ? parts.hour : 0, with_time ? parts.minute : 0, 0);
}

}  // namespace db

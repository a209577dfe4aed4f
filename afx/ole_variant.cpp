#include "afx/ole_variant.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <string>

#include "afx/number_text.h"
#include "os/system.h"

static_assert(sizeof(COleVariant) == sizeof(VARIANT), "a COleVariant is handed on as a VARIANT");

namespace {

// `from` null: the characters are the caller's to fill in.
BSTR new_text(const char* from, std::size_t count) {
    if (count > std::numeric_limits<std::int32_t>::max() - 64u) throw std::bad_alloc();
    BSTR result = SysAllocStringByteLen(from, static_cast<UINT>(count));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

BSTR new_text(std::string_view text) { return new_text(text.data() != nullptr ? text.data() : "", text.size()); }

// A plain number held by the variant; none for text and everything else.
std::optional<double> plain_number(const VARIANT& source) {
    switch (source.vt) {
        case VT_EMPTY: return 0.0;
        case VT_I2: return source.iVal;
        case VT_I4: return source.lVal;
        case VT_R4: return source.fltVal;
        case VT_R8: return source.dblVal;
        case VT_CY: return static_cast<double>(source.cyVal.int64) / 10000.0;
        case VT_DATE: return source.date;
        case VT_BOOL: return source.boolVal != 0 ? -1.0 : 0.0;
        case VT_UI1: return source.bVal;
        default: return std::nullopt;
    }
}

std::optional<std::string> text_of(const VARIANT& source) {
    switch (source.vt) {
        case VT_EMPTY: return std::string();
        case VT_BSTR: return std::string(afx::variant_text(source));
        case VT_BOOL: return std::string(source.boolVal != 0 ? "True" : "False");
        case VT_CY: return afx::currency_text(source.cyVal.int64);
        case VT_DATE: {
            const COleDateTime moment(source.date);
            if (moment.GetYear() < 0) return std::nullopt;
            const bool midnight = moment.GetHour() == 0 && moment.GetMinute() == 0 && moment.GetSecond() == 0;
            return std::string(moment.Format(midnight ? "%d/%m/%Y" : "%d/%m/%Y %H:%M:%S"));
        }
        case VT_R4: return afx::general_text(source.fltVal);
        default: break;
    }
    const std::optional<double> number = plain_number(source);
    if (!number) return std::nullopt;
    return afx::general_text(*number);
}

template <class Integer>
bool to_integer(double value, Integer& result) {
    std::int64_t whole = 0;
    if (!afx::round_to_int64(value, whole)) return false;
    if (whole < std::numeric_limits<Integer>::min() || whole > std::numeric_limits<Integer>::max()) return false;
    result = static_cast<Integer>(whole);
    return true;
}

bool to_currency(const VARIANT& source, double value, std::int64_t& result) {
    if (source.vt == VT_CY) {
        result = source.cyVal.int64;
        return true;
    }
    if (source.vt == VT_BSTR) return afx::parse_currency(afx::variant_text(source), result);
    return afx::round_to_int64(value * 10000.0, result);
}

}  // namespace

namespace afx {

std::string_view variant_text(const VARIANT& source) noexcept {
    if (source.bstrVal == nullptr) return {};
    return {reinterpret_cast<const char*>(source.bstrVal), SysStringByteLen(source.bstrVal)};
}

bool convert_variant(const VARIANT& source, VARTYPE type, VARIANT& result) {
    if (type == VT_BSTR || type == VT_BSTRT) {
        const std::optional<std::string> text = text_of(source);
        if (!text) return false;
        VariantInit(&result);
        result.bstrVal = new_text(*text);
        result.vt = VT_BSTR;
        return true;
    }
    double value = 0;
    if (source.vt == VT_BSTR) {
        const std::string_view text = variant_text(source);
        if (type == VT_BOOL && (text == "True" || text == "False")) {
            value = text == "True" ? -1 : 0;
        } else if (!parse_double(text, value)) {
            return false;
        }
    } else if (const std::optional<double> number = plain_number(source)) {
        value = *number;
    } else {
        return false;
    }
    VARIANT converted;
    VariantInit(&converted);
    bool converts = true;
    switch (type) {
        case VT_I2: converts = to_integer(value, converted.iVal); break;
        case VT_I4: converts = to_integer(value, converted.lVal); break;
        case VT_UI1: converts = to_integer(value, converted.bVal); break;
        case VT_BOOL: converted.boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE; break;
        case VT_R8: converted.dblVal = value; break;
        case VT_R4:
            converts = !(std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max());
            if (converts) converted.fltVal = source.vt == VT_R4 ? source.fltVal : static_cast<float>(value);
            break;
        case VT_CY: {
            std::int64_t amount = 0;
            converts = to_currency(source, value, amount);
            converted.cyVal.int64 = amount;
            break;
        }
        case VT_DATE:
            // Dates keep whatever count they hold; only other numbers are checked.
            converts = source.vt == VT_DATE || (value > -657435.0 && value < 2958466.0);
            converted.date = value;
            break;
        default: return false;
    }
    if (!converts) return false;
    converted.vt = type;
    result = converted;
    return true;
}

}  // namespace afx

COleVariant::COleVariant(const VARIANT& source) {
    init(VT_EMPTY);
    const HRESULT result = VariantCopy(this, const_cast<VARIANT*>(&source));
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(result)) throw new COleException(result);
}

COleVariant::COleVariant(const COleVariant& source) : COleVariant(static_cast<const VARIANT&>(source)) {}

COleVariant::COleVariant(COleVariant&& source) noexcept : VARIANT(source) { source.init(VT_EMPTY); }

COleVariant::COleVariant(const char* text, VARTYPE) {
    init(VT_BSTR);
    bstrVal = new_text(text != nullptr ? text : "");
}

COleVariant::COleVariant(BYTE value) noexcept {
    init(VT_UI1);
    bVal = value;
}

COleVariant::COleVariant(short value, VARTYPE type) noexcept {
    init(type);
    if (type == VT_BOOL) {
        boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        iVal = value;
    }
}

COleVariant::COleVariant(int value, VARTYPE type) noexcept {
    init(type);
    if (type == VT_BOOL) {
        boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        lVal = value;
    }
}

COleVariant::COleVariant(float value) noexcept {
    init(VT_R4);
    fltVal = value;
}

COleVariant::COleVariant(double value) noexcept {
    init(VT_R8);
    dblVal = value;
}

COleVariant::COleVariant(const COleCurrency& value) noexcept {
    init(VT_CY);
    cyVal = value.m_cur;
}

COleVariant::COleVariant(const COleDateTime& value) noexcept {
    init(VT_DATE);
    date = value.m_dt;
}

void COleVariant::SetText(std::string_view text) {
    BSTR fresh = new_text(text);
    Clear();
    vt = VT_BSTR;
    bstrVal = fresh;
}

void COleVariant::SetText(std::u16string_view text) {
    BSTR fresh = new_text(nullptr, text.size());
    if (!os::narrow_ascii(text, reinterpret_cast<char*>(fresh))) {
        SysFreeString(fresh);
        fresh = new_text(os::narrow(text));
    }
    Clear();
    vt = VT_BSTR;
    bstrVal = fresh;
}

void COleVariant::ChangeType(VARTYPE type, const VARIANT* source) {
    if (type == VT_BSTRT) type = VT_BSTR;
    if (source == nullptr) source = this;
    if (source->vt == type) {
        if (source != this) *this = COleVariant(*source);
        return;
    }
    COleVariant converted;
    if (!afx::convert_variant(*source, type, converted)) throw new COleException(DISP_E_TYPEMISMATCH);
    *this = std::move(converted);
}

// The conversions, and where results go back to. What the caller owns is changed by give_back only.
#include "frame/arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/wide_text.h"

namespace frame {

namespace {

constexpr std::size_t kMaxNameCharacters = 255;
constexpr std::size_t kMaxBytesPerCharacter = 4;

// The variant behind a reference to a variant; `from` itself where it is none.
VARIANT& behind_reference(VARIANT& from) {
    const bool is_reference = from.vt == (VT_BYREF | VT_VARIANT) && from.pvarVal != nullptr;
    return is_reference ? *from.pvarVal : from;
}

template <class Value>
Value read(const void* from) {
    Value value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

HRESULT rounded(double value, std::int64_t& number) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (!(value > -kLimit - 1 && value < kLimit)) return DISP_E_OVERFLOW;
    number = static_cast<std::int64_t>(std::nearbyint(value));
    return S_OK;
}

HRESULT rounded(const DECIMAL& decimal, std::int64_t& number) {
    constexpr double kTwoTo64 = 18446744073709551616.0;
    const double value = (decimal.Hi32 * kTwoTo64 + static_cast<double>(decimal.Lo64)) / std::pow(10.0, decimal.scale);
    return rounded((decimal.sign & 0x80) != 0 ? -value : value, number);
}

HRESULT parsed(BSTR wide, std::int64_t& number) {
    const std::string narrow = to_narrow(wide);
    std::string_view text = narrow;
    const auto is_blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);

    const char* const end = text.data() + text.size();
    const auto whole = std::from_chars(text.data(), end, number);
    if (whole.ptr == end && whole.ec == std::errc()) return S_OK;
    double value = 0;
    const auto real = std::from_chars(text.data(), end, value);
    if (real.ptr != end || real.ec == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    return real.ec == std::errc() ? rounded(value, number) : DISP_E_OVERFLOW;
}

// The whole number of a value of type `type` that lies at `data`.
HRESULT number_at(VARTYPE type, const void* data, std::int64_t& number) {
    switch (type) {
        case VT_I1: number = read<std::int8_t>(data); return S_OK;
        case VT_UI1: number = read<std::uint8_t>(data); return S_OK;
        case VT_I2: number = read<std::int16_t>(data); return S_OK;
        case VT_UI2: number = read<std::uint16_t>(data); return S_OK;
        case VT_I4:
        case VT_INT: number = read<std::int32_t>(data); return S_OK;
        case VT_UI4:
        case VT_UINT: number = read<std::uint32_t>(data); return S_OK;
        case VT_I8: number = read<std::int64_t>(data); return S_OK;
        case VT_UI8: {
            const std::uint64_t value = read<std::uint64_t>(data);
            if (value > static_cast<std::uint64_t>(INT64_MAX)) return DISP_E_OVERFLOW;
            number = static_cast<std::int64_t>(value);
            return S_OK;
        }
        case VT_INT_PTR: number = read<LONG_PTR>(data); return S_OK;
        case VT_UINT_PTR: return number_at(sizeof(void*) == sizeof(LONGLONG) ? VT_UI8 : VT_UI4, data, number);
        case VT_BOOL: number = read<VARIANT_BOOL>(data) != 0 ? VARIANT_TRUE : VARIANT_FALSE; return S_OK;
        case VT_R4: return rounded(read<float>(data), number);
        case VT_R8:
        case VT_DATE: return rounded(read<double>(data), number);
        case VT_CY: return rounded(static_cast<double>(read<std::int64_t>(data)) / 10000, number);
        case VT_DECIMAL: return rounded(read<DECIMAL>(data), number);
        case VT_BSTR: return parsed(read<BSTR>(data), number);
        default: return DISP_E_TYPEMISMATCH;
    }
}

// Stores `number` where a by-reference integer variant points.
HRESULT store_through(const VARIANT& reference, LONG number) {
    switch (reference.vt & ~VT_BYREF) {
        case VT_I2:
            if (number < INT16_MIN || number > INT16_MAX) return DISP_E_OVERFLOW;
            *reference.piVal = static_cast<SHORT>(number);
            return S_OK;
        case VT_I4:
        case VT_INT:
        case VT_UI4:
        case VT_UINT: *reference.plVal = number; return S_OK;
        case VT_I8:
        case VT_UI8: *reference.pllVal = number; return S_OK;
        case VT_R8: *reference.pdblVal = number; return S_OK;
        default: return DISP_E_TYPEMISMATCH;
    }
}

bool takes_integers(VARTYPE type) {
    return type == VT_I2 || type == VT_I4 || type == VT_INT || type == VT_UI4 || type == VT_UINT || type == VT_I8 ||
           type == VT_UI8 || type == VT_R8;
}

}  // namespace

HRESULT whole_number(const VARIANT& from, std::int64_t& number) {
    const VARIANT& value = behind_reference(const_cast<VARIANT&>(from));
    if (value.vt == VT_EMPTY) {
        number = 0;
        return S_OK;
    }
    // A decimal fills the whole variant but for the type.
    if (value.vt == VT_DECIMAL) return number_at(value.vt, &value.decVal, number);
    if ((value.vt & VT_BYREF) == 0) return number_at(value.vt, &value.llVal, number);
    if (value.byref == nullptr) return DISP_E_TYPEMISMATCH;
    return number_at(static_cast<VARTYPE>(value.vt & ~VT_BYREF), value.byref, number);
}

bool is_wide_integer(const VARIANT& from) {
    const VARIANT& value = behind_reference(const_cast<VARIANT&>(from));
    switch (value.vt & ~VT_BYREF) {
        case VT_I8:
        case VT_UI8: return true;
        case VT_INT_PTR:
        case VT_UINT_PTR: return sizeof(void*) == sizeof(LONGLONG);
        default: return false;
    }
}

HRESULT Argument<LONG*>::take(VARIANT& from) {
    target_ = &behind_reference(from);
    if ((target_->vt & VT_BYREF) != 0) {
        if (target_->byref == nullptr || !takes_integers(static_cast<VARTYPE>(target_->vt & ~VT_BYREF))) {
            return DISP_E_TYPEMISMATCH;
        }
    } else if (target_ == &from && from.vt != VT_I4) {
        return DISP_E_TYPEMISMATCH;
    }
    std::int64_t number = 0;
    if (SUCCEEDED(whole_number(*target_, number)) && number == static_cast<LONG>(number)) {
        number_ = static_cast<LONG>(number);
    }
    before_ = number_;
    return S_OK;
}

// A method may store its number and fail all the same.
HRESULT Argument<LONG*>::give_back(bool is_stored) {
    if (!is_stored && number_ == before_) return S_OK;
    if ((target_->vt & VT_BYREF) != 0) return store_through(*target_, number_);
    const HRESULT result = VariantClear(target_);
    if (FAILED(result)) return result;
    target_->vt = VT_I4;
    target_->lVal = number_;
    return S_OK;
}

HRESULT Argument<LPSTR>::take(VARIANT& from) {
    VARIANT& source = behind_reference(from);
    if (&source != &from) target_variant_ = &source;
    BSTR wide = nullptr;
    if (source.vt == VT_BSTR) {
        wide = source.bstrVal;
    } else if (source.vt == (VT_BYREF | VT_BSTR) && source.pbstrVal != nullptr) {
        wide = *source.pbstrVal;
        target_text_ = source.pbstrVal;
    } else if (source.vt != VT_EMPTY) {
        return DISP_E_TYPEMISMATCH;
    }
    const std::string narrow = to_narrow(wide);
    buffer_.fill(narrow, std::max(narrow.size(), kMaxNameCharacters * kMaxBytesPerCharacter) + 1);
    before_ = narrow;
    return S_OK;
}

HRESULT Argument<LPSTR>::give_back(bool succeeded) {
    if (!succeeded || (target_text_ == nullptr && target_variant_ == nullptr)) return S_OK;
    buffer_.data()[buffer_.size() - 1] = '\0';
    if (before_ == buffer_.data()) return S_OK;
    const BSTR wide = to_bstr(buffer_.data());
    if (wide == nullptr) return E_OUTOFMEMORY;
    if (target_text_ != nullptr) {
        SysFreeString(*target_text_);
        *target_text_ = wide;
        return S_OK;
    }
    VariantClear(target_variant_);
    target_variant_->vt = VT_BSTR;
    target_variant_->bstrVal = wide;
    return S_OK;
}

HRESULT Argument<BSTR>::take(VARIANT& from) {
    const VARIANT& source = behind_reference(from);
    if (source.vt == VT_BSTR) {
        text_ = source.bstrVal;
    } else if (source.vt == (VT_BYREF | VT_BSTR) && source.pbstrVal != nullptr) {
        text_ = *source.pbstrVal;
    } else if (source.vt != VT_EMPTY) {
        return DISP_E_TYPEMISMATCH;
    }
    return S_OK;
}

}  // namespace frame

// One argument of an automation call on its way into a method and back. An Argument is made for the
// method's parameter type, takes the caller's variant, hands the method its value, and gives back what
// the method has stored:
//
//     Argument<LONG> a;  HRESULT result = a.take(variant);  method(a.value());  a.give_back(succeeded);
//
// `take` answers DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW for a value that cannot be converted; the
// caller's variant is changed by `give_back` only.
#pragma once

#include <kvdb/com.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>

#include "frame/text_buffer.h"

namespace frame {

// A whole number from any numeric variant, a numeric text, or a reference to one. Fractions are rounded
// to the nearest, halves to the even number.
HRESULT whole_number(const VARIANT& from, std::int64_t& number);

// Whether the variant, or what it refers to, is an integer of 64 bits.
bool is_wide_integer(const VARIANT& from);

template <class Parameter>
class Argument;

// Identifiers and record addresses. An address is as wide as a pointer: where that is 64 bits, whatever is narrower or
// no integer is none, but for 0, the null address.
template <std::signed_integral Parameter>
class Argument<Parameter> {
public:
    HRESULT take(VARIANT& from) {
        std::int64_t number = 0;
        const HRESULT result = whole_number(from, number);
        if (FAILED(result)) return result;
        if (sizeof(Parameter) > sizeof(LONG) && number != 0 && !is_wide_integer(from)) return DISP_E_TYPEMISMATCH;
        if (number < std::numeric_limits<Parameter>::min() || number > std::numeric_limits<Parameter>::max()) {
            return DISP_E_OVERFLOW;
        }
        value_ = static_cast<Parameter>(number);
        return S_OK;
    }
    Parameter value() const { return value_; }
    HRESULT give_back(bool) { return S_OK; }

private:
    Parameter value_ = 0;
};

// Out integers: a reference to an integer or to a variant, which becomes VT_I4. A plain VT_I4 is
// accepted too; the caller's argument itself then holds the result. Of a method that fails, a changed number is given
// back, and an unchanged one where `give_back` is told that the method always stores one.
template <>
class Argument<LONG*> {
public:
    HRESULT take(VARIANT& from);
    LONG* value() { return &number_; }
    HRESULT give_back(bool is_stored);

private:
    VARIANT* target_ = nullptr;
    LONG number_ = 0;
    LONG before_ = 0;
};

// Narrow texts, in a buffer with room for 255 characters however many bytes one takes. What the method
// writes goes back into a reference to a BSTR or a variant; a plain BSTR is only read.
template <>
class Argument<LPSTR> {
public:
    HRESULT take(VARIANT& from);
    LPSTR value() { return buffer_.data(); }
    HRESULT give_back(bool succeeded);

private:
    VARIANT* target_variant_ = nullptr;
    BSTR* target_text_ = nullptr;
    TextBuffer buffer_;
    std::string before_;
};

// Wide texts; the caller keeps the BSTR.
template <>
class Argument<BSTR> {
public:
    HRESULT take(VARIANT& from);
    BSTR value() const { return text_; }
    HRESULT give_back(bool) { return S_OK; }

private:
    BSTR text_ = nullptr;
};

}  // namespace frame

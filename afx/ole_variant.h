// COleVariant: a VARIANT that frees and copies what it owns.
//
// Invariants
//  1. Text is narrow: the bytes of a BSTR are characters of the system's code page, its length counts
//     bytes. VT_BSTR and VT_BSTRT mean the same, and the stored type is always VT_BSTR.
//  2. Whole numbers are 32 bits wide whatever C type they come from.
//  3. Bytes of the payload that the type does not use are zero, so reading another member than the type's
//     own is harmless.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>
#include <kvdb/dao_exception.h>

#include <string_view>
#include <utility>

#include "afx/ole_currency.h"
#include "afx/ole_date_time.h"

// Asks for narrow text; never stored.
inline constexpr VARTYPE VT_BSTRT = 82;

// The characters of a text variant, ended by a zero byte.
inline LPSTR V_BSTRT(const VARIANT* variant) { return reinterpret_cast<LPSTR>(variant->bstrVal); }

// Thrown by pointer when a conversion between variant types fails.
class COleException final : public CException {
public:
    explicit COleException(SCODE scode) : m_sc(scode) {}
    SCODE m_sc;
};

class COleVariant : public VARIANT {
public:
    COleVariant() noexcept { init(VT_EMPTY); }
    COleVariant(const VARIANT& source);
    COleVariant(const COleVariant& source);
    COleVariant(COleVariant&& source) noexcept;
    // `type` is VT_BSTR or VT_BSTRT; null text gives an empty one.
    COleVariant(const char* text, VARTYPE type = VT_BSTRT);
    COleVariant(BYTE value) noexcept;
    // VT_I2 or VT_BOOL.
    COleVariant(short value, VARTYPE type = VT_I2) noexcept;
    // VT_I4, VT_ERROR or VT_BOOL.
    COleVariant(int value, VARTYPE type = VT_I4) noexcept;
    COleVariant(unsigned value, VARTYPE type = VT_I4) noexcept : COleVariant(static_cast<int>(value), type) {}
    COleVariant(long value, VARTYPE type = VT_I4) noexcept : COleVariant(static_cast<int>(value), type) {}
    COleVariant(unsigned long value, VARTYPE type = VT_I4) noexcept : COleVariant(static_cast<int>(value), type) {}
    COleVariant(float value) noexcept;
    COleVariant(double value) noexcept;
    // The status of an amount or a moment does not travel.
    COleVariant(const COleCurrency& value) noexcept;
    COleVariant(const COleDateTime& value) noexcept;
    ~COleVariant() { Clear(); }

    COleVariant& operator=(COleVariant source) noexcept {
        std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(source));
        return *this;
    }

    // VT_EMPTY afterwards.
    void Clear() noexcept {
        if (vt > VT_DATE) VariantClear(this);  // the types up to it own nothing
        init(VT_EMPTY);
    }
    // Text of these bytes, zero bytes included.
    void SetText(std::string_view text);
    // The engine's text, in the narrow code page.
    void SetText(std::u16string_view text);
    // Converts `source` (null: this value) to `type`. Throws a COleException when that fails; this value
    // is then as it was.
    void ChangeType(VARTYPE type, const VARIANT* source = nullptr);

private:
    void init(VARTYPE type) noexcept {
        VariantInit(this);
        llVal = 0;
        vt = type;
    }
};

namespace afx {

// Converts between the plain types (numbers, VT_BOOL, VT_CY, VT_DATE, text) without regard to any locale;
// VT_EMPTY converts as 0 or "". False for anything else, VT_NULL included. A text result in `result` is
// the caller's to free; `result` must own nothing before.
bool convert_variant(const VARIANT& source, VARTYPE type, VARIANT& result);

// The bytes of a text variant.
std::string_view variant_text(const VARIANT& source) noexcept;

}  // namespace afx

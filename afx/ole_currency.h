// COleCurrency: an amount in ten-thousandths with a status.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>

#include <cstdint>

class COleCurrency {
public:
    enum CurrencyStatus { valid = 0, invalid = 1, null = 2 };

    // 0, valid.
    COleCurrency() noexcept { m_cur.int64 = 0; }
    explicit COleCurrency(CY amount) noexcept : m_cur(amount) {}
    // VT_CY as it is, other types converted; what does not convert (VT_NULL included) gives 0, invalid.
    explicit COleCurrency(const VARIANT& source) { *this = source; }
    // As SetCurrency.
    COleCurrency(LONG units, LONG fractional_units) { SetCurrency(units, fractional_units); }

    COleCurrency& operator=(const VARIANT& source);

    // units + fractional_units / 10000; the two are signed, so opposite signs subtract.
    void SetCurrency(LONG units, LONG fractional_units) noexcept;

    CurrencyStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(CurrencyStatus status) noexcept { m_status = status; }
    operator CY() const noexcept { return m_cur; }

    // The amount with up to four decimals and the sign "." whatever the locale is, so that atof gives it
    // back; "" when null, a text without a number when invalid. `flags` and `locale` have no effect.
    CString Format(DWORD flags = 0, LCID locale = 0x400) const;

    bool operator==(const COleCurrency& other) const noexcept {
        return m_status == other.m_status && m_cur.int64 == other.m_cur.int64;
    }

    CY m_cur;
    CurrencyStatus m_status = valid;
};

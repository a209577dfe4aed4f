#include "afx/ole_currency.h"

#include "afx/number_text.h"
#include "afx/ole_variant.h"

COleCurrency& COleCurrency::operator=(const VARIANT& source) {
    VARIANT converted;
    VariantInit(&converted);
    const bool converts = afx::convert_variant(source, VT_CY, converted);
    m_cur.int64 = converts ? converted.cyVal.int64 : 0;
    m_status = converts ? valid : invalid;
    return *this;
}

void COleCurrency::SetCurrency(LONG units, LONG fractional_units) noexcept {
    m_cur.int64 = static_cast<std::int64_t>(units) * 10000 + fractional_units;
    m_status = valid;
}

CString COleCurrency::Format(DWORD, LCID) const {
    if (m_status == null) return {};
    if (m_status == invalid) return "Invalid Currency";
    return afx::currency_text(m_cur.int64).c_str();
}

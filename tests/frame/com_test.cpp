// The small COM set against the platform's layouts and values, the exception class and the records.
#include <kvdb/kvdb.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

TEST(Com, layouts_are_the_platforms) {
    EXPECT_EQ(sizeof(GUID), 16u);
    EXPECT_EQ(sizeof(OLECHAR), 2u);
    EXPECT_EQ(sizeof(LONG), 4u);
    EXPECT_EQ(sizeof(HRESULT), 4u);
    EXPECT_EQ(sizeof(LONG_PTR), sizeof(void*));
    EXPECT_EQ(sizeof(VARIANT), sizeof(void*) == 8 ? 24u : 16u);
    EXPECT_EQ(offsetof(VARIANT, vt), 0u);
    EXPECT_EQ(offsetof(VARIANT, lVal), 8u);
    EXPECT_EQ(offsetof(VARIANT, bstrVal), 8u);
    EXPECT_EQ(offsetof(VARIANT, decVal), 0u);
    EXPECT_EQ(sizeof(DECIMAL), 16u);
    EXPECT_EQ(sizeof(CY), 8u);
    EXPECT_EQ(offsetof(DISPPARAMS, cArgs), 2 * sizeof(void*));
    EXPECT_EQ(offsetof(EXCEPINFO, bstrSource), sizeof(void*));
    EXPECT_EQ(offsetof(EXCEPINFO, scode), sizeof(void*) == 8 ? 56u : 28u);
}

TEST(Com, result_codes_are_the_platforms) {
    EXPECT_EQ(static_cast<ULONG>(E_FAIL), 0x80004005u);
    EXPECT_EQ(static_cast<ULONG>(CLASS_E_CLASSNOTAVAILABLE), 0x80040111u);
    EXPECT_EQ(static_cast<ULONG>(DISP_E_EXCEPTION), 0x80020009u);
    EXPECT_TRUE(SUCCEEDED(S_FALSE));
    EXPECT_TRUE(FAILED(E_FAIL));
}

TEST(Bstr, length_in_bytes_lies_in_front) {
    const BSTR text = SysAllocString(reinterpret_cast<LPCOLESTR>(u"abc"));
    ULONG bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, 4);
    EXPECT_EQ(bytes, 6u);
    EXPECT_EQ(SysStringLen(text), 3u);
    EXPECT_EQ(SysStringByteLen(text), 6u);
    EXPECT_EQ(text[3], 0);
    SysFreeString(text);
}

TEST(Bstr, narrow_bytes_and_zeros_are_kept) {
    const BSTR text = SysAllocStringByteLen("a\0b", 3);
    EXPECT_EQ(SysStringByteLen(text), 3u);
    EXPECT_EQ(SysStringLen(text), 1u);
    EXPECT_EQ(std::memcmp(text, "a\0b\0\0", 5), 0);
    SysFreeString(text);
}

TEST(Bstr, null_is_the_empty_text) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysStringByteLen(nullptr), 0u);
    SysFreeString(nullptr);
    const BSTR blank = SysAllocStringLen(nullptr, 4);
    EXPECT_EQ(SysStringLen(blank), 4u);
    EXPECT_EQ(blank[4], 0);
    SysFreeString(blank);
}

TEST(VariantOperations, copy_is_deep_and_clear_frees) {
    VARIANT from;
    VariantInit(&from);
    from.vt = VT_BSTR;
    from.bstrVal = SysAllocStringByteLen("xyz", 3);
    VARIANT to;
    VariantInit(&to);
    ASSERT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_NE(to.bstrVal, from.bstrVal);
    EXPECT_EQ(SysStringByteLen(to.bstrVal), 3u);
    EXPECT_EQ(VariantClear(&from), S_OK);
    EXPECT_EQ(from.vt, VT_EMPTY);
    EXPECT_EQ(std::memcmp(to.bstrVal, "xyz", 3), 0);

    VARIANT number;
    VariantInit(&number);
    number.vt = VT_I4;
    number.lVal = 4;
    EXPECT_EQ(VariantCopy(&to, &number), S_OK);
    EXPECT_EQ(to.lVal, 4);
    EXPECT_EQ(VariantCopy(&to, &to), S_OK);
    EXPECT_EQ(to.lVal, 4);
}

TEST(VariantOperations, reference_is_copied_as_the_reference) {
    LONG target = 3;
    VARIANT from;
    VariantInit(&from);
    from.vt = VT_BYREF | VT_I4;
    from.plVal = &target;
    VARIANT to;
    VariantInit(&to);
    EXPECT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_EQ(to.plVal, &target);
    EXPECT_EQ(VariantClear(&to), S_OK);
    EXPECT_EQ(target, 3);
}

TEST(DaoException, carries_the_engines_number_and_text) {
    LONG code = 0;
    std::string text;
    try {
        throw new CDaoException(3021, "No current record.");
    } catch (CDaoException* error) {
        code = error->m_pErrorInfo->m_lErrorCode;
        text = error->m_pErrorInfo->m_strDescription;
        EXPECT_EQ(static_cast<ULONG>(error->m_scode), 0x800A0BCDu);
        EXPECT_EQ(error->m_nAfxDaoError, NO_AFX_DAO_ERROR);
        EXPECT_EQ(error->GetErrorCount(), 1);
        char message[12];
        EXPECT_TRUE(error->GetErrorMessage(message, sizeof message));
        EXPECT_STREQ(message, "No current ");
        error->GetErrorInfo(0);
        EXPECT_NE(error->m_pErrorInfo, nullptr);
        error->Delete();
    }
    EXPECT_EQ(code, 3021);
    EXPECT_EQ(text, "No current record.");
}

TEST(DaoException, is_caught_as_its_base) {
    bool caught = false;
    try {
        throw new CDaoException(3021, "No current record.");
    } catch (CException* error) {
        caught = true;
        error->Delete();
    }
    EXPECT_TRUE(caught);
}

// The position of a member matters, not only its name. The offsets are those of 4-byte integers, dates and floats and
// pointer-sized texts, in the published order.
TEST(Records, members_lie_in_published_order) {
    constexpr std::size_t P = sizeof(void*);
    EXPECT_EQ(sizeof(HeadInfo), 12u);
    EXPECT_EQ(offsetof(ProjInfo, Name), 8u);
    EXPECT_EQ(offsetof(ProjInfo, ClientID), 8 + 2 * P);
    EXPECT_EQ(offsetof(ProjInfo, Notes), sizeof(ProjInfo) - P);
    EXPECT_EQ(offsetof(SongInfo, Name), 8u);
    EXPECT_EQ(offsetof(TrackInfo, ExData), 12u);
    EXPECT_EQ(offsetof(TrackInfo, Name), 16u);
    EXPECT_EQ(offsetof(SessionInfo, SessionID), 4u);
    EXPECT_EQ(offsetof(SessionInfo, Reserved), offsetof(SessionInfo, RecDate) - P);
    EXPECT_EQ(offsetof(SessionExInfo, ExData), offsetof(SessionInfo, ExData));
    EXPECT_EQ(offsetof(SessionExInfo, FromDate), offsetof(SessionInfo, ExData) + 4);
    EXPECT_EQ(offsetof(SupplyExInfo, ExData), offsetof(SupplyAct, ExData));
    EXPECT_EQ(offsetof(SupplyExInfo, DateFlags), offsetof(SupplyAct, ExData) + 12);
    EXPECT_EQ(offsetof(EquipInfo, Reserved1), 4u);
    EXPECT_EQ(offsetof(EquipInfo, ActDate), offsetof(EquipInfo, Reserved2) + 4);
    EXPECT_EQ(offsetof(StockTypeInfo, Spare), sizeof(StockTypeInfo) - P);
    EXPECT_EQ(offsetof(BookingInfo, Reserved), 4u);
    EXPECT_EQ(offsetof(BookingInfo, DateStart), 8u);
    EXPECT_EQ(offsetof(InvoiceInfo, FromDate), offsetof(InvoiceInfo, Date) + 4);
    EXPECT_EQ(offsetof(InvoiceInfo, SubTotal), offsetof(InvoiceInfo, ToDate) + 4);
    EXPECT_EQ(offsetof(InvoiceInfo, Balance), offsetof(InvoiceInfo, Paymetns) + 4);
    EXPECT_EQ(offsetof(ClientInfo, SearchName), sizeof(ClientInfo) - P);
    EXPECT_EQ(offsetof(GearRentInfo, DateFlags), offsetof(GearRentInfo, DateTo) + 4);
}

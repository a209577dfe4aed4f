// Late binding: results returned through arguments, and texts in both directions.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

#include "frame/dispatch.h"
#include "os/system.h"
#include "tests/frame/dispatch_probe.h"
#include "tests/frame/late_binding.h"

TEST(DispatchOutInteger, is_stored_through_every_kind_of_reference) {
    Probe probe;
    LONG number = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(number)}).result, S_OK);
    EXPECT_EQ(number, 42);
    std::int64_t wide = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref_to(VT_I8, &wide)}).result, S_OK);
    EXPECT_EQ(wide, 42);
    std::int16_t small = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref_to(VT_I2, &small)}).result, S_OK);
    EXPECT_EQ(small, 42);
    double real = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref_to(VT_R8, &real)}).result, S_OK);
    EXPECT_EQ(real, 42);
    Variant inner = Variant::ref(number);
    number = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(inner)}).result, S_OK);
    EXPECT_EQ(number, 42);
}

TEST(DispatchOutInteger, referred_variant_becomes_an_integer) {
    Probe probe;
    for (Variant inner : {Variant(), Variant::text(u"before"), Variant::r8(2.5)}) {
        EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(inner)}).result, S_OK);
        EXPECT_EQ(inner.vt, VT_I4);
        EXPECT_EQ(inner.lVal, 42);
    }
}

TEST(DispatchOutInteger, plain_integer_argument_is_overwritten) {
    Probe probe;
    VARIANT arguments[2] = {Variant::i4(1), Variant::i4(3)};
    DISPPARAMS parameters{arguments, nullptr, 2, 0};
    EXPECT_EQ(probe.Invoke(kCompute, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(arguments[0].vt, VT_I4);
    EXPECT_EQ(arguments[0].lVal, 42);
}

TEST(DispatchOutInteger, failure_leaves_the_callers_value) {
    Probe probe;
    probe.answer = E_FAIL;
    probe.stores = false;
    LONG number = 17;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(number)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(number, 17);
    Variant inner = Variant::text(u"before");
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(inner)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(inner.vt, VT_BSTR);
}

TEST(DispatchOutInteger, stored_before_a_failure_is_given_back) {
    Probe probe;
    probe.answer = E_FAIL;
    LONG number = 17;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref(number)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(number, 42);
}

TEST(DispatchOutInteger, always_stored_one_is_given_back_though_it_looks_like_the_one_before) {
    Probe probe;
    probe.answer = E_FAIL;
    for (const LONG stored : {3, 0}) {
        probe.stored = stored;
        for (Variant inner : {Variant(), Variant::r8(3.25), Variant::r8(1e12), Variant::text(u"3"), Variant::i4(3)}) {
            EXPECT_EQ(invoke(probe, kCount, {Variant::ref(inner)}).result, DISP_E_EXCEPTION);
            EXPECT_EQ(inner.vt, VT_I4);
            EXPECT_EQ(inner.lVal, stored);
        }
        double real = 3.25;
        EXPECT_EQ(invoke(probe, kCount, {Variant::ref_to(VT_R8, &real)}).result, DISP_E_EXCEPTION);
        EXPECT_EQ(real, stored);
    }
}

TEST(DispatchOutInteger, what_cannot_hold_it_mismatches_before_the_call) {
    Probe probe;
    BSTR text = nullptr;
    float real = 0;
    for (const Variant& given : {Variant::r8(1), Variant::text(u"1"), Variant(), Variant::ref(text),
                                 Variant::ref_to(VT_R4, &real), Variant::ref_to(VT_I4, nullptr)}) {
        const Outcome outcome = invoke(probe, kCompute, {Variant::i4(3), given});
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << "type " << given.vt;
        EXPECT_EQ(outcome.bad_argument, 0u);
    }
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchOutInteger, too_large_for_the_reference_overflows) {
    Probe probe;
    probe.stored = 70000;
    std::int16_t small = 1;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(3), Variant::ref_to(VT_I2, &small)}).result, DISP_E_OVERFLOW);
    EXPECT_EQ(small, 1);
}

// ---- Texts

TEST(DispatchText, by_value_is_read_only) {
    Probe probe;
    EXPECT_EQ(invoke(probe, kName, {Variant::text(u"Drums")}).result, S_OK);
    EXPECT_EQ(probe.text, "Drums");
    EXPECT_EQ(invoke(probe, kName, {Variant()}).result, S_OK);
    EXPECT_EQ(probe.text, "");
}

TEST(DispatchText, written_text_goes_back_into_a_reference) {
    Probe probe;
    BSTR text = SysAllocString(reinterpret_cast<LPCOLESTR>(u"Drums"));
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(text)}).result, S_OK);
    EXPECT_EQ(probe.text, "Drums");
    EXPECT_EQ(text_of(text), u"Bass");
    SysFreeString(text);

    Variant inner;
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(inner)}).result, S_OK);
    ASSERT_EQ(inner.vt, VT_BSTR);
    EXPECT_EQ(text_of(inner.bstrVal), u"Bass");
}

TEST(DispatchText, reference_inside_a_referred_variant_is_written) {
    Probe probe;
    BSTR text = nullptr;
    Variant inner = Variant::ref(text);
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(inner)}).result, S_OK);
    EXPECT_EQ(text_of(text), u"Bass");
    SysFreeString(text);
}

TEST(DispatchText, unwritten_text_is_left_as_it_is) {
    Probe probe;
    probe.stores = false;
    const BSTR before = SysAllocString(reinterpret_cast<LPCOLESTR>(u"Tu\u0107"));
    BSTR text = before;
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(text)}).result, S_OK);
    EXPECT_EQ(text, before);
    EXPECT_EQ(text_of(text), u"Tu\u0107");

    probe.stores = true;
    probe.answer = E_FAIL;
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(text)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(text, before);
    SysFreeString(text);
}

TEST(DispatchText, longest_name_fits_in_any_code_page) {
    os::set_code_page(os::CodePage::kUtf8);
    Probe probe;
    for (int i = 0; i < 8; ++i) probe.new_text += probe.new_text;  // 1024 bytes
    probe.new_text.resize(1020);
    BSTR text = nullptr;
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(text)}).result, S_OK);
    EXPECT_EQ(SysStringLen(text), 1020u);
    SysFreeString(text);
    os::set_code_page(os::CodePage::kSystem);
}

// A host's own buffer has 256 bytes; the one of a call by name is known for as long as the call lasts.
TEST(DispatchText, room_of_a_buffer_is_known_while_its_call_lasts) {
    Probe probe;
    EXPECT_EQ(invoke(probe, kName, {Variant::text(u"Drums")}).result, S_OK);
    EXPECT_EQ(probe.room, 255u * 4 + 1);
    EXPECT_EQ(invoke(probe, kName, {Variant::text(std::u16string(3000, u'x'))}).result, S_OK);
    EXPECT_EQ(probe.room, 3001u);
    char buffer[256] = "Drums";
    EXPECT_EQ(frame::room_for_text(buffer), 256u);
    EXPECT_EQ(frame::room_for_text(nullptr), 256u);
    frame::TextBuffer outer;
    outer.fill("outer", 500);
    char* inner_address = nullptr;
    {
        frame::TextBuffer inner;
        inner.fill("", 700);
        inner_address = inner.data();
        EXPECT_EQ(frame::room_for_text(inner.data()), 700u);
        EXPECT_EQ(frame::room_for_text(outer.data()), 500u);
        EXPECT_STREQ(outer.data(), "outer");
    }
    EXPECT_EQ(frame::room_for_text(inner_address), 256u);
    EXPECT_EQ(frame::room_for_text(outer.data()), 500u);
}

TEST(DispatchText, characters_travel_in_the_narrow_code_page) {
    os::set_code_page(os::CodePage::kWindows1252);
    Probe probe;
    probe.new_text = "Fl\xF6te";
    Variant inner = Variant::text(u"Caf\u00E9");
    EXPECT_EQ(invoke(probe, kName, {Variant::ref(inner)}).result, S_OK);
    EXPECT_EQ(probe.text, "Caf\xE9");
    EXPECT_EQ(text_of(inner.bstrVal), u"Fl\u00F6te");
    os::set_code_page(os::CodePage::kSystem);
}

TEST(DispatchText, other_types_mismatch) {
    Probe probe;
    LONG number = 0;
    for (const Variant& given :
         {Variant::i4(1), with(VT_NULL, 0), Variant::ref(number), Variant::ref_to(VT_BSTR, nullptr)}) {
        EXPECT_EQ(invoke(probe, kName, {given}).result, DISP_E_TYPEMISMATCH) << "type " << given.vt;
        EXPECT_EQ(invoke(probe, kFile, {given}).result, DISP_E_TYPEMISMATCH) << "type " << given.vt;
    }
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchFileName, wide_text_arrives_unchanged) {
    Probe probe;
    EXPECT_EQ(invoke(probe, kFile, {Variant::text(u"stu\u0111io.mdb")}).result, S_OK);
    EXPECT_EQ(probe.wide, u"stu\u0111io.mdb");
    BSTR text = SysAllocString(reinterpret_cast<LPCOLESTR>(u"x"));
    EXPECT_EQ(invoke(probe, kFile, {Variant::ref(text)}).result, S_OK);
    EXPECT_EQ(probe.wide, u"x");
    SysFreeString(text);
    EXPECT_EQ(invoke(probe, kFile, {Variant()}).result, S_OK);
    EXPECT_EQ(probe.wide, u"");
}

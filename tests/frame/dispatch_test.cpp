// Late binding: names, arguments and errors.
#include "frame/dispatch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>

#include "os/system.h"
#include "tests/frame/dispatch_probe.h"
#include "tests/frame/late_binding.h"

TEST(DispatchNames, method_and_parameters_give_slot_and_position) {
    Probe probe;
    std::vector<DISPID> found;
    EXPECT_EQ(ids(probe, {u"Compute", u"pnResult", u"dwType"}, found), S_OK);
    EXPECT_EQ(found, (std::vector<DISPID>{4, 1, 0}));
}

TEST(DispatchNames, any_case_is_the_same_name) {
    Probe probe;
    std::vector<DISPID> found;
    EXPECT_EQ(ids(probe, {u"tAKEkEY", u"NKEY"}, found), S_OK);
    EXPECT_EQ(found, (std::vector<DISPID>{2, 0}));
}

TEST(DispatchNames, unknown_method_gives_unknown_name) {
    Probe probe;
    std::vector<DISPID> found;
    EXPECT_EQ(ids(probe, {u"TakeKe", u"nKey"}, found), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(found, (std::vector<DISPID>{DISPID_UNKNOWN, DISPID_UNKNOWN}));
    EXPECT_EQ(ids(probe, {u"TakeKeys"}, found), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids(probe, {u""}, found), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids(probe, {u"T\u0101keKey"}, found), DISP_E_UNKNOWNNAME);
}

TEST(DispatchNames, unknown_parameter_gives_unknown_name_for_it_alone) {
    Probe probe;
    std::vector<DISPID> found;
    EXPECT_EQ(ids(probe, {u"Compute", u"nothing", u"dwType"}, found), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(found, (std::vector<DISPID>{4, DISPID_UNKNOWN, 0}));
}

TEST(DispatchNames, other_interface_identifier_is_refused) {
    Probe probe;
    std::vector<DISPID> found;
    EXPECT_EQ(ids(probe, {u"Plain"}, found, IID_IDispatch), DISP_E_UNKNOWNINTERFACE);
}

TEST(DispatchInvoke, success_clears_the_result) {
    Probe probe;
    const Outcome outcome = invoke(probe, kPlain, {});
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(outcome.result_type, VT_EMPTY);
    EXPECT_EQ(probe.calls, 1);
}

TEST(DispatchInvoke, unknown_identifier_is_member_not_found) {
    Probe probe;
    EXPECT_EQ(invoke(probe, 0, {}).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(invoke(probe, -1, {}).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(invoke(probe, kCount + 1, {}).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchInvoke, property_access_is_member_not_found) {
    Probe probe;
    DISPPARAMS none{};
    EXPECT_EQ(probe.Invoke(kPlain, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(probe.Invoke(kPlain, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(probe.calls, 0);
    const WORD either = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    EXPECT_EQ(probe.Invoke(kPlain, IID_NULL, 0, either, &none, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(probe.calls, 1);
}

TEST(DispatchInvoke, other_interface_identifier_is_refused) {
    Probe probe;
    DISPPARAMS none{};
    EXPECT_EQ(probe.Invoke(kPlain, IID_IUnknown, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(probe.Invoke(kPlain, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchInvoke, wrong_count_is_bad_parameter_count) {
    Probe probe;
    EXPECT_EQ(invoke(probe, kPlain, {Variant::i4(1)}).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(invoke(probe, kTakeKey, {}).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(1)}).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchInvoke, failure_of_the_method_is_an_exception_with_its_code) {
    Probe probe;
    probe.answer = E_FAIL;
    const Outcome outcome = invoke(probe, kPlain, {});
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, E_FAIL);
    EXPECT_EQ(outcome.description, u"");
    DISPPARAMS none{};
    EXPECT_EQ(probe.Invoke(kPlain, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), DISP_E_EXCEPTION);
}

TEST(DispatchInvoke, engine_error_let_out_is_an_exception_with_its_text) {
    Probe probe;
    probe.throws = 1;
    const Outcome outcome = invoke(probe, kPlain, {});
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, E_FAIL);
    EXPECT_EQ(outcome.source, u"KVDB");
    EXPECT_EQ(outcome.description, u"No database there");
}

TEST(DispatchInvoke, other_exceptions_do_not_get_out) {
    Probe probe;
    probe.throws = 2;
    const Outcome outcome = invoke(probe, kPlain, {});
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.description, u"out of luck");
    probe.throws = 3;
    EXPECT_EQ(invoke(probe, kPlain, {}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(invoke(probe, kPlain, {}).scode, E_FAIL);
}

TEST(DispatchNamedArguments, position_by_identifier_replaces_order) {
    Probe probe;
    LONG out = 0;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::ref(out), Variant::i4(9)}, {1, 0}).result, S_OK);
    EXPECT_EQ(probe.key, 9);
    EXPECT_EQ(out, 42);
}

TEST(DispatchNamedArguments, mixed_with_unnamed_ones_fill_the_rest) {
    Probe probe;
    LONG out = 0;
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(8), Variant::ref(out)}, {1}).result, S_OK);
    EXPECT_EQ(probe.key, 8);
    EXPECT_EQ(out, 42);
}

TEST(DispatchNamedArguments, unknown_or_twice_given_is_parameter_not_found) {
    Probe probe;
    LONG out = 0;
    const Outcome unknown = invoke(probe, kCompute, {Variant::i4(8), Variant::ref(out)}, {2});
    EXPECT_EQ(unknown.result, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(unknown.bad_argument, 0u);
    EXPECT_EQ(invoke(probe, kCompute, {Variant::i4(8), Variant::ref(out)}, {0}).result, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::i4(8)}, {1}).result, DISP_E_PARAMNOTFOUND);  // one parameter, number 0
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::i4(8)}, {DISPID_PROPERTYPUT}).result, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchNamedArguments, left_out_argument_is_not_optional) {
    Probe probe;
    LONG out = 0;
    const Variant left_out = with(VT_ERROR, static_cast<LONG>(DISP_E_PARAMNOTFOUND));
    const Outcome outcome = invoke(probe, kCompute, {left_out, Variant::ref(out)});
    EXPECT_EQ(outcome.result, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(outcome.bad_argument, 1u);
}

// ---- Integers

TEST(DispatchInteger, every_numeric_type_is_taken) {
    Probe probe;
    struct Case {
        Variant given;
        LONG expected;
    };
    Variant r4;
    r4.vt = VT_R4;
    r4.fltVal = 1.5f;
    Variant cy;
    cy.vt = VT_CY;
    cy.cyVal.int64 = 120000;
    Variant decimal;
    decimal.decVal.scale = 1;  // -2.5 is rounded to the even -2
    decimal.decVal.sign = 0x80;
    decimal.decVal.Hi32 = 0;
    decimal.decVal.Lo64 = 25;
    decimal.vt = VT_DECIMAL;
    Variant date = Variant::r8(38412.25);
    date.vt = VT_DATE;
    Variant truth;
    truth.vt = VT_BOOL;
    truth.boolVal = VARIANT_TRUE;
    const Case cases[] = {
        {with(VT_I1, 0xFF), -1},
        {with(VT_UI1, 0xFF), 255},
        {with(VT_I2, 0xFFFE), -2},
        {with(VT_UI2, 0xFFFE), 65534},
        {Variant::i4(-7), -7},
        {decimal, -2},
        {with(VT_INT, 7), 7},
        {with(VT_UI4, 2147483647), 2147483647},
        {with(VT_UINT, 12), 12},
        {Variant::i8(-2147483648LL), std::numeric_limits<LONG>::min()},
        {with(VT_UI8, 5), 5},
        {r4, 2},
        {Variant::r8(2.5), 2},
        {Variant::r8(-3.5), -4},
        {truth, -1},
        {cy, 12},
        {date, 38412},
        {Variant(), 0},
        {Variant::text(u"17"), 17},
        {Variant::text(u"  -17 "), -17},
        {Variant::text(u"+8"), 8},
        {Variant::text(u"1.6e1"), 16},
    };
    for (const Case& c : cases) {
        probe.key = -99;
        EXPECT_EQ(invoke(probe, kTakeKey, {c.given}).result, S_OK) << "type " << c.given.vt;
        EXPECT_EQ(probe.key, c.expected) << "type " << c.given.vt;
    }
}

TEST(DispatchInteger, references_are_followed) {
    Probe probe;
    LONG number = 31;
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::ref(number)}).result, S_OK);
    EXPECT_EQ(probe.key, 31);
    Variant inner = Variant::text(u"32");
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::ref(inner)}).result, S_OK);
    EXPECT_EQ(probe.key, 32);
    double real = 33.0;
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::ref_to(VT_R8, &real)}).result, S_OK);
    EXPECT_EQ(probe.key, 33);
    Variant nested = Variant::ref(number);
    EXPECT_EQ(invoke(probe, kTakeKey, {Variant::ref(nested)}).result, S_OK);
    EXPECT_EQ(probe.key, 31);
}

TEST(DispatchInteger, value_out_of_range_overflows) {
    Probe probe;
    for (const Variant& given :
         {Variant::i8(2147483648LL), with(VT_UI4, 4294967295LL), with(VT_UI8, -1), Variant::r8(1e300),
          Variant::r8(std::nan("")), Variant::text(u"99999999999"), Variant::text(u"1e999")}) {
        const Outcome outcome = invoke(probe, kTakeKey, {given});
        EXPECT_EQ(outcome.result, DISP_E_OVERFLOW) << "type " << given.vt;
        EXPECT_EQ(outcome.bad_argument, 0u);
    }
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchInteger, other_types_mismatch_and_name_the_argument) {
    Probe probe;
    LONG out = 0;
    for (const Variant& given : {with(VT_NULL, 0), with(VT_ERROR, 1), with(VT_DISPATCH, 0), Variant::text(u"seven"),
                                 Variant::text(u""), Variant::text(u"1 2"), Variant::ref_to(VT_I4, nullptr)}) {
        const Outcome outcome = invoke(probe, kCompute, {given, Variant::ref(out)});
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << "type " << given.vt;
        EXPECT_EQ(outcome.bad_argument, 1u);  // arguments are listed in reverse order
    }
    EXPECT_EQ(probe.calls, 0);
}

TEST(DispatchRecord, address_arrives_whole) {
    Probe probe;
    LONG record = 0;
    EXPECT_EQ(invoke(probe, kTakeRecord, {Variant::record(record)}).result, S_OK);
    EXPECT_EQ(probe.address, reinterpret_cast<LONG_PTR>(&record));
    EXPECT_EQ(invoke(probe, kTakeRecord, {Variant::i4(0)}).result, S_OK);
    EXPECT_EQ(probe.address, 0);
    const Variant high = sizeof(void*) == 4 ? Variant::i4(-2) : Variant::i8(-2);
    EXPECT_EQ(invoke(probe, kTakeRecord, {high}).result, S_OK);
    EXPECT_EQ(probe.address, -2);
}

// ---- Out integers

#if UINTPTR_MAX > UINT32_MAX
TEST(DispatchRecord, address_of_64_bits_is_taken_from_integers_of_that_width_only) {
    Probe probe;
    int record = 0;
    const LONGLONG address = reinterpret_cast<LONG_PTR>(&record);
#ifdef _WIN32
    constexpr VARTYPE kWideTypes[] = {VT_I8, VT_UI8};  // the platform copies no variant of the others
#else
    constexpr VARTYPE kWideTypes[] = {VT_I8, VT_UI8, VT_INT_PTR, VT_UINT_PTR};
#endif
    for (const VARTYPE type : kWideTypes) {
        Variant wide = Variant::i8(address);
        wide.vt = type;
        probe.address = 0;
        EXPECT_EQ(invoke(probe, u"TakeRecord", {wide}).result, S_OK) << type;
        EXPECT_EQ(probe.address, address) << type;
        LONGLONG target = address;
        EXPECT_EQ(invoke(probe, u"TakeRecord", {Variant::ref_to(type, &target)}).result, S_OK) << type;
        wide.vt = VT_EMPTY;
    }
    EXPECT_EQ(invoke(probe, u"TakeRecord", {Variant()}).result, S_OK);  // no record
    EXPECT_EQ(probe.address, 0);
    probe.calls = 0;
    for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_BOOL, VT_R8}) {
        Variant narrow = type == VT_R8 ? Variant::r8(4096) : Variant::i8(0x7F7F7F7F);
        narrow.vt = type;
        const Outcome outcome = invoke(probe, u"TakeRecord", {narrow});
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << type;
        EXPECT_EQ(outcome.bad_argument, 0u) << type;
    }
    EXPECT_EQ(invoke(probe, u"TakeRecord", {Variant::text(u"4711")}).result, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(probe.calls, 0);
}
#endif

TEST(DispatchInvoke, arguments_that_are_counted_and_not_there_are_refused) {
    Probe probe;
    DISPPARAMS none{nullptr, nullptr, 1, 0};
    EXPECT_EQ(probe.Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), E_INVALIDARG);
    Variant key = Variant::i4(1);
    DISPPARAMS unnamed{&key, nullptr, 1, 1};
    EXPECT_EQ(probe.Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &unnamed, nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(probe.calls, 0);
}

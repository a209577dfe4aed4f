// The component's late binding against the platform's, which uses the type library: the same result for every call that
// the platform accepts.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/frame/late_binding.h"
#include "tests/frame/published_methods.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

// The result of a call in comparable form, including the record or number that its arguments point to.
struct Answer {
    std::string method;
    HRESULT result;
    SCODE scode;
    bool operator==(const Answer&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << answer.method << std::hex << "result " << answer.result << " scode " << answer.scode;
}

Answer call(IDispatch* own, ITypeInfo* platform, IDispatch* gate, DISPID id, std::vector<Variant>& arguments,
            WORD flags = DISPATCH_METHOD) {
    std::vector<VARIANT> backwards(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
    EXCEPINFO exception{};
    UINT bad = 0;
    HRESULT result = S_OK;
    if (own != nullptr) {
        result = own->Invoke(id, IID_NULL, 0, flags, &parameters, nullptr, &exception, &bad);
    } else {
        result = platform->Invoke(gate, id, flags, &parameters, nullptr, &exception, &bad);
    }
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    return {"", result, exception.scode};
}

// Makes the same call both ways; `arguments` is created anew for each.
template <class MakeArguments>
void expect_same(IDispatch& gate, DISPID id, MakeArguments make, const std::string& what) {
    ITypeInfo* type = nullptr;
    ASSERT_EQ(gate.GetTypeInfo(0, 0, &type), S_OK);
    std::vector<Variant> first = make();
    const Answer platform = call(nullptr, type, &gate, id, first);
    std::vector<Variant> second = make();
    const Answer own = call(&gate, nullptr, nullptr, id, second);
    EXPECT_EQ(own, platform) << what;
    type->Release();
}

// Room for any record.
struct Room {
    alignas(8) char bytes[4096] = {};
};

template <std::size_t Count, class Make>
void for_each_method(const PublishedMethod (&methods)[Count], Make visit) {
    for (std::size_t i = 0; i < Count; ++i) visit(static_cast<DISPID>(i + 1), methods[i]);
}

std::string kinds(const PublishedMethod& method) {
    std::string result;
    for (const char* p = method.parameters; *p != 0; ++p) {
        if (p[1] == ':') result.push_back(*p);
    }
    return result;
}

template <class Gate, std::size_t Count>
void expect_same_names(Gate& gate, const PublishedMethod (&methods)[Count]) {
    ITypeInfo* type = nullptr;
    ASSERT_EQ(gate.GetTypeInfo(0, 0, &type), S_OK);
    for_each_method(methods, [&](DISPID, const PublishedMethod& method) {
        std::vector<std::wstring> words = {wide(method.name)};
        const std::string parameters = method.parameters;
        for (std::size_t at = 0; (at = parameters.find(':', at)) != std::string::npos; ++at) {
            words.push_back(wide(parameters.substr(at + 1, parameters.find(' ', at) - at - 1)));
        }
        for (const bool upper : {false, true}) {
            if (upper) {
                for (std::wstring& word : words) CharUpperW(word.data());
            }
            std::vector<LPOLESTR> names;
            for (std::wstring& word : words) names.push_back(word.data());
            DISPID own[3] = {-9, -9, -9};
            DISPID platform[3] = {-9, -9, -9};
            const UINT count = static_cast<UINT>(names.size());
            EXPECT_EQ(gate.GetIDsOfNames(IID_NULL, names.data(), count, 0, own),
                      type->GetIDsOfNames(names.data(), count, platform));
            EXPECT_EQ(std::memcmp(own, platform, sizeof own), 0) << method.name;
        }
    });
    type->Release();
}

// Every method in slot order on a new gate, with arguments of the plain types and without any.
template <class Gate, std::size_t Count>
std::vector<Answer> answers(const PublishedMethod (&methods)[Count], bool by_platform) {
    const GateHost host;
    const auto gate = host.create<Gate>();
    ITypeInfo* type = nullptr;
    EXPECT_EQ(gate->GetTypeInfo(0, 0, &type), S_OK);
    std::vector<Answer> result;
    for_each_method(methods, [&](DISPID id, const PublishedMethod& method) {
        const std::string kind = kinds(method);
        if (kind.find('t') != std::string::npos) return;  // the platform accepts no text buffers
        Room room;
        LONG number = 0;
        std::vector<Variant> arguments;
        for (const char c : kind) {
            if (c == 'r') arguments.push_back(Variant::record(room));
            if (c == 'n') arguments.push_back(Variant::i4(1));
            if (c == 'o') arguments.push_back(Variant::ref(number));
            if (c == 'f') arguments.push_back(Variant::text(u"x"));
        }
        IDispatch* const own = by_platform ? nullptr : gate.get();
        result.push_back(call(own, type, gate.get(), id, arguments));
        result.back().method = method.name;
        arguments.clear();
        if (kind.empty()) return;
        result.push_back(call(own, type, gate.get(), id, arguments));
        result.back().method = std::string(method.name) + " without arguments";
    });
    type->Release();
    return result;
}

template <class Gate, std::size_t Count>
void expect_same_answers(const PublishedMethod (&methods)[Count], int successes) {
    const std::vector<Answer> own = answers<Gate>(methods, false);
    const std::vector<Answer> platform = answers<Gate>(methods, true);
    ASSERT_EQ(own.size(), platform.size());
    for (std::size_t i = 0; i < own.size(); ++i) EXPECT_EQ(own[i], platform[i]);
    EXPECT_GE(std::count_if(own.begin(), own.end(), [](const Answer& answer) { return answer.result == S_OK; }),
              successes);
}

}  // namespace

TEST(PlatformDispatchGate, names_have_the_same_identifiers) {
    const GateHost host;
    expect_same_names(*host.create<IDBgate1>(), kPublishedMainMethods);
    expect_same_names(*host.create<IDBgate2>(), kPublishedGearMethods);
    expect_same_names(*host.create<IDBGate3>(), kPublishedGearMethods);
}

TEST(PlatformDispatchGate, unknown_names_are_refused_alike) {
    const GateHost host;
    const auto gate = host.create<IDBgate1>();
    ITypeInfo* type = nullptr;
    ASSERT_EQ(gate->GetTypeInfo(0, 0, &type), S_OK);
    wchar_t name[] = L"NoSuchMethod";
    LPOLESTR names[] = {name};
    DISPID own = 0;
    DISPID platform = 0;
    EXPECT_EQ(gate->GetIDsOfNames(IID_NULL, names, 1, 0, &own), type->GetIDsOfNames(names, 1, &platform));
    EXPECT_EQ(own, platform);
    type->Release();
}

TEST(PlatformDispatchGate, every_method_answers_alike) {
    expect_same_answers<IDBgate1>(kPublishedMainMethods, 20);
    expect_same_answers<IDBgate2>(kPublishedGearMethods, 2);
    expect_same_answers<IDBGate3>(kPublishedGearMethods, 2);
}

TEST(PlatformDispatchGate, numbers_of_every_type_are_converted_alike) {
    const GateHost host;
    const auto gate = host.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    const DISPID id = id_of(*gate, u"DeleteSong");
    const auto of_type = [](VARTYPE type, const char16_t* text) {
        Variant number = Variant::text(text);
        VariantChangeTypeEx(&number, &number, LOCALE_INVARIANT, 0, type);
        return number;
    };
    for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_R4, VT_R8, VT_CY, VT_BOOL, VT_BSTR,
                               VT_DATE, VT_DECIMAL, VT_I8}) {
        for (const char16_t* text : {u"1", u"0"}) {
            expect_same(
                *gate, id, [&] { return std::vector<Variant>{of_type(type, text)}; }, "type " + std::to_string(type));
        }
    }
    // 2.5 is rounded to the even 2, and so is 1.5.
    for (const double number : {1.5, 2.5, 0.49, -1.5, 1e9, 3e9, -3e9}) {
        expect_same(
            *gate, id, [&] { return std::vector<Variant>{Variant::r8(number)}; }, std::to_string(number));
    }
    for (const char16_t* text : {u"17", u" 17 ", u"x", u"", u"1e2", u"99999999999"}) {
        expect_same(
            *gate, id, [&] { return std::vector<Variant>{Variant::text(text)}; }, os::narrow(text));
    }
    expect_same(
        *gate, id, [] { return std::vector<Variant>{Variant()}; }, "empty");
}

TEST(PlatformDispatchGate, out_integers_arrive_alike) {
    const GateHost host;
    const auto gate = host.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ITypeInfo* type = nullptr;
    ASSERT_EQ(gate->GetTypeInfo(0, 0, &type), S_OK);
    LONG own = 0;
    LONG platform = 0;
    std::vector<Variant> arguments = {Variant::ref(own)};
    EXPECT_EQ(call(gate.get(), nullptr, nullptr, 3, arguments).result, S_OK);
    arguments = {Variant::ref(platform)};
    EXPECT_EQ(call(nullptr, type, gate.get(), 3, arguments).result, S_OK);
    EXPECT_EQ(own, 210000);
    EXPECT_EQ(platform, 210000);
    type->Release();
}

// The frame of a method call: module state, results, exceptions. The gates of this file are linked in, so that the
// program can examine the state; none of them opens a file.
#include "frame/gate_base.h"

#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <stdexcept>
#include <vector>

#include "afx/module_state.h"
#include "frame/entry_points.h"
#include "frame/gate_methods.h"
#include "frame/gear_gates.h"
#include "tests/frame/gate_host.h"
#include "tests/frame/late_binding.h"

using frame::ComPtr;
using testing_support::Variant;

namespace {

std::vector<AFX_MODULE_STATE*> seen_states;

// A host with its own state; records every switch until it is destroyed.
class WatchedHost {
public:
    WatchedHost() {
        AfxSetModuleState(&state_);
        seen_states.clear();
        set_module_state_observer_for_test([](AFX_MODULE_STATE* now) { seen_states.push_back(now); });
    }
    ~WatchedHost() {
        set_module_state_observer_for_test(nullptr);
        AfxSetModuleState(nullptr);
    }
    AFX_MODULE_STATE* state() { return &state_; }

private:
    AFX_MODULE_STATE state_{"test host"};
};

enum class Way { kAnswer, kEngineError, kStandardException, kOther };

// A gate whose methods end in every possible way.
class UnrulyGate final : public frame::GearGate<IDBgate2> {
public:
    UnrulyGate() : GearGate(IID_IDBgate2, frame::gate2_methods(), gear::kRentals) {}

    HRESULT STDMETHODCALLTYPE OpenDB() override {
        return call_with_errors(__builtin_return_address(0), {}, [&] { return end(); });
    }
    HRESULT STDMETHODCALLTYPE AddGear(LONG_PTR) override {
        return call({}, [&] { return end(); });
    }

    Way way = Way::kAnswer;
    HRESULT answer = S_OK;
    AFX_MODULE_STATE* state_inside = nullptr;

private:
    HRESULT end() {
        state_inside = AfxGetModuleState();
        switch (way) {
            case Way::kAnswer: return answer;
            case Way::kEngineError: throw new CDaoException(3049, "Damaged");
            case Way::kStandardException: throw std::runtime_error("out of luck");
            case Way::kOther: throw 1;
        }
        return E_UNEXPECTED;
    }
};

ComPtr<UnrulyGate> unruly_gate() { return ComPtr<UnrulyGate>(new UnrulyGate); }

template <class Interface>
ComPtr<Interface> linked_gate() {
    using Ids = testing_support::GateIds<Interface>;
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(frame::get_class_object(Ids::clsid, IID_IClassFactory, factory.put()), S_OK);
    ComPtr<Interface> gate;
    EXPECT_EQ(factory->CreateInstance(nullptr, Ids::iid, gate.put()), S_OK);
    return gate;
}

// Calls every method by name, except those that touch files, and checks that each switched to the component's state
// once and back.
void expect_every_method_switches_state(IDispatch& gate, std::span<const frame::Method> methods) {
    WatchedHost host;
    LONG number = 0;
    for (std::size_t row = 0; row < methods.size(); ++row) {
        const std::string_view name = methods[row].name;
        if (name == "OpenDB" || name == "CreateDB") continue;
        std::vector<Variant> arguments(methods[row].parameter_count);
        if (name == "GetDBVer" || name == "ComputeInStock") arguments.back() = Variant::ref(number);
        seen_states.clear();
        const HRESULT result = testing_support::invoke(gate, static_cast<DISPID>(row + 1), arguments).result;
        EXPECT_EQ(result, name == "CloseDB" ? S_OK : DISP_E_EXCEPTION) << name;
        ASSERT_GE(seen_states.size(), 2u) << name;
        EXPECT_EQ(seen_states.front(), AfxGetStaticModuleState()) << name;
        EXPECT_EQ(seen_states.back(), host.state()) << name;
        EXPECT_EQ(AfxGetModuleState(), host.state()) << name;
    }
}

}  // namespace

TEST(ModuleState, thread_starts_with_the_hosts) {
    EXPECT_NE(AfxGetModuleState(), nullptr);
    EXPECT_NE(AfxGetModuleState(), AfxGetStaticModuleState());
}

TEST(ModuleState, switches_nest_and_end_with_their_scope) {
    AFX_MODULE_STATE* const before = AfxGetModuleState();
    AFX_MODULE_STATE other("other");
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        EXPECT_EQ(AfxGetModuleState(), AfxGetStaticModuleState());
        try {
            const AFX_MAINTAIN_STATE2 inner(&other);
            EXPECT_EQ(AfxGetModuleState(), &other);
            throw 1;
        } catch (int) {
            EXPECT_EQ(AfxGetModuleState(), AfxGetStaticModuleState());
        }
    }
    EXPECT_EQ(AfxGetModuleState(), before);
}

TEST(GateCall, methods_of_every_gate_switch_state_and_restore_it) {
    {
        const auto gate = linked_gate<IDBgate1>();
        expect_every_method_switches_state(*gate, frame::gate1_methods());
    }
    {
        const auto gate = linked_gate<IDBgate2>();
        expect_every_method_switches_state(*gate, frame::gate2_methods());
    }
    {
        const auto gate = linked_gate<IDBGate3>();
        expect_every_method_switches_state(*gate, frame::gate3_methods());
    }
}

TEST(GateCall, entry_points_and_release_switch_state_and_restore_it) {
    WatchedHost host;
    ComPtr<IClassFactory> factory;
    const auto expect_switch = [&](const char* what) {
        ASSERT_GE(seen_states.size(), 2u) << what;
        EXPECT_EQ(seen_states.front(), AfxGetStaticModuleState()) << what;
        EXPECT_EQ(AfxGetModuleState(), host.state()) << what;
        seen_states.clear();
    };
    frame::can_unload_now();
    expect_switch("DllCanUnloadNow");
    ASSERT_EQ(frame::get_class_object(CLSID_DBgate1, IID_IClassFactory, factory.put()), S_OK);
    expect_switch("DllGetClassObject");
    frame::register_server(true);
    expect_switch("DllRegisterServer");
    frame::register_server(false);
    expect_switch("DllUnregisterServer");
    ComPtr<IUnknown> gate;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, gate.put()), S_OK);
    expect_switch("CreateInstance");
    gate.reset();
    expect_switch("Release");
}

TEST(GateCall, state_inside_is_the_components) {
    WatchedHost host;
    const auto gate = unruly_gate();
    EXPECT_EQ(gate->AddGear(0), S_OK);
    EXPECT_EQ(gate->state_inside, AfxGetStaticModuleState());
    gate->state_inside = nullptr;
    EXPECT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(gate->state_inside, AfxGetStaticModuleState());
    EXPECT_EQ(AfxGetModuleState(), host.state());
}

TEST(GateCall, every_other_result_is_a_failure) {
    const auto gate = unruly_gate();
    for (const HRESULT answer : {S_FALSE, E_FAIL, E_OUTOFMEMORY, DISP_E_OVERFLOW}) {
        gate->answer = answer;
        EXPECT_EQ(gate->AddGear(0), E_FAIL);
        EXPECT_EQ(gate->OpenDB(), E_FAIL);
    }
}

TEST(GateCall, record_method_lets_no_exception_out_and_restores_the_state) {
    WatchedHost host;
    const auto gate = unruly_gate();
    for (const Way way : {Way::kEngineError, Way::kStandardException, Way::kOther}) {
        gate->way = way;
        EXPECT_EQ(gate->AddGear(0), E_FAIL);
        EXPECT_EQ(AfxGetModuleState(), host.state());
    }
}

TEST(GateCall, open_lets_the_engines_error_out_and_restores_the_state) {
    WatchedHost host;
    const auto gate = unruly_gate();
    gate->way = Way::kEngineError;
    LONG code = 0;
    try {
        gate->OpenDB();
    } catch (CDaoException* error) {
        code = error->m_pErrorInfo->m_lErrorCode;
        error->Delete();
    }
    EXPECT_EQ(code, 3049);
    EXPECT_EQ(AfxGetModuleState(), host.state());
}

TEST(GateCall, open_lets_nothing_else_out) {
    WatchedHost host;
    const auto gate = unruly_gate();
    for (const Way way : {Way::kStandardException, Way::kOther}) {
        gate->way = way;
        EXPECT_EQ(gate->OpenDB(), E_FAIL);
        EXPECT_EQ(AfxGetModuleState(), host.state());
    }
}

TEST(GateCall, error_let_out_becomes_an_automation_exception) {
    WatchedHost host;
    const auto gate = unruly_gate();
    gate->way = Way::kEngineError;
    const auto outcome = testing_support::invoke(*gate, u"OpenDB");
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, E_FAIL);
    EXPECT_EQ(outcome.source, u"KVDB");
    EXPECT_EQ(outcome.description, u"Damaged");
    EXPECT_EQ(AfxGetModuleState(), host.state());
}

// The component from the host's side: exported functions, class factories, identity, late binding.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "tests/frame/gate_host.h"
#include "tests/frame/late_binding.h"

using namespace testing_support;

namespace {

void* const kSentinel = reinterpret_cast<void*>(0x5A5A);

template <class Interface>
void expect_com_identity(const Component& component) {
    const auto gate = component.create<Interface>();
    ComPtr<IUnknown> unknown;
    ComPtr<IDispatch> dispatch;
    ComPtr<Interface> own;
    ComPtr<IUnknown> unknown_again;
    ASSERT_EQ(gate->QueryInterface(IID_IUnknown, unknown.put()), S_OK);
    ASSERT_EQ(unknown->QueryInterface(IID_IDispatch, dispatch.put()), S_OK);
    ASSERT_EQ(dispatch->QueryInterface(GateIds<Interface>::iid, own.put()), S_OK);
    ASSERT_EQ(own->QueryInterface(IID_IUnknown, unknown_again.put()), S_OK);
    EXPECT_EQ(unknown.get(), unknown_again.get());
    EXPECT_EQ(gate.get(), own.get());

    const IID all[] = {IID_IDBgate1, IID_IDBgate2, IID_IDBGate3, IID_IClassFactory, CLSID_DBgate1, IID_NULL};
    for (const IID& iid : all) {
        if (iid == GateIds<Interface>::iid) continue;
        void* other = kSentinel;
        EXPECT_EQ(gate->QueryInterface(iid, &other), E_NOINTERFACE);
        EXPECT_EQ(other, nullptr);
    }
    EXPECT_EQ(gate->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

}  // namespace

TEST(EntryPointsGate, each_class_makes_its_gate) {
    GateHost host;
    EXPECT_TRUE(host.create<IDBgate1>());
    EXPECT_TRUE(host.create<IDBgate2>());
    EXPECT_TRUE(host.create<IDBGate3>());
}

TEST(EntryPointsGate, class_makes_no_other_gates_interface) {
    GateHost host;
    void* gate = kSentinel;
    EXPECT_EQ(host.component().factory(CLSID_DBgate2)->CreateInstance(nullptr, IID_IDBGate3, &gate), E_NOINTERFACE);
    EXPECT_EQ(gate, nullptr);
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
}

TEST(EntryPointsGate, class_outside_the_table_is_not_available) {
    GateHost host;
    // The class identifier in the registration of the second gate; no class of the table has it.
    constexpr CLSID kRegisteredOnly{0xECADD900, 0x76DA, 0x49CB, {0x82, 0x86, 0x4A, 0x59, 0x13, 0xBB, 0xED, 0x89}};
    for (const CLSID& clsid : {kRegisteredOnly, IID_IDBgate1, LIBID_KVDBLib, GUID_NULL}) {
        void* factory = kSentinel;
        EXPECT_EQ(host.component().get_class_object(clsid, IID_IClassFactory, &factory), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(factory, nullptr);
    }
}

TEST(EntryPointsGate, class_object_is_a_factory_and_nothing_else) {
    GateHost host;
    void* object = kSentinel;
    EXPECT_EQ(host.component().get_class_object(CLSID_DBgate1, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(host.component().get_class_object(CLSID_DBgate1, IID_IUnknown, nullptr), E_POINTER);
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(host.component().get_class_object(CLSID_DBgate1, IID_IUnknown, unknown.put()), S_OK);
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(unknown->QueryInterface(IID_IClassFactory, factory.put()), S_OK);
}

TEST(EntryPointsGate, aggregation_is_refused) {
    GateHost host;
    const auto outer = host.create<IDBgate1>();
    void* gate = kSentinel;
    EXPECT_EQ(host.component().factory(CLSID_DBgate1)->CreateInstance(outer.get(), IID_IUnknown, &gate),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(gate, nullptr);
    EXPECT_EQ(host.component().factory(CLSID_DBgate1)->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
}

TEST(EntryPointsGate, identity_holds_for_every_gate) {
    GateHost host;
    expect_com_identity<IDBgate1>(host.component());
    expect_com_identity<IDBgate2>(host.component());
    expect_com_identity<IDBGate3>(host.component());
}

TEST(EntryPointsGate, references_are_counted) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    EXPECT_EQ(gate->AddRef(), 2u);
    EXPECT_EQ(gate->AddRef(), 3u);
    EXPECT_EQ(gate->Release(), 2u);
    EXPECT_EQ(gate->Release(), 1u);
}

TEST(EntryPointsGate, gate_keeps_the_component_loaded) {
    GateHost host;
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
    auto first = host.create<IDBgate1>();
    auto second = host.create<IDBGate3>();
    EXPECT_EQ(host.component().can_unload_now(), S_FALSE);
    first.reset();
    EXPECT_EQ(host.component().can_unload_now(), S_FALSE);
    second.reset();
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
}

TEST(EntryPointsGate, factory_keeps_the_component_loaded) {
    GateHost host;
    auto factory = host.component().factory(CLSID_DBgate2);
    EXPECT_EQ(host.component().can_unload_now(), S_FALSE);
    factory.reset();
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
}

TEST(EntryPointsGate, lock_keeps_the_component_loaded_without_any_object) {
    GateHost host;
    EXPECT_EQ(host.component().factory(CLSID_DBgate1)->LockServer(TRUE), S_OK);
    EXPECT_EQ(host.component().factory(CLSID_DBgate2)->LockServer(TRUE), S_OK);
    EXPECT_EQ(host.component().can_unload_now(), S_FALSE);
    EXPECT_EQ(host.component().factory(CLSID_DBgate1)->LockServer(FALSE), S_OK);
    EXPECT_EQ(host.component().can_unload_now(), S_FALSE);
    EXPECT_EQ(host.component().factory(CLSID_DBGate3)->LockServer(FALSE), S_OK);
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
}

TEST(EntryPointsGate, two_copies_are_two_components) {
    GateHost first;
    GateHost second;
    EXPECT_EQ(first.component().factory(CLSID_DBgate1)->LockServer(TRUE), S_OK);
    EXPECT_EQ(first.component().can_unload_now(), S_FALSE);
    EXPECT_EQ(second.component().can_unload_now(), S_OK);
    EXPECT_EQ(first.component().factory(CLSID_DBgate1)->LockServer(FALSE), S_OK);
}

// ---- Late binding through the library

TEST(LateBindingGate, names_in_any_case_give_the_slot) {
    GateHost host;
    const auto gate1 = host.create<IDBgate1>();
    EXPECT_EQ(id_of(*gate1, u"CreateDB"), 1);
    EXPECT_EQ(id_of(*gate1, u"opendb"), 2);
    EXPECT_EQ(id_of(*gate1, u"ENUMFIRST_CUSTOMQUERY"), 181);
    EXPECT_EQ(id_of(*gate1, u"isDbExist"), 183);
    EXPECT_EQ(id_of(*gate1, u"EnumFirstGear"), DISPID_UNKNOWN);
    const auto gate3 = host.create<IDBGate3>();
    EXPECT_EQ(id_of(*gate3, u"OpenDB"), 1);
    EXPECT_EQ(id_of(*gate3, u"DeleteGearRent"), 32);
}

TEST(LateBindingGate, parameters_have_their_published_names) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    const auto parameter_of = [&](std::u16string method, std::u16string parameter) {
        LPOLESTR names[] = {reinterpret_cast<LPOLESTR>(method.data()), reinterpret_cast<LPOLESTR>(parameter.data())};
        DISPID ids[2] = {9, 9};
        const HRESULT result = gate->GetIDsOfNames(IID_NULL, names, 2, 0, ids);
        EXPECT_EQ(result, ids[1] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK);
        return ids[1];
    };
    EXPECT_EQ(parameter_of(u"EnumFirstProj", u"pPorjInfo"), 0);
    EXPECT_EQ(parameter_of(u"EnumNextProj", u"PPORJINFO"), 0);
    EXPECT_EQ(parameter_of(u"EnumFirstProj", u"pProjInfo"), DISPID_UNKNOWN);
    EXPECT_EQ(parameter_of(u"FindProj", u"pProjInfo"), 0);
    EXPECT_EQ(parameter_of(u"SetInvoiceDef", u"pInvioceDef"), 0);
    EXPECT_EQ(parameter_of(u"GetInvoiceDef", u"pInvoiceDef"), DISPID_UNKNOWN);
    EXPECT_EQ(parameter_of(u"ComputeInStock", u"pnInStock"), 1);
    EXPECT_EQ(parameter_of(u"EnumFirst_CustomQuery", u"nType"), 1);
}

TEST(LateBindingGate, database_methods_answer_as_through_the_virtual_table) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    EXPECT_EQ(gate->IsDbExist(), E_FAIL);
    EXPECT_EQ(invoke(*gate, u"IsDbExist").result, DISP_E_EXCEPTION);
    EXPECT_EQ(invoke(*gate, u"IsDbExist").scode, E_FAIL);
    EXPECT_EQ(gate->CompactDB(0), E_FAIL);
    CompactDBInfo request;
    EXPECT_EQ(gate->CompactDB(address_of(request)), S_OK);
    EXPECT_EQ(invoke(*gate, u"CompactDB", {Variant::i4(0)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(invoke(*gate, u"CompactDB", {Variant::record(request)}).result, S_OK);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(invoke(*gate, u"CloseDB").result, S_OK);
}

// ---- A fresh gate, and a folder with a file that is not a database

TEST(FreshGate, version_and_header_fail_and_leave_the_callers_values) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    LONG version = 77;
    EXPECT_EQ(gate->GetDBVer(&version), E_FAIL);
    EXPECT_EQ(version, 77);
    HeadInfo head;
    head.DBversion = 1;
    head.Color1 = 2;
    head.Color2 = 3;
    EXPECT_EQ(gate->GetHead(address_of(head)), E_FAIL);
    EXPECT_EQ(gate->SetHead(address_of(head)), E_FAIL);
    EXPECT_EQ(head.DBversion, 1);
    EXPECT_EQ(head.Color1, 2);
    EXPECT_EQ(head.Color2, 3);
}

TEST(FreshGate, project_methods_fail) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    ProjInfo project;
    project.ProjID = 4;
    EXPECT_EQ(gate->EnumFirstProj(address_of(project)), E_FAIL);
    EXPECT_EQ(gate->EnumNextProj(address_of(project)), E_FAIL);
    EXPECT_EQ(gate->FindProj(address_of(project)), E_FAIL);
    EXPECT_EQ(gate->AddProj(address_of(project)), E_FAIL);
    EXPECT_EQ(gate->UpdateProj(address_of(project)), E_FAIL);
    EXPECT_EQ(gate->DeleteProj(4), E_FAIL);
    EXPECT_EQ(project.ProjID, 4);
}

TEST(FreshGate, makes_no_file) {
    GateHost host;
    {
        const auto gate = host.create<IDBgate1>();
        gate->IsDbExist();
        gate->CloseDB();
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(host.folder())) {
        EXPECT_EQ(entry.path(), host.component().path());
        ++files;
    }
    EXPECT_EQ(files, 1);
}

namespace {

// What a C++ host receives when the main file is not a database.
template <class Interface>
std::string text_thrown_by_open(const GateHost& host, LONG& code) {
    const auto gate = host.create<Interface>();
    try {
        gate->OpenDB();
    } catch (CDaoException* error) {
        code = error->m_pErrorInfo->m_lErrorCode;
        const std::string text = error->m_pErrorInfo->m_strDescription.GetString();
        error->Delete();
        return text;
    }
    return "";
}

}  // namespace

TEST(ForeignFileGate, open_throws_the_engines_error_to_a_cpp_host) {
    GateHost host;
    std::ofstream(host.file("sldb.mdb"), std::ios::binary) << std::string(8192, 'x');
    LONG code = 0;
    EXPECT_NE(text_thrown_by_open<IDBgate1>(host, code), "");
    EXPECT_EQ(code, 3343);
    code = 0;
    EXPECT_NE(text_thrown_by_open<IDBgate2>(host, code), "");
    EXPECT_EQ(code, 3343);
    code = 0;
    EXPECT_NE(text_thrown_by_open<IDBGate3>(host, code), "");
    EXPECT_EQ(code, 3343);
    EXPECT_EQ(host.component().can_unload_now(), S_OK);
}

TEST(ForeignFileGate, open_by_name_is_an_automation_exception_with_the_engines_text) {
    GateHost host;
    std::ofstream(host.file("sldb.mdb"), std::ios::binary) << std::string(8192, 'x');
    LONG code = 0;
    const std::string text = text_thrown_by_open<IDBgate1>(host, code);
    const auto gate = host.create<IDBgate1>();
    const Outcome outcome = invoke(*gate, u"OpenDB");
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, E_FAIL);
    EXPECT_EQ(outcome.source, u"KVDB");
    EXPECT_EQ(outcome.description, os::widen(text));
    EXPECT_EQ(invoke(*gate, u"CreateDB", {Variant::text(u"any.mdb")}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(invoke(*gate, u"GetDBVer", {Variant::i4(0)}).result, DISP_E_EXCEPTION);
}

// ---- An opened studio

TEST(OpenedGate, version_comes_back_into_every_kind_of_argument) {
    GateHost host;
    const auto gate = host.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(gate->IsDbExist(), S_OK);
    LONG direct = 0;
    ASSERT_EQ(gate->GetDBVer(&direct), S_OK);
    EXPECT_EQ(direct, 210000);
    LONG referred = 0;
    EXPECT_EQ(invoke(*gate, u"GetDBVer", {Variant::ref(referred)}).result, S_OK);
    EXPECT_EQ(referred, direct);
    Variant variant;
    EXPECT_EQ(invoke(*gate, u"GetDBVer", {Variant::ref(variant)}).result, S_OK);
    EXPECT_EQ(variant.vt, VT_I4);
    EXPECT_EQ(variant.lVal, direct);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(gate->GetDBVer(&direct), E_FAIL);
}

TEST(OpenedGate, each_copy_has_files_of_its_own) {
    GateHost first;
    GateHost second;
    const auto gate = first.create<IDBgate1>();
    const auto other = second.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_TRUE(std::filesystem::exists(first.file("sldb.mdb")));
    EXPECT_TRUE(std::filesystem::exists(first.file("kvinvdb.mdb")));
    EXPECT_EQ(other->IsDbExist(), E_FAIL);
    ASSERT_EQ(other->OpenDB(), S_OK);

    ProjInfo project;
    project.Name = "Only here";
    ASSERT_EQ(gate->AddProj(address_of(project)), S_OK);
    ProjInfo found;
    found.ProjID = project.ProjID;
    ASSERT_EQ(gate->FindProj(address_of(found)), S_OK);
    EXPECT_STREQ(found.Name, "Only here");
    ProjInfo absent;
    absent.ProjID = project.ProjID;
    EXPECT_EQ(other->FindProj(address_of(absent)), E_FAIL);
}

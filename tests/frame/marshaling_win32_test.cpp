// Gates between the apartments of a process: every apartment gets the gate itself, whichever created it, and calls it
// without a message to its creator.
#include <gtest/gtest.h>

#include <objidl.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

constexpr DWORD kApartments[] = {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED};

// Runs `work` in a new thread of an apartment, while this thread processes no messages.
template <class Work>
void run_in_apartment(DWORD apartment, Work&& work) {
    std::thread([&] {
        ASSERT_EQ(CoInitializeEx(nullptr, apartment), S_OK);
        work();
        CoUninitialize();
    }).join();
}

class MarshalingWin32 : public testing::Test {
protected:
    // Passes `object` to each kind of apartment; `use` receives what arrives there.
    template <class Interface, class Use>
    void pass(Interface& object, REFIID iid, Use&& use) {
        for (const DWORD apartment : kApartments) {
            IStream* stream = nullptr;
            ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(iid, &object, &stream), S_OK);
            run_in_apartment(apartment, [&] {
                ComPtr<Interface> arrived;
                ASSERT_EQ(CoGetInterfaceAndReleaseStream(stream, iid, arrived.put()), S_OK);
                EXPECT_EQ(arrived.get(), &object);
                use(*arrived);
            });
        }
    }

    const Apartment apartment_;
    GateHost host_;
};

}  // namespace

TEST_F(MarshalingWin32, gate_works_in_every_apartment) {
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    LONG last = 0;
    pass(*gate, IID_IDBgate1, [&](IDBgate1& here) {
        ProjInfo project;
        project.Name = "from another apartment";
        EXPECT_EQ(here.AddProj(address_of(project)), S_OK);
        EXPECT_GT(project.ProjID, last);
        last = project.ProjID;
    });
    ProjInfo project;
    project.ProjID = last;
    EXPECT_EQ(gate->FindProj(address_of(project)), S_OK);
    EXPECT_STREQ(project.Name, "from another apartment");
    gate->CloseDB();
}

TEST_F(MarshalingWin32, gear_gates_factories_and_every_interface_pass) {
    const auto gear = host_.create<IDBgate2>();
    pass(*gear, IID_IDBgate2, [](IDBgate2& here) { EXPECT_EQ(here.OpenDB(), S_OK); });
    const auto third = host_.create<IDBGate3>();
    pass(*third, IID_IDBGate3, [](IDBGate3& here) { EXPECT_EQ(here.OpenDB(), S_OK); });
    pass(static_cast<IDispatch&>(*third), IID_IDispatch, [](IDispatch& here) {
        UINT count = 0;
        EXPECT_EQ(here.GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1u);
    });
    const auto factory = host_.component().factory(CLSID_DBgate1);
    pass(*factory, IID_IClassFactory, [](IClassFactory& here) {
        ComPtr<IDBgate1> made;
        EXPECT_EQ(here.CreateInstance(nullptr, IID_IDBgate1, made.put()), S_OK);
    });
}

TEST_F(MarshalingWin32, marshaler_is_a_part_of_the_gate) {
    const auto gate = host_.create<IDBgate1>();
    ComPtr<IMarshal> marshal;
    ASSERT_EQ(gate->QueryInterface(IID_IMarshal, marshal.put()), S_OK);
    ComPtr<IUnknown> identity;
    ComPtr<IUnknown> same;
    ASSERT_EQ(gate->QueryInterface(IID_IUnknown, identity.put()), S_OK);
    ASSERT_EQ(marshal->QueryInterface(IID_IUnknown, same.put()), S_OK);
    EXPECT_EQ(identity.get(), same.get());
    // The marshaler keeps no reference that would keep the gate alive.
    identity.reset();
    same.reset();
    marshal.reset();
    gate->AddRef();
    EXPECT_EQ(gate->Release(), 1u);
}

TEST_F(MarshalingWin32, gates_made_in_many_apartments_work_at_once) {
    const std::string manifest = host_.file("kvdb.gates.manifest");
    CopyFileA(os::join_path(os::folder_of(KVDB_LIBRARY), "kvdb.gates.manifest").c_str(), manifest.c_str(), TRUE);
    ASSERT_EQ(host_.create<IDBgate1>()->OpenDB(), S_OK);
    std::atomic<int> added{0};
    std::vector<std::thread> threads;
    constexpr int kRows = 30;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            ASSERT_EQ(CoInitializeEx(nullptr, kApartments[i % 2]), S_OK);
            {
                const ManifestContext context(manifest);
                ComPtr<IDBgate1> gate;
                ASSERT_EQ(CoCreateInstance(CLSID_DBgate1, nullptr, CLSCTX_INPROC_SERVER, IID_IDBgate1, gate.put()),
                          S_OK);
                ASSERT_EQ(gate->CreateDB(nullptr), S_OK);
                for (int row = 0; row < kRows; ++row) {
                    ProjInfo project;
                    project.Name = "row";
                    added += gate->AddProj(address_of(project)) == S_OK;
                }
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(added, 4 * kRows);
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->CreateDB(nullptr), S_OK);
    int rows = 0;
    ProjInfo project;
    for (HRESULT at = gate->EnumFirstProj(address_of(project)); at == S_OK;
         at = gate->EnumNextProj(address_of(project))) {
        rows += project.Name == "row";
    }
    EXPECT_EQ(rows, 4 * kRows);
    gate->CloseDB();
    CoFreeUnusedLibrariesEx(0, 0);
}

// The class table, its creators, and the published identifiers.
#include "frame/class_table.h"

#include <gtest/gtest.h>
#include <kvdb/gates.h>

#include <string_view>

#include "afx/module_state.h"
#include "frame/entry_points.h"

TEST(ClassTable, classes_stand_in_order_with_their_scripts_and_descriptions) {
    const auto table = frame::class_table();
    ASSERT_EQ(table.size(), 3u);
    EXPECT_EQ(table[0].clsid, CLSID_DBgate1);
    EXPECT_EQ(table[1].clsid, CLSID_DBgate2);
    EXPECT_EQ(table[2].clsid, CLSID_DBGate3);
    EXPECT_EQ(table[0].script, 103);
    EXPECT_EQ(table[1].script, 104);
    EXPECT_EQ(table[2].script, 105);
    EXPECT_EQ(table[0].description(), std::string_view("DBgate1 Class"));
    EXPECT_EQ(table[1].description(), std::string_view("DBgate2 Class"));
    EXPECT_EQ(table[2].description(), std::string_view("DBGate3 Class"));
}

TEST(ClassTable, creators_make_a_factory_and_an_instance) {
    for (const frame::ClassEntry& entry : frame::class_table()) {
        IUnknown* made = nullptr;
        ASSERT_EQ(entry.create_factory(entry, IID_IClassFactory, reinterpret_cast<void**>(&made)), S_OK);
        EXPECT_EQ(made->Release(), 0u);
        made = nullptr;
        ASSERT_EQ(entry.create_instance(IID_IDispatch, reinterpret_cast<void**>(&made)), S_OK);
        EXPECT_EQ(made->Release(), 0u);
    }
}

TEST(ClassTable, published_identifiers_are_unchanged) {
    const auto text = [](const GUID& id) {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                      static_cast<unsigned>(id.Data1), id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2],
                      id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
        return std::string(buffer);
    };
    EXPECT_EQ(text(LIBID_KVDBLib), "{D4E6B90C-22E3-47D3-9E7F-02AA21C9A428}");
    EXPECT_EQ(text(CLSID_DBgate1), "{66DA35EC-B364-4F64-A3FD-D09D314C02D1}");
    EXPECT_EQ(text(CLSID_DBgate2), "{99CA7812-20D9-4498-9727-DE8B97A3F383}");
    EXPECT_EQ(text(CLSID_DBgate3), "{BD49E811-5273-4074-BD03-8ED9B0812418}");
    EXPECT_EQ(text(IID_IDBgate1), "{02CF8E26-615C-4CA7-AC50-B8CED6B5928E}");
    EXPECT_EQ(text(IID_IDBgate2), "{0E7EFBB4-0BD3-42C6-A888-EFCD04F001B3}");
    EXPECT_EQ(text(IID_IDBgate3), "{EA3B6D78-CF9F-477C-AB55-3ABDE466EC1D}");
}

TEST(CanUnloadNow, frameworks_own_test_can_say_no) {
    ASSERT_EQ(frame::can_unload_now(), S_OK);
    AfxOleLockApp();
    EXPECT_EQ(frame::can_unload_now(), S_FALSE);
    AfxOleUnlockApp();
    EXPECT_EQ(frame::can_unload_now(), S_OK);
}

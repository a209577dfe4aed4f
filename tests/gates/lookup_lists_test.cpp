// The four lists of names through the main gate.
#include <array>
#include <cstring>
#include <string>

#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

struct ListCase {
    using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LPSTR);
    const char* table;
    Method first;
    Method next;
    Method add;
    Method remove;
};

const ListCase kLists[] = {
    {"Def_TrackTypes", &IDBgate1::EnumFirstTrackType, &IDBgate1::EnumNextTrackType, &IDBgate1::AddTrackType,
     &IDBgate1::DeleteTrackType},
    {"Def_ProjTypes", &IDBgate1::EnumFirstProjType, &IDBgate1::EnumNextProjType, &IDBgate1::AddProjType,
     &IDBgate1::DeleteProjType},
    {"Def_TrackDestination", &IDBgate1::EnumFirstTrackDestin, &IDBgate1::EnumNextTrackDestin, &IDBgate1::AddTrackDestin,
     &IDBgate1::DeleteTrackDestin},
    {"Def_EquipActs", &IDBgate1::EnumFirstEquipAct, &IDBgate1::EnumNextEquipAct, &IDBgate1::AddEquipAct,
     &IDBgate1::DeleteEquipAct},
};

constexpr std::size_t kBufferSize = 256;
constexpr char kSentinel = '\x5A';

// A caller's buffer, and whether anything behind it was touched.
struct Buffer {
    std::array<char, kBufferSize + 16> bytes;
    Buffer() { bytes.fill(kSentinel); }
    char* text() { return bytes.data(); }
    bool is_untouched() const {
        return std::count(bytes.begin(), bytes.end(), kSentinel) == static_cast<std::ptrdiff_t>(bytes.size());
    }
    bool is_kept_to() const { return std::count(bytes.begin() + kBufferSize, bytes.end(), kSentinel) == 16; }
};

// The names that the closed file holds, each ended by a blank.
std::string stored_names(const std::string& path, const char* table) {
    jet::OpenOptions options;
    options.ignore_password = true;
    options.read_only = true;
    const auto database = jet::Database::open(path, options);
    const jet::Table* const found = database->find_table(jet::from_utf8(table));
    std::string all;
    jet::RowView view;
    for (auto row = found->next_row({}); row; row = found->next_row(*row)) {
        if (found->read(*row, view)) all += jet::to_utf8(std::get<std::u16string>(view.value(0))) + " ";
    }
    return all;
}

class ListsGate : public testing::TestWithParam<ListCase> {
protected:
    HRESULT call(ListCase::Method method, const std::string& name) {
        std::string copy = name;
        return ((*gate_).*method)(copy.data());
    }
    HRESULT add(const std::string& name) { return call(GetParam().add, name); }
    HRESULT remove(const std::string& name) { return call(GetParam().remove, name); }

    // The names of a list, each ended by a blank.
    std::string names(const ListCase& list) {
        std::string all;
        Buffer buffer;
        for (HRESULT result = ((*gate_).*list.first)(buffer.text()); result == S_OK;
             result = ((*gate_).*list.next)(buffer.text())) {
            all += std::string(buffer.text()) + " ";
        }
        return all;
    }
    std::string names() { return names(GetParam()); }

    OpenGate<IDBgate1> gate_;
};

INSTANTIATE_TEST_SUITE_P(Each, ListsGate, testing::ValuesIn(kLists),
                         [](const auto& each) { return std::string(each.param.table); });

TEST_P(ListsGate, names_come_back_in_the_order_of_adding_and_go_to_their_own_table) {
    for (const char* name : {"Vocal", "Bass", "Drums"}) EXPECT_EQ(add(name), S_OK);
    EXPECT_EQ(names(), "Vocal Bass Drums ");
    for (const ListCase& other : kLists) {
        if (std::strcmp(other.table, GetParam().table) == 0) continue;
        EXPECT_EQ(names(other), "") << other.table;
    }
    gate_.while_closed([&] {
        for (const ListCase& list : kLists) {
            const bool mine = std::strcmp(list.table, GetParam().table) == 0;
            EXPECT_EQ(stored_names(gate_.file("sldb.mdb"), list.table), mine ? "Vocal Bass Drums " : "");
        }
    });
}

TEST_P(ListsGate, name_added_twice_in_whatever_case_leaves_one_row_and_is_a_success) {
    EXPECT_EQ(add("Drums"), S_OK);
    EXPECT_EQ(add("Drums"), S_OK);
    EXPECT_EQ(add("drums"), S_OK);
    EXPECT_EQ(names(), "Drums ");
}

TEST_P(ListsGate, delete_of_an_unknown_name_is_a_success_and_changes_nothing) {
    EXPECT_EQ(remove("Drums"), S_OK);
    EXPECT_EQ(add("Bass"), S_OK);
    EXPECT_EQ(remove("Drums"), S_OK);
    EXPECT_EQ(names(), "Bass ");
}

TEST_P(ListsGate, delete_takes_the_named_row_only) {
    for (const char* name : {"Vocal", "Bass", "Drums"}) EXPECT_EQ(add(name), S_OK);
    EXPECT_EQ(remove("BASS"), S_OK);
    EXPECT_EQ(names(), "Vocal Drums ");
}

TEST_P(ListsGate, enumeration_of_an_empty_list_fails_and_leaves_the_buffer) {
    Buffer buffer;
    EXPECT_EQ(((*gate_).*GetParam().next)(buffer.text()), E_FAIL);
    EXPECT_EQ(((*gate_).*GetParam().first)(buffer.text()), E_FAIL);
    EXPECT_EQ(((*gate_).*GetParam().next)(buffer.text()), E_FAIL);
    EXPECT_TRUE(buffer.is_untouched());
}

TEST_P(ListsGate, enumeration_ends_with_a_failure_that_leaves_the_buffer) {
    EXPECT_EQ(add("Drums"), S_OK);
    Buffer buffer;
    EXPECT_EQ(((*gate_).*GetParam().first)(buffer.text()), S_OK);
    EXPECT_STREQ(buffer.text(), "Drums");
    EXPECT_EQ(std::count(buffer.bytes.begin(), buffer.bytes.end(), kSentinel),
              static_cast<std::ptrdiff_t>(buffer.bytes.size() - sizeof "Drums"));
    Buffer end;
    EXPECT_EQ(((*gate_).*GetParam().next)(end.text()), E_FAIL);
    EXPECT_EQ(((*gate_).*GetParam().next)(end.text()), E_FAIL);
    EXPECT_TRUE(end.is_untouched());
}

TEST_P(ListsGate, longest_name_fills_the_buffer_and_a_longer_one_is_not_added) {
    const std::string longest(kBufferSize - 1, 'n');
    EXPECT_EQ(add(longest), S_OK);
    EXPECT_EQ(add(longest + "n"), E_FAIL);
    Buffer buffer;
    EXPECT_EQ(((*gate_).*GetParam().first)(buffer.text()), S_OK);
    EXPECT_EQ(std::string(buffer.text()), longest);
    EXPECT_TRUE(buffer.is_kept_to());
    EXPECT_EQ(((*gate_).*GetParam().next)(buffer.text()), E_FAIL);  // nothing was left half written
}

TEST_P(ListsGate, empty_and_broken_names_fail) {
    EXPECT_EQ(add(""), E_FAIL);  // the column takes no text of zero length
    EXPECT_EQ(remove(""), S_OK);
    EXPECT_EQ(add("7\" tape"), E_FAIL);
    EXPECT_EQ(remove("7\" tape"), E_FAIL);
    EXPECT_EQ(names(), "");
}

// The statement's text takes two quotes for one, the column takes both as they stand.
TEST_P(ListsGate, doubled_quotes_are_one_to_the_statement_and_two_to_the_column) {
    EXPECT_EQ(add("7\"\"tape"), S_OK);
    EXPECT_EQ(names(), "7\"\"tape ");
    EXPECT_EQ(remove("7\"\"tape"), S_OK);  // asks for the name with one
    EXPECT_EQ(names(), "7\"\"tape ");
}

TEST_P(ListsGate, null_texts_fail) {
    EXPECT_EQ(add("Drums"), S_OK);
    EXPECT_EQ(add("Bass"), S_OK);
    Buffer buffer;
    EXPECT_EQ(((*gate_).*GetParam().first)(buffer.text()), S_OK);
    for (const auto method : {GetParam().first, GetParam().next, GetParam().add, GetParam().remove}) {
        EXPECT_EQ(((*gate_).*method)(nullptr), E_FAIL);
    }
    EXPECT_EQ(((*gate_).*GetParam().next)(buffer.text()), S_OK);
    EXPECT_STREQ(buffer.text(), "Bass");
}

TEST_P(ListsGate, closed_database_fails_until_it_is_open_again) {
    EXPECT_EQ(add("Drums"), S_OK);
    EXPECT_EQ(add("Bass"), S_OK);
    Buffer buffer;
    EXPECT_EQ(((*gate_).*GetParam().first)(buffer.text()), S_OK);
    ASSERT_EQ(gate_->CloseDB(), S_OK);
    const auto fresh = gate_.host().create<IDBgate1>();
    for (IDBgate1* const closed : {&*gate_, fresh.get()}) {
        for (const auto method : {GetParam().first, GetParam().next, GetParam().add, GetParam().remove}) {
            char name[kBufferSize] = "Vocal";
            EXPECT_EQ((closed->*method)(name), E_FAIL);
            EXPECT_STREQ(name, "Vocal");
        }
    }
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    EXPECT_EQ(((*gate_).*GetParam().next)(buffer.text()), E_FAIL);  // the enumeration ended with the database
    EXPECT_EQ(names(), "Drums Bass ");
}

TEST_P(ListsGate, lists_are_enumerated_side_by_side) {
    char name[kBufferSize];
    for (const ListCase& list : kLists) {
        for (const char* text : {"a", "b"}) EXPECT_EQ(call(list.add, text), S_OK);
        EXPECT_EQ(((*gate_).*list.first)(name), S_OK);
    }
    EXPECT_EQ(((*gate_).*GetParam().next)(name), S_OK);
    EXPECT_EQ(((*gate_).*GetParam().next)(name), E_FAIL);
    for (const ListCase& list : kLists) {
        if (std::strcmp(list.table, GetParam().table) == 0) continue;
        EXPECT_EQ(((*gate_).*list.next)(name), S_OK);
        EXPECT_STREQ(name, "b");
    }
}

}  // namespace

// Engineers, sequencers and rooms through the main gate.
#include "tests/gates/definitions_cases.h"
#include "tests/gates/engineers_cases.h"
#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

// How many rows an enumeration gives.
template <class Record>
int count(const RecordCase<IDBgate1, Record>& table, IDBgate1& gate) {
    int rows = 0;
    Record record = question(table);
    for (HRESULT result = call(gate, table.first, record); result == S_OK; result = call(gate, table.next, record)) {
        ++rows;
    }
    return rows;
}

// What Add does with a name that is there already.
template <class Record>
void expect_names_once(const RecordCase<IDBgate1, Record>& table) {
    OpenGate<IDBgate1> gate(table.prepare);
    const LONG key = add_variant(table, *gate, 1);
    Record again = filled(table, kNoKey, 2);
    again.Name = filled(table, 0, 1).Name;
    again.Name.MakeUpper();
    const CString name = again.Name;
    EXPECT_EQ(call(*gate, table.add, again), S_OK);
    EXPECT_EQ(again.*table.key, kNoKey);
    EXPECT_EQ(again.Name, name);
    EXPECT_EQ(count(table, *gate), 1);
    expect_found(table, *gate, key, 1, 2);

    Record empty;
    empty.*table.key = kNoKey;
    EXPECT_EQ(call(*gate, table.add, empty), E_FAIL);
    Record broken;
    broken.*table.key = kNoKey;
    broken.Name = "6\" monitor";
    EXPECT_EQ(call(*gate, table.add, broken), E_FAIL);
    EXPECT_EQ(broken.*table.key, kNoKey);
    EXPECT_EQ(count(table, *gate), 1);
}

// Find by name where there is no key.
template <class Record>
void expect_found_by_name(const RecordCase<IDBgate1, Record>& table) {
    OpenGate<IDBgate1> gate(table.prepare);
    add_variant(table, *gate, 1);
    const LONG key = add_variant(table, *gate, 2);
    Record record;
    record.Name = filled(table, 0, 2).Name;
    EXPECT_EQ(call(*gate, table.find, record), S_OK);
    expect_same(table, record, filled(table, key, 2, Form::kStored));

    record = filled(table, key, 1);  // the key comes before the name
    EXPECT_EQ(call(*gate, table.find, record), S_OK);
    expect_same(table, record, filled(table, key, 2, Form::kStored));

    for (const char* name : {"", "nobody", "6\" monitor"}) {
        record = filled(table, 0, 3);
        record.Name = name;
        Record expected = record;
        EXPECT_EQ(call(*gate, table.find, record), E_FAIL) << name;
        expect_same(table, record, expected);
    }
}

TEST(EngineersGate, members_make_the_round_trip) { expect_round_trip(kEngineers); }
TEST(EngineersGate, columns_hold_the_members_of_their_name) { expect_columns(kEngineers); }
TEST(EngineersGate, failure_leaves_the_record_alone) { expect_failures(kEngineers); }
TEST(EngineersGate, mappings_go_in_their_order) { expect_orders(kEngineers); }
TEST(EngineersGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kEngineers); }
TEST(EngineersGate, known_name_is_a_success_that_adds_nothing_and_leaves_the_key) { expect_names_once(kEngineers); }
TEST(EngineersGate, find_without_key_goes_by_name) { expect_found_by_name(kEngineers); }

TEST(EngineersGate, file_without_their_table_fails_in_every_method) {
    const OpenGate<IDBgate1> gate;
    EngineerInfo record = filled(kEngineers, 1, 1);
    for (const auto method : {kEngineers.first, kEngineers.next, kEngineers.find, kEngineers.add, kEngineers.update}) {
        EXPECT_EQ(call(*gate, method, record), E_FAIL);
    }
    EXPECT_EQ(kEngineers.call_remove(*gate, record), E_FAIL);
    expect_same(kEngineers, record, filled(kEngineers, 1, 1));
    gate->CloseDB();
    EXPECT_THROW(rows_of(gate.file("sldb.mdb"), "Def_Engineers", "RecID"), std::runtime_error);
}

TEST(SequencersGate, members_make_the_round_trip) { expect_round_trip(kSequencers); }
TEST(SequencersGate, columns_hold_the_members_of_their_name) { expect_columns(kSequencers); }
TEST(SequencersGate, failure_leaves_the_record_alone) { expect_failures(kSequencers); }
TEST(SequencersGate, mappings_go_in_their_order) { expect_orders(kSequencers); }
TEST(SequencersGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kSequencers); }
TEST(SequencersGate, find_without_key_goes_by_name) { expect_found_by_name(kSequencers); }

TEST(SequencersGate, name_may_be_added_twice) {
    const OpenGate<IDBgate1> gate;
    const LONG key = add_variant(kSequencers, *gate, 1);
    EXPECT_EQ(add_variant(kSequencers, *gate, 1), key + 1);
    EXPECT_EQ(count(kSequencers, *gate), 2);
    SeqInfo record;
    record.Name = filled(kSequencers, 0, 1).Name;
    EXPECT_EQ(gate->FindSequencer(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, key);  // the first of the two
}

TEST(RoomsGate, members_make_the_round_trip) { expect_round_trip(kRooms); }
TEST(RoomsGate, columns_hold_the_members_of_their_name) { expect_columns(kRooms); }
TEST(RoomsGate, failure_leaves_the_record_alone) { expect_failures(kRooms); }
TEST(RoomsGate, mappings_go_in_their_order) { expect_orders(kRooms); }
TEST(RoomsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kRooms); }
TEST(RoomsGate, known_name_is_a_success_that_adds_nothing_and_leaves_the_key) { expect_names_once(kRooms); }

TEST(RoomsGate, find_goes_by_key_only) {
    const OpenGate<IDBgate1> gate;
    add_variant(kRooms, *gate, 1);
    RoomInfo record = filled(kRooms, 0, 1);
    EXPECT_EQ(gate->FindRoom(address_of(record)), E_FAIL);
    expect_same(kRooms, record, filled(kRooms, 0, 1));
}

}  // namespace

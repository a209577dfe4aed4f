// Enumerations within dates and the custom query through the gate.
#include <gtest/gtest.h>

#include <string>

#include "tests/gates/record_round_trip.h"

using namespace testing_support;

namespace {

constexpr DWORD kFrom = 1;
constexpr DWORD kTo = 2;

CTime march(int day) { return CTime(2005, 3, day, 0, 0, 0); }

SessionInfo add_session(IDBgate1& gate, LONG project, CTime date) {
    SessionInfo session;
    session.ProjID = project;
    session.SongName = "Song";
    session.SongID = 21;
    session.Engineer = "Dan";
    session.ArtistID = 22;
    session.Reserved = "not stored";
    session.RecDate = date;
    session.StartTime = "10:00";
    session.EndTime = "13:30";
    session.Total = "3:30";
    session.Notes = "notes";
    session.Client = "client";
    session.ClientID = 23;
    session.RoomID = 24;
    session.ExData = 25;
    EXPECT_EQ(call(gate, &IDBgate1::AddSession, session), S_OK);
    return session;
}

SupplyAct add_supply(IDBgate1& gate, LONG stock, LONG project, LONG client, CTime date) {
    SupplyAct supply;
    supply.StockID = stock;
    supply.ProjID = project;
    supply.ClientID = client;
    supply.StockName = "DAT 60";
    supply.StockType = "tape";
    supply.Client = "client";
    supply.Date = date;
    supply.Quantity = 12;
    supply.ExData = 13;
    EXPECT_EQ(call(gate, &IDBgate1::AddSupplyAct, supply), S_OK);
    return supply;
}

// The keys that an enumeration beginning with this record returns, each after a blank.
template <class Record, class Method>
std::string keys(IDBgate1& gate, Record filter, Method first, Method next, LONG Record::*key) {
    std::string keys;
    HRESULT result = call(gate, first, filter);
    while (result == S_OK) {
        keys += " " + std::to_string(filter.*key);
        result = call(gate, next, filter);
    }
    EXPECT_EQ(result, E_FAIL);
    return keys;
}
std::string keys(IDBgate1& gate, const SessionExInfo& filter) {
    return keys(gate, filter, &IDBgate1::EnumEx_FirstSession, &IDBgate1::EnumEx_NextSession, &SessionExInfo::SessionID);
}
std::string keys(IDBgate1& gate, const SupplyExInfo& filter) {
    return keys(gate, filter, &IDBgate1::EnumEx_FirstSupply, &IDBgate1::EnumEx_NextSupply, &SupplyExInfo::ActionID);
}

// Members of the record that a row fills; `Reserved` becomes empty.
void expect_session(const SessionExInfo& record, const SessionInfo& row) {
    EXPECT_EQ(record.ProjID, row.ProjID);
    EXPECT_EQ(record.SessionID, row.SessionID);
    EXPECT_EQ(record.SongName, row.SongName);
    EXPECT_EQ(record.SongID, row.SongID);
    EXPECT_EQ(record.Engineer, row.Engineer);
    EXPECT_EQ(record.ArtistID, row.ArtistID);
    EXPECT_EQ(record.Reserved, "");
    EXPECT_EQ(record.RecDate, row.RecDate);
    EXPECT_EQ(record.StartTime, row.StartTime);
    EXPECT_EQ(record.EndTime, row.EndTime);
    EXPECT_EQ(record.Total, row.Total);
    EXPECT_EQ(record.Notes, row.Notes);
    EXPECT_EQ(record.Client, row.Client);
    EXPECT_EQ(record.ClientID, row.ClientID);
    EXPECT_EQ(record.RoomID, row.RoomID);
    EXPECT_EQ(record.ExData, row.ExData);
}
void expect_supply(const SupplyExInfo& record, const SupplyAct& row) {
    EXPECT_EQ(record.ActionID, row.ActionID);
    EXPECT_EQ(record.StockID, row.StockID);
    EXPECT_EQ(record.ProjID, row.ProjID);
    EXPECT_EQ(record.StockName, row.StockName);
    EXPECT_EQ(record.StockType, row.StockType);
    EXPECT_EQ(record.Client, row.Client);
    EXPECT_EQ(record.ClientID, row.ClientID);
    EXPECT_EQ(record.Date, row.Date);
    EXPECT_EQ(record.Quantity, row.Quantity);
    EXPECT_EQ(record.ExData, row.ExData);
}

// ---- Sessions

TEST(ExtendedSessionsGate, both_steps_fill_the_sixteen_members_and_leave_the_three_behind) {
    OpenGate<IDBgate1> gate;
    const SessionInfo first = add_session(*gate, 4, march(1));
    const SessionInfo second = add_session(*gate, 4, march(2));
    SessionExInfo record;
    record.ProjID = 4;
    record.Reserved = "sentinel";
    record.FromDate = CTime(2005, 2, 3, 4, 5, 6);
    record.ToDate = CTime(2005, 4, 5, 6, 7, 8);
    record.DateFlags = kFrom | kTo | 0xF0;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    expect_session(record, first);
    record.Reserved = "sentinel";
    record.RecDate = CTime(77);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), S_OK);
    expect_session(record, second);
    EXPECT_EQ(record.FromDate, CTime(2005, 2, 3, 4, 5, 6));
    EXPECT_EQ(record.ToDate, CTime(2005, 4, 5, 6, 7, 8));
    EXPECT_EQ(record.DateFlags, kFrom | kTo | 0xF0);

    record.Reserved = "sentinel";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
    EXPECT_EQ(record.Reserved, "sentinel");
    EXPECT_EQ(record.SessionID, second.SessionID);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
}

TEST(ExtendedSessionsGate, bounds_are_inclusive_and_either_applies_alone) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2, 3, 4}) add_session(*gate, 4, march(day));
    SessionExInfo filter;
    filter.FromDate = march(2);
    filter.ToDate = march(3);
    EXPECT_EQ(keys(*gate, filter), " 1 2 3 4");  // no flag, no bound
    filter.DateFlags = kFrom;
    EXPECT_EQ(keys(*gate, filter), " 2 3 4");
    filter.DateFlags = kTo;
    EXPECT_EQ(keys(*gate, filter), " 1 2 3");
    filter.DateFlags = kFrom | kTo;
    EXPECT_EQ(keys(*gate, filter), " 2 3");
    filter.FromDate = march(4);
    EXPECT_EQ(keys(*gate, filter), "");
}

TEST(ExtendedSessionsGate, bounds_join_the_other_clauses) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2, 3}) add_session(*gate, 4 + day % 2, march(day));
    SessionExInfo filter;
    filter.ProjID = 5;
    filter.Engineer = "D*";
    filter.FromDate = march(2);
    filter.DateFlags = kFrom;
    EXPECT_EQ(keys(*gate, filter), " 3");
    filter.Engineer = "D";
    EXPECT_EQ(keys(*gate, filter), "");
}

TEST(ExtendedSessionsGate, session_without_a_date_is_within_no_dates) {
    OpenGate<IDBgate1> gate;
    add_session(*gate, 4, CTime(-1));
    SessionExInfo filter;
    EXPECT_EQ(keys(*gate, filter), " 1");
    filter.FromDate = CTime(1970, 1, 2, 0, 0, 0);
    filter.DateFlags = kFrom;
    EXPECT_EQ(keys(*gate, filter), "");
    filter.ToDate = CTime(2037, 1, 1, 0, 0, 0);
    filter.DateFlags = kTo;
    EXPECT_EQ(keys(*gate, filter), "");
}

TEST(ExtendedSessionsGate, flags_0_and_nothing_set_cover_the_whole_table) {
    OpenGate<IDBgate1> gate;
    for (const LONG project : {4, 0, 5}) add_session(*gate, project, march(1));
    EXPECT_EQ(keys(*gate, SessionExInfo()), " 1 2 3");
}

TEST(ExtendedSessionsGate, next_before_first_fails) {
    OpenGate<IDBgate1> gate;
    add_session(*gate, 4, march(1));
    SessionExInfo record;
    record.Reserved = "sentinel";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
    EXPECT_EQ(record.Reserved, "sentinel");
    EXPECT_EQ(record.SessionID, 0);
}

TEST(ExtendedSessionsGate, plain_enumeration_runs_beside_the_extended_one) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2, 3}) add_session(*gate, 4, march(day));
    SessionExInfo extended;
    SessionInfo plain;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, extended), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSession, plain), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, extended), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, extended), S_OK);
    EXPECT_EQ(extended.SessionID, 3);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, extended), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSession, plain), S_OK);
    EXPECT_EQ(plain.SessionID, 2);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSession, plain), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSession, plain), E_FAIL);
}

TEST(ExtendedSessionsGate, null_record_leaves_the_enumeration_under_way) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2}) add_session(*gate, 4, march(day));
    SessionExInfo record;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    EXPECT_EQ(gate->EnumEx_FirstSession(0), E_FAIL);
    EXPECT_EQ(gate->EnumEx_NextSession(0), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), S_OK);
    EXPECT_EQ(record.SessionID, 2);
}

TEST(ExtendedSessionsGate, quote_in_a_pattern_fails_and_ends_the_enumeration) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2}) add_session(*gate, 4, march(day));
    SessionExInfo record;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    SessionExInfo broken;
    broken.SongName = "6\"";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, broken), E_FAIL);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
}

TEST(ExtendedSessionsGate, closed_database_fails) {
    OpenGate<IDBgate1> gate;
    add_session(*gate, 4, march(1));
    SessionExInfo record;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    record = SessionExInfo();
    gate.while_closed([&] {
        EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), E_FAIL);
        EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
    });
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);
    EXPECT_EQ(record.SessionID, 0);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
}

// ---- Supply

TEST(ExtendedSupplyGate, both_steps_fill_the_ten_members_and_leave_the_three_behind) {
    OpenGate<IDBgate1> gate;
    const SupplyAct first = add_supply(*gate, 2, 4, 7, march(1));
    const SupplyAct second = add_supply(*gate, 2, 4, 7, march(2));
    SupplyExInfo record;
    record.StockName = "sentinel";
    record.FromDate = CTime(2005, 2, 3, 4, 5, 6);
    record.ToDate = CTime(2005, 4, 5, 6, 7, 8);
    record.DateFlags = kFrom | kTo;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSupply, record), S_OK);
    expect_supply(record, first);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, record), S_OK);
    expect_supply(record, second);
    EXPECT_EQ(record.FromDate, CTime(2005, 2, 3, 4, 5, 6));
    EXPECT_EQ(record.ToDate, CTime(2005, 4, 5, 6, 7, 8));
    EXPECT_EQ(record.DateFlags, kFrom | kTo);
    record.StockName = "sentinel";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, record), E_FAIL);
    EXPECT_EQ(record.StockName, "sentinel");
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, record), E_FAIL);
}

TEST(ExtendedSupplyGate, every_number_joins_the_others_unlike_in_the_plain_filter) {
    OpenGate<IDBgate1> gate;
    for (LONG i = 0; i < 8; ++i) add_supply(*gate, 2 + i % 2, 4 + i / 2 % 2, 7 + i / 4, march(1 + i));
    SupplyExInfo filter;
    EXPECT_EQ(keys(*gate, filter), " 1 2 3 4 5 6 7 8");
    filter.ClientID = 8;
    EXPECT_EQ(keys(*gate, filter), " 5 6 7 8");
    filter.ProjID = 5;
    EXPECT_EQ(keys(*gate, filter), " 7 8");
    filter.StockID = 3;
    EXPECT_EQ(keys(*gate, filter), " 8");
    filter.ToDate = march(7);
    filter.DateFlags = kTo;
    EXPECT_EQ(keys(*gate, filter), "");
}

TEST(ExtendedSupplyGate, bounds_are_inclusive_and_either_applies_alone) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2, 3, 4}) add_supply(*gate, 2, 4, 7, march(day));
    SupplyExInfo filter;
    filter.FromDate = march(2);
    filter.ToDate = march(3);
    EXPECT_EQ(keys(*gate, filter), " 1 2 3 4");
    filter.DateFlags = kFrom;
    EXPECT_EQ(keys(*gate, filter), " 2 3 4");
    filter.DateFlags = kTo;
    EXPECT_EQ(keys(*gate, filter), " 1 2 3");
    filter.DateFlags = kFrom | kTo;
    EXPECT_EQ(keys(*gate, filter), " 2 3");
}

TEST(ExtendedSupplyGate, null_records_and_next_before_first_fail) {
    OpenGate<IDBgate1> gate;
    add_supply(*gate, 2, 4, 7, march(1));
    SupplyExInfo record;
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, record), E_FAIL);
    EXPECT_EQ(gate->EnumEx_FirstSupply(0), E_FAIL);
    EXPECT_EQ(gate->EnumEx_NextSupply(0), E_FAIL);
    EXPECT_EQ(record.ActionID, 0);
}

TEST(ExtendedSupplyGate, plain_enumeration_runs_beside_the_extended_one) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2}) add_supply(*gate, 2, 4, 7, march(day));
    SupplyExInfo extended;
    SupplyAct plain;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSupply, extended), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSupply, plain), S_OK);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, extended), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSupply, extended), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSupply, plain), S_OK);
    EXPECT_EQ(plain.ActionID, 2);
}

// ---- The custom query

TEST(CustomQueryGate, no_type_of_query_is_defined) {
    OpenGate<IDBgate1> gate;
    add_session(*gate, 4, march(1));
    for (const LONG type : {0, 1, -1, 64}) {
        CustomInfo record;
        record.Reserved = 0x5A5A;
        EXPECT_EQ(gate->EnumNext_CustomQuery(address_of(record)), E_FAIL);
        EXPECT_EQ(gate->EnumFirst_CustomQuery(address_of(record), type), E_FAIL);
        EXPECT_EQ(gate->EnumNext_CustomQuery(address_of(record)), E_FAIL);
        EXPECT_EQ(record.Reserved, 0x5A5A);
    }
    EXPECT_EQ(gate->EnumFirst_CustomQuery(0, 1), E_FAIL);
    EXPECT_EQ(gate->EnumNext_CustomQuery(0), E_FAIL);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    CustomInfo record;
    EXPECT_EQ(gate->EnumFirst_CustomQuery(address_of(record), 1), E_FAIL);
    EXPECT_EQ(gate->EnumNext_CustomQuery(address_of(record)), E_FAIL);
}

// ---- The end of a gate

TEST(ExtendedSessionsGate, gate_released_amid_enumerations_disturbs_no_other) {
    OpenGate<IDBgate1> gate;
    for (const int day : {1, 2}) add_session(*gate, 4, march(day));
    SessionExInfo record;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    {
        const auto other = gate.host().create<IDBgate1>();
        ASSERT_EQ(other->OpenDB(), S_OK);
        SessionInfo plain;
        SessionExInfo extended;
        CustomInfo custom;
        ASSERT_EQ(call(*other, &IDBgate1::EnumFirstSession, plain), S_OK);
        ASSERT_EQ(call(*other, &IDBgate1::EnumEx_FirstSession, extended), S_OK);
        EXPECT_EQ(other->EnumFirst_CustomQuery(address_of(custom), 1), E_FAIL);
    }
    EXPECT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), E_FAIL);  // OpenDB has opened the file anew
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_FirstSession, record), S_OK);
    {
        const auto other = gate.host().create<IDBgate1>();
        BSTR name = nullptr;
        ASSERT_EQ(other->CreateDB(name), S_OK);  // attaches without opening anew
        SessionExInfo extended;
        ASSERT_EQ(call(*other, &IDBgate1::EnumEx_FirstSession, extended), S_OK);
    }
    ASSERT_EQ(call(*gate, &IDBgate1::EnumEx_NextSession, record), S_OK);
    EXPECT_EQ(record.SessionID, 2);
}

}  // namespace

// Bookings through the main gate.
#include "tests/gates/bookings_cases.h"
#include "tests/gates/dates.h"
#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

TEST(BookingsGate, members_make_the_round_trip) { expect_round_trip(kBookings); }
TEST(BookingsGate, columns_hold_the_members_of_their_name) { expect_columns(kBookings); }
TEST(BookingsGate, failure_leaves_the_record_alone) { expect_failures(kBookings); }
TEST(BookingsGate, mappings_go_in_their_order) { expect_orders(kBookings); }
TEST(BookingsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kBookings); }

constexpr LONG kAscending = 4;
constexpr LONG kDescending = 8;

// Adds a booking from `start` for two hours.
LONG book(IDBgate1& gate, CTime start, LONG room = 0, LONG extra = 0) {
    BookingInfo record;
    record.DateStart = start;
    record.DateEnd = CTime(static_cast<LONG>(start.GetTime() + 2 * 3600));
    record.RoomID = room;
    record.ExData = extra;
    EXPECT_EQ(gate.AddBooking(address_of(record)), S_OK);
    return record.RecID;
}
// The keys that a filter gives, each ended by a blank; "-" when it fails at its beginning.
std::string keys(IDBgate1& gate, BookingInfo filter) {
    if (gate.EnumFirstBooking(address_of(filter)) != S_OK) return "-";
    std::string all;
    do {
        all += std::to_string(filter.RecID) + " ";
    } while (gate.EnumNextBooking(address_of(filter)) == S_OK);
    return all;
}
std::string keys(IDBgate1& gate, CTime from, CTime to, LONG mode, LONG room = 0) {
    BookingInfo filter;
    filter.DateStart = from;
    filter.DateEnd = to;
    filter.ExData = mode;
    filter.RoomID = room;
    return keys(gate, filter);
}

TEST(BookingsGate, nothing_set_gives_every_booking) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(9), 1, 4);
    book(*gate, march(2), 2, 8);
    EXPECT_EQ(keys(*gate, BookingInfo()), "1 2 ");
}

TEST(BookingsGate, each_identifier_is_a_condition) {
    const OpenGate<IDBgate1> gate;
    LONG BookingInfo::*const members[] = {&BookingInfo::ClientID, &BookingInfo::EngineerID, &BookingInfo::ProjID,
                                          &BookingInfo::RoomID};
    for (LONG BookingInfo::*const member : members) {
        BookingInfo record;
        record.*member = 5;
        ASSERT_EQ(gate->AddBooking(address_of(record)), S_OK);
    }
    BookingInfo all;
    for (LONG BookingInfo::*const member : members) all.*member = 5;
    ASSERT_EQ(gate->AddBooking(address_of(all)), S_OK);
    for (int i = 0; i < 4; ++i) {
        BookingInfo filter;
        filter.*members[i] = 5;
        EXPECT_EQ(keys(*gate, filter), std::to_string(i + 1) + " 5 ");
    }
    BookingInfo filter = all;
    EXPECT_EQ(keys(*gate, filter), "5 ");
    filter.SessionID = 9;  // no conditions
    filter.StatusID = 9;
    filter.ClientName = "nobody";
    EXPECT_EQ(keys(*gate, filter), "5 ");
}

TEST(BookingsGate, span_is_ordered_by_its_mode) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(12, 9));
    book(*gate, march(10, 14));
    book(*gate, march(10, 9), 3);
    book(*gate, march(20, 9));
    EXPECT_EQ(keys(*gate, march(1), march(31), kAscending), "3 2 1 4 ");
    EXPECT_EQ(keys(*gate, march(1), march(31), kDescending), "4 1 2 3 ");
    EXPECT_EQ(keys(*gate, march(11), march(19), kAscending), "1 ");
    EXPECT_EQ(keys(*gate, march(1), march(31), kDescending, 3), "3 ");
}

TEST(BookingsGate, span_that_ends_before_it_begins_fails) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(10, 9));
    EXPECT_EQ(keys(*gate, march(12), march(8), kAscending), "-");
    EXPECT_EQ(keys(*gate, march(12), march(8), kDescending), "-");
}

TEST(BookingsGate, booking_that_starts_before_the_span_is_not_in_it) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(9, 23));  // until 1:00 of the next day
    EXPECT_EQ(keys(*gate, march(10), march(11), kAscending), "-");
    EXPECT_EQ(keys(*gate, march(9), march(11), kAscending), "1 ");
}

// Bounds are midnights.
TEST(BookingsGate, booking_later_on_the_last_day_is_outside) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(10));
    book(*gate, march(11));
    book(*gate, march(11, 0, 1));
    EXPECT_EQ(keys(*gate, march(10, 12), march(11, 12), kAscending), "1 2 ");
    EXPECT_EQ(keys(*gate, march(10, 12), march(11, 12), kDescending), "2 1 ");
}

TEST(BookingsGate, other_modes_add_no_condition) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(20));
    book(*gate, march(10));
    for (const LONG mode : {1, 2, 3, 5, 7, 9, 12, -4}) {
        EXPECT_EQ(keys(*gate, march(1), march(2), mode), "1 2 ") << mode;
    }
}

TEST(BookingsGate, seconds_become_0_and_hours_and_minutes_stay) {
    const OpenGate<IDBgate1> gate;
    BookingInfo record;
    record.DateStart = CTime(2005, 3, 10, 0, 1, 59);
    record.DateEnd = CTime(2005, 3, 10, 23, 59, 59);
    ASSERT_EQ(gate->AddBooking(address_of(record)), S_OK);
    ASSERT_EQ(gate->FindBooking(address_of(record)), S_OK);
    EXPECT_EQ(record.DateStart, march(10, 0, 1));
    EXPECT_EQ(record.DateEnd, march(10, 23, 59));
}

TEST(BookingsGate, null_record_leaves_an_enumeration_alone) {
    const OpenGate<IDBgate1> gate;
    book(*gate, march(10));
    book(*gate, march(11));
    BookingInfo record;
    ASSERT_EQ(gate->EnumFirstBooking(address_of(record)), S_OK);
    EXPECT_EQ(gate->EnumFirstBooking(0), E_FAIL);
    EXPECT_EQ(gate->EnumNextBooking(0), E_FAIL);
    EXPECT_EQ(gate->EnumNextBooking(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, 2);
}

}  // namespace

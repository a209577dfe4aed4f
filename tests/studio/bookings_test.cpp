// Statements of the bookings.
#include "studio/bookings.h"

#include <gtest/gtest.h>

#include "os/system.h"
#include "tests/studio/mapping_columns.h"

namespace {

using namespace studio;

class Bookings : public testing::Test {
protected:
    Bookings() {
        os::set_date_format_for_test("/", os::DateOrder::kDayMonthYear);
        record_.DateStart = CTime(2005, 3, 1, 9, 30, 0);
        record_.DateEnd = CTime(2005, 3, 12, 18, 0, 0);
    }
    ~Bookings() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }

    std::string statement() const { return kBookings.statement(&record_); }

    BookingInfo record_;
};

constexpr char kSpan[] = "[DateStart]>=#03/01/2005# AND [DateStart]<=#03/12/2005# ORDER BY [DateStart]";

TEST_F(Bookings, nothing_set_covers_the_whole_table) {
    record_.RecID = record_.SessionID = record_.StatusID = 5;
    record_.ClientName = record_.EngineerName = record_.Notes = "no condition";
    EXPECT_EQ(statement(), "SELECT * FROM [Bookings]");
}

TEST_F(Bookings, identifiers_have_their_order) {
    record_.RoomID = 4;
    record_.ProjID = 3;
    record_.EngineerID = 2;
    record_.ClientID = 1;
    EXPECT_EQ(statement(),
              "SELECT * FROM [Bookings] WHERE [ClientID]=1 AND [EngineerID]=2 AND [ProjID]=3 AND [RoomID]=4");
}

TEST_F(Bookings, mode_adds_the_span_at_the_end) {
    record_.ExData = 4;
    EXPECT_EQ(statement(), std::string("SELECT * FROM [Bookings] WHERE ") + kSpan + " ASC");
    record_.ExData = 8;
    EXPECT_EQ(statement(), std::string("SELECT * FROM [Bookings] WHERE ") + kSpan + " DESC");
    record_.RoomID = 4;
    EXPECT_EQ(statement(), std::string("SELECT * FROM [Bookings] WHERE [RoomID]=4 AND ") + kSpan + " DESC");
}

TEST_F(Bookings, other_modes_add_nothing) {
    for (const LONG mode : {1, 2, 3, 5, 12, -4}) {
        record_.ExData = mode;
        EXPECT_EQ(statement(), "SELECT * FROM [Bookings]") << mode;
    }
}

TEST_F(Bookings, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kBookings.read),
              "RecID DateStart DateEnd ClientID ClientName ProjID RoomID EngineerID EngineerName SessionID StatusID "
              "Notes ExData");
    EXPECT_EQ("RecID " + column_names(kBookings.write), column_names(kBookings.read));
}

}  // namespace

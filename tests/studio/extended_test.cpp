// The statements of the extended enumerations, and the custom query.
#include "studio/extended.h"

#include "tests/studio/studio_test_support.h"

namespace {

class ExtendedStatements : public ::testing::Test {
protected:
    ExtendedStatements() { os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear); }
    ~ExtendedStatements() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }
};

TEST_F(ExtendedStatements, flags_0_and_nothing_set_cover_the_whole_table) {
    SessionExInfo session;
    session.FromDate = session.ToDate = CTime(2005, 3, 1, 0, 0, 0);
    EXPECT_EQ(studio::kSessionsWithin.statement(&session), "SELECT * FROM [Sessions]");
    session.DateFlags = ~DWORD{3};  // only the two lowest bits count
    EXPECT_EQ(studio::kSessionsWithin.statement(&session), "SELECT * FROM [Sessions]");
    SupplyExInfo supply;
    supply.FromDate = supply.ToDate = CTime(2005, 3, 1, 0, 0, 0);
    EXPECT_EQ(studio::kSupplyWithin.statement(&supply), "SELECT * FROM [Supply]");
}

TEST_F(ExtendedStatements, bit_0_alone_sets_the_lower_bound) {
    SessionExInfo session;
    session.FromDate = CTime(2005, 3, 1, 14, 35, 0);
    session.DateFlags = 1;
    EXPECT_EQ(studio::kSessionsWithin.statement(&session), "SELECT * FROM [Sessions] WHERE [RecDate]>=#03/01/2005#");
}

TEST_F(ExtendedStatements, bit_1_alone_sets_the_upper_bound) {
    SupplyExInfo supply;
    supply.ToDate = CTime(2005, 12, 31, 0, 0, 0);
    supply.DateFlags = 2;
    EXPECT_EQ(studio::kSupplyWithin.statement(&supply), "SELECT * FROM [Supply] WHERE [Date]<=#12/31/2005#");
}

TEST_F(ExtendedStatements, dates_take_the_separator_of_the_system_and_keep_their_order) {
    os::set_date_format_for_test(".", os::DateOrder::kDayMonthYear);
    SessionExInfo session;
    session.FromDate = CTime(2005, 3, 1, 0, 0, 0);
    session.DateFlags = 1;
    EXPECT_EQ(studio::kSessionsWithin.statement(&session), "SELECT * FROM [Sessions] WHERE [RecDate]>=#03.01.2005#");
}

TEST_F(ExtendedStatements, session_clauses_have_their_order) {
    SessionExInfo session;
    session.ProjID = 1;
    session.SessionID = 2;
    session.SongName = "s";
    session.SongID = 3;
    session.Engineer = "e";
    session.ArtistID = 4;
    session.Reserved = "r";
    session.RecDate = CTime(2001, 1, 1, 0, 0, 0);
    session.ClientID = 5;
    session.RoomID = 6;
    session.FromDate = CTime(2005, 3, 1, 0, 0, 0);
    session.ToDate = CTime(2005, 3, 31, 0, 0, 0);
    session.DateFlags = 3;
    EXPECT_EQ(studio::kSessionsWithin.statement(&session),
              "SELECT * FROM [Sessions] WHERE [ClientID]=5 AND [Engineer] LIKE \"e\" AND [ArtistID]=4 AND [ProjID]=1 "
              "AND [RoomID]=6 AND [SongName] LIKE \"s\" AND [SongID]=3 AND [RecDate]>=#03/01/2005# AND "
              "[RecDate]<=#03/31/2005#");
}

TEST_F(ExtendedStatements, supply_clauses_have_their_order_and_are_joined) {
    SupplyExInfo supply;
    supply.ActionID = 1;
    supply.StockID = 2;
    supply.ProjID = 4;
    supply.StockName = supply.StockType = supply.Client = "x";
    supply.ClientID = 7;
    supply.Quantity = 9;
    supply.FromDate = CTime(2005, 3, 1, 0, 0, 0);
    supply.ToDate = CTime(2005, 3, 31, 0, 0, 0);
    supply.DateFlags = 3;
    EXPECT_EQ(studio::kSupplyWithin.statement(&supply),
              "SELECT * FROM [Supply] WHERE [ClientID]=7 AND [ProjID]=4 AND [StockID]=2 AND [Date]>=#03/01/2005# AND "
              "[Date]<=#03/31/2005#");
}

class CustomQueries : public StudioTest {};

TEST_F(CustomQueries, type_is_kept_and_no_row_is_given) {
    studio::CustomQuery query(database_);
    CustomInfo record;
    record.Reserved = 5;
    EXPECT_EQ(query.EnumFirst(&record, 17), E_FAIL);
    EXPECT_EQ(query.type(), 17);
    EXPECT_EQ(query.EnumNext(&record), E_FAIL);
    EXPECT_EQ(record.Reserved, 5);
}

TEST_F(CustomQueries, type_is_not_taken_without_record_or_database) {
    studio::CustomQuery query(database_);
    CustomInfo record;
    EXPECT_EQ(query.EnumFirst(nullptr, 17), E_FAIL);
    EXPECT_EQ(query.type(), 0);
    file_.Close();
    EXPECT_EQ(query.EnumFirst(&record, 17), E_FAIL);
    EXPECT_EQ(query.type(), 0);
    CDaoDatabase* none = nullptr;
    studio::CustomQuery detached(none);
    EXPECT_EQ(detached.EnumFirst(&record, 17), E_FAIL);
    EXPECT_EQ(detached.type(), 0);
}

}  // namespace

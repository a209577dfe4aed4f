// The exact text of statements, as the engine and the reader of a trace see them.
#include "studio/statement.h"

#include <kvdb/records.h>

#include <gtest/gtest.h>

#include "os/system.h"
#include "studio/filter.h"

namespace {

using namespace studio;

class StatementText : public testing::Test {
protected:
    StatementText() { os::set_date_format_for_test("/", os::DateOrder::kDayMonthYear); }
    ~StatementText() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }

    template <class Record, std::size_t n>
    static std::string sql(const char* table, const Key<Record>& key, FilterRule rule,
                           const Clause<Record> (&clauses)[n], const Record& record,
                           WhenNothingIsSet otherwise = WhenNothingIsSet::kWholeTable) {
        return filter_statement<Record>(table, key, rule, clauses, record, otherwise);
    }
};

TEST_F(StatementText, basic_forms) {
    EXPECT_EQ(whole_table("Songs"), "SELECT * FROM [Songs]");
    EXPECT_EQ(rows_where("Songs", "SongID", -7), "SELECT * FROM [Songs] WHERE [SongID]=-7");
    EXPECT_EQ(rows_where("Songs", "SongID", -2147483647 - 1), "SELECT * FROM [Songs] WHERE [SongID]=-2147483648");
    EXPECT_EQ(rows_named("Def_TrackTypes", "Name", "Drums"), "SELECT * FROM [Def_TrackTypes] WHERE [Name]=\"Drums\"");
}

TEST_F(StatementText, values_are_inserted_as_they_stand) {
    EXPECT_EQ(rows_named("T", "Name", "12\" vinyl"), "SELECT * FROM [T] WHERE [Name]=\"12\" vinyl\"");
    EXPECT_EQ(clause::like("Name", "a*?#["), "[Name] LIKE \"a*?#[\"");
}

TEST_F(StatementText, clause_forms) {
    EXPECT_EQ(clause::equals("RoomID", LONG{3}), "[RoomID]=3");
    EXPECT_EQ(clause::equals("Type", "Album"), "[Type]=\"Album\"");
    EXPECT_EQ(clause::contains("Company", "Sound"), "[Company] LIKE \"*Sound*\"");
    EXPECT_EQ(clause::contains("CatIDs", LONG{12}), "[CatIDs] LIKE \"*12*\"");
    EXPECT_EQ(clause::equals_or_zero("RoomID", 3), "([RoomID]=3 OR [RoomID]=0)");
    const CTime first(2005, 3, 1, 14, 0, 0);
    const CTime last(2005, 3, 31, 0, 0, 0);
    EXPECT_EQ(clause::on_or_after("RecDate", first), "[RecDate]>=#03/01/2005#");
    EXPECT_EQ(clause::on_or_before("RecDate", last), "[RecDate]<=#03/31/2005#");
    EXPECT_EQ(clause::ordered_span("Date", first, last, false),
              "[Date]>=#03/01/2005# AND [Date]<=#03/31/2005# ORDER BY [Date] ASC");
    EXPECT_EQ(clause::ordered_span("Date", first, last, true),
              "[Date]>=#03/01/2005# AND [Date]<=#03/31/2005# ORDER BY [Date] DESC");
}

TEST_F(StatementText, number_list_has_one_piece_more_than_separators) {
    EXPECT_EQ(clause::contains_any("C", "2;5"), "([C] LIKE \"*2*\" OR [C] LIKE \"*5*\")");
    EXPECT_EQ(clause::contains_any("C", "7"), "([C] LIKE \"*7*\")");
    EXPECT_EQ(clause::contains_any("C", "1;"), "([C] LIKE \"*1*\" OR [C] LIKE \"*0*\")");
    EXPECT_EQ(clause::contains_any("C", ";x;-3"), "([C] LIKE \"*0*\" OR [C] LIKE \"*0*\" OR [C] LIKE \"*-3*\")");
    EXPECT_EQ(clause::contains_any("C", ""), "()");
}

TEST_F(StatementText, number_of_a_list_beyond_32_bits_is_the_nearest) {
    EXPECT_EQ(clause::contains_any("C", "2147483648"), "([C] LIKE \"*2147483647*\")");
    EXPECT_EQ(clause::contains_any("C", "-99999999999"), "([C] LIKE \"*-2147483648*\")");
}

TEST_F(StatementText, clauses_of_a_filter_keep_their_order) {
    constexpr Clause<SessionInfo> kClauses[] = {
        filter::equals("ClientID", &SessionInfo::ClientID),
        filter::like("Engineer", &SessionInfo::Engineer),
        filter::equals("ArtistID", &SessionInfo::ArtistID),
        filter::equals("ProjID", &SessionInfo::ProjID),
    };
    constexpr Key<SessionInfo> kKey{"SessionID", &SessionInfo::SessionID};
    SessionInfo session;
    EXPECT_EQ(sql("Sessions", kKey, FilterRule::kClauses, kClauses, session), "SELECT * FROM [Sessions]");
    session.ProjID = 4;
    session.Engineer = "Dan";
    EXPECT_EQ(sql("Sessions", kKey, FilterRule::kClauses, kClauses, session),
              "SELECT * FROM [Sessions] WHERE [Engineer] LIKE \"Dan\" AND [ProjID]=4");
    session.SessionID = 9;  // the key is not used here
    EXPECT_EQ(sql("Sessions", kKey, FilterRule::kClauses, kClauses, session),
              "SELECT * FROM [Sessions] WHERE [Engineer] LIKE \"Dan\" AND [ProjID]=4");
}

TEST_F(StatementText, parent_applies_always) {
    constexpr Clause<MixInfo> kClauses[] = {filter::equals("SongID", &MixInfo::SongID)};
    constexpr Key<MixInfo> kKey{"RecID", &MixInfo::RecID};
    EXPECT_EQ(sql("MixFiles", kKey, FilterRule::kParent, kClauses, MixInfo()),
              "SELECT * FROM [MixFiles] WHERE [SongID]=0");
}

TEST_F(StatementText, key_replaces_all_clauses_and_nothing_set_can_match_nothing) {
    constexpr Clause<ClientInfo> kClauses[] = {
        filter::contains("CatIDs", &ClientInfo::CategoryID), filter::contains("Company", &ClientInfo::Company),
        filter::contains("Title", &ClientInfo::Title),       filter::contains("Name", &ClientInfo::SearchName),
        filter::contains_any("CatIDs", &ClientInfo::CatIDs),
    };
    constexpr Key<ClientInfo> kKey{"ClientID", &ClientInfo::ClientID};
    constexpr auto kRule = FilterRule::kKeyBeforeClauses;
    ClientInfo client;
    EXPECT_EQ(sql("Clients", kKey, kRule, kClauses, client), "SELECT * FROM [Clients]");
    EXPECT_EQ(sql("Clients", kKey, kRule, kClauses, client, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [Clients] WHERE [ClientID]=0");
    client.CatIDs = "2;5";
    EXPECT_EQ(sql("Clients", kKey, kRule, kClauses, client),
              "SELECT * FROM [Clients] WHERE ([CatIDs] LIKE \"*2*\" OR [CatIDs] LIKE \"*5*\")");
    client.CategoryID = 3;
    client.SearchName = "Bo";
    EXPECT_EQ(sql("Clients", kKey, kRule, kClauses, client, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [Clients] WHERE [CatIDs] LIKE \"*3*\" AND [Name] LIKE \"*Bo*\" AND "
              "([CatIDs] LIKE \"*2*\" OR [CatIDs] LIKE \"*5*\")");
    client.ClientID = 8;
    EXPECT_EQ(sql("Clients", kKey, kRule, kClauses, client), "SELECT * FROM [Clients] WHERE [ClientID]=8");
}

TEST_F(StatementText, missing_join_of_the_supply_filter_is_kept) {
    constexpr Clause<SupplyAct> kClauses[] = {
        filter::equals("StockID", &SupplyAct::StockID),
        filter::equals("ProjID", &SupplyAct::ProjID),
        filter::equals("ClientID", &SupplyAct::ClientID, Join::kNone),
    };
    constexpr Key<SupplyAct> kKey{"ActionID", &SupplyAct::ActionID};
    SupplyAct act;
    act.ClientID = 7;
    EXPECT_EQ(sql("Supply", kKey, FilterRule::kClauses, kClauses, act), "SELECT * FROM [Supply] WHERE [ClientID]=7");
    act.ProjID = 4;
    EXPECT_EQ(sql("Supply", kKey, FilterRule::kClauses, kClauses, act),
              "SELECT * FROM [Supply] WHERE [ProjID]=4[ClientID]=7");
    act.ClientID = 0;
    act.StockID = 2;
    EXPECT_EQ(sql("Supply", kKey, FilterRule::kClauses, kClauses, act),
              "SELECT * FROM [Supply] WHERE [StockID]=2 AND [ProjID]=4");
    act.ProjID = 0;
    act.ClientID = 7;
    EXPECT_EQ(sql("Supply", kKey, FilterRule::kClauses, kClauses, act),
              "SELECT * FROM [Supply] WHERE [StockID]=2[ClientID]=7");
}

TEST_F(StatementText, date_flags_choose_the_bounds) {
    constexpr Clause<GearRentInfo> kClauses[] = {
        filter::equals("ProjID", &GearRentInfo::ProjID),
        filter::contains("ServiceName", &GearRentInfo::ServiceName),
        filter::on_or_after("Date", &GearRentInfo::DateFrom, &GearRentInfo::DateFlags, 1),
        filter::on_or_before("Date", &GearRentInfo::DateTo, &GearRentInfo::DateFlags, 2),
    };
    constexpr Key<GearRentInfo> kKey{"RecID", &GearRentInfo::RecID};
    GearRentInfo rental;
    rental.ProjID = 12;
    rental.ServiceName = "mic";
    rental.DateFrom = CTime(2005, 3, 1, 0, 0, 0);
    rental.DateTo = CTime(2005, 3, 2, 0, 0, 0);
    const std::string base = "SELECT * FROM [GearRentals] WHERE [ProjID]=12 AND [ServiceName] LIKE \"*mic*\"";
    const auto text = [&] { return sql("GearRentals", kKey, FilterRule::kKeyBeforeClauses, kClauses, rental); };
    EXPECT_EQ(text(), base);
    rental.DateFlags = 1;
    EXPECT_EQ(text(), base + " AND [Date]>=#03/01/2005#");
    rental.DateFlags = 2;
    EXPECT_EQ(text(), base + " AND [Date]<=#03/02/2005#");
    rental.DateFlags = 3;
    EXPECT_EQ(text(), base + " AND [Date]>=#03/01/2005# AND [Date]<=#03/02/2005#");
    rental.DateFlags = 4;
    EXPECT_EQ(text(), base);
}

TEST_F(StatementText, booking_mode_adds_its_span_and_order) {
    constexpr Clause<BookingInfo> kClauses[] = {
        filter::equals("RoomID", &BookingInfo::RoomID),
        filter::ordered_span("DateStart", &BookingInfo::DateStart, &BookingInfo::DateEnd, filter::Order::kAscending,
                             &BookingInfo::ExData, 4),
        filter::ordered_span("DateStart", &BookingInfo::DateStart, &BookingInfo::DateEnd, filter::Order::kDescending,
                             &BookingInfo::ExData, 8),
    };
    constexpr Key<BookingInfo> kKey{"RecID", &BookingInfo::RecID};
    BookingInfo booking;
    booking.DateStart = CTime(2005, 3, 1, 9, 0, 0);
    booking.DateEnd = CTime(2005, 3, 2, 9, 0, 0);
    const auto text = [&] { return sql("Bookings", kKey, FilterRule::kClauses, kClauses, booking); };
    EXPECT_EQ(text(), "SELECT * FROM [Bookings]");
    booking.ExData = 5;
    EXPECT_EQ(text(), "SELECT * FROM [Bookings]");
    booking.ExData = 4;
    EXPECT_EQ(text(),
              "SELECT * FROM [Bookings] WHERE [DateStart]>=#03/01/2005# AND [DateStart]<=#03/02/2005# ORDER BY "
              "[DateStart] ASC");
    booking.ExData = 8;
    booking.RoomID = 2;
    EXPECT_EQ(text(),
              "SELECT * FROM [Bookings] WHERE [RoomID]=2 AND [DateStart]>=#03/01/2005# AND [DateStart]<=#03/02/2005# "
              "ORDER BY [DateStart] DESC");
}

TEST_F(StatementText, invoice_span_applies_always_with_the_local_separator) {
    constexpr Clause<InvoiceInfo> kClauses[] = {
        filter::ordered_span("Date", &InvoiceInfo::FromDate, &InvoiceInfo::ToDate, filter::Order::kAscending),
    };
    constexpr Key<InvoiceInfo> kKey{"RecID", &InvoiceInfo::RecID};
    os::set_date_format_for_test(".", os::DateOrder::kDayMonthYear);
    InvoiceInfo invoice;
    invoice.FromDate = CTime(2005, 1, 1, 0, 0, 0);
    invoice.ToDate = CTime(2005, 12, 31, 0, 0, 0);
    EXPECT_EQ(sql("Invoices", kKey, FilterRule::kClauses, kClauses, invoice),
              "SELECT * FROM [Invoices] WHERE [Date]>=#01.01.2005# AND [Date]<=#12.31.2005# ORDER BY [Date] ASC");
}

}  // namespace

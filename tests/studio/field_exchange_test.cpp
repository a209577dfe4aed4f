// The exchange of fields against going through values, for every record of the studio's tables.
#include "afx/field_exchange.h"

#include "studio/bookings.h"
#include "studio/contacts.h"
#include "studio/engineers.h"
#include "studio/invoices.h"
#include "studio/lookup_lists.h"
#include "studio/media_library.h"
#include "studio/projects.h"
#include "studio/sessions.h"
#include "studio/songs.h"
#include "studio/stock.h"
#include "tests/studio/both_ways.h"

namespace {

using namespace studio;

class FieldExchange : public BothWays {};

TEST_F(FieldExchange, projects_and_songs_are_as_by_values) {
    compare(kProjects, 150);
    compare(kSongs);
    compare(kTracks);
    compare(kMixFiles);
}

TEST_F(FieldExchange, sessions_and_bookings_are_as_by_values) {
    compare(kSessions);
    compare(kParticipants);
    compare(kBookings, 150);
    compare(kRooms);
    compare(kEngineers);
    compare(kSequencers);
}

TEST_F(FieldExchange, contacts_and_lists_are_as_by_values) {
    compare(kClients);
    compare(kContactCategories);
    compare(kMessages);
    compare(studio::kServices);
    compare(kTrackTypes);
    compare(kProjectTypes);
    compare(kTrackDestinations);
    compare(kEquipmentActions);
}

TEST_F(FieldExchange, stock_and_invoices_are_as_by_values) {
    compare(kStock);
    compare(kSupply);
    compare(kStockTypes);
    compare(kEquipment);
    compare(kInvoices);
    compare(kInvoiceLines);
    compare(kProjPayments);
    compare(kProjActivities);
}

TEST_F(FieldExchange, media_are_as_by_values) {
    compare(kLibraryGroups);
    compare(kMediaLibraries);
    compare(kMediaFiles);
}

TEST_F(FieldExchange, another_code_page_is_as_by_values) {
    os::set_code_page(os::CodePage::kUtf8);
    compare(kSongs);
    compare(kProjects);
}

TEST_F(FieldExchange, files_written_are_those_written_by_values) {
    write_both(kProjects, 100);
    write_both(kSongs);
    write_both(kTracks);
    write_both(kMixFiles);
    write_both(kSessions);
    write_both(kParticipants);
    write_both(kBookings);
    write_both(kRooms);
    write_both(kEngineers);
    write_both(kSequencers);
    write_both(kClients, 100);
    write_both(kContactCategories);
    write_both(kMessages);
    write_both(studio::kServices);
    write_both(kTrackTypes);
    write_both(kProjectTypes);
    write_both(kTrackDestinations);
    write_both(kEquipmentActions);
    expect_same_files();
}

TEST_F(FieldExchange, files_of_stock_and_media_written_are_those_written_by_values) {
    write_both(kStock);
    write_both(kSupply);
    write_both(kStockTypes);
    write_both(kEquipment);
    write_both(kInvoices, 100);
    write_both(kInvoiceLines);
    write_both(kProjPayments);
    write_both(kProjActivities);
    write_both(kLibraryGroups);
    write_both(kMediaLibraries);
    write_both(kMediaFiles);
    expect_same_files();
}

TEST_F(FieldExchange, files_written_in_another_code_page_are_those_written_by_values) {
    os::set_code_page(os::CodePage::kUtf8);
    write_both(kSongs);
    write_both(kProjects);
    expect_same_files();
}

// A column that is not there fails the mapping where it stands, with the columns before it read and written.
TEST_F(FieldExchange, column_without_a_field_fails_where_it_stands) {
    static constexpr Column<MixInfo> kColumns[] = {
        column::integer("SongID", &MixInfo::SongID),
        column::text("Nowhere", &MixInfo::Descript),
        column::text("Path", &MixInfo::Path),
    };
    const std::span<const Column<MixInfo>> columns(kColumns);
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "MixFiles", 0);
    MixInfo mix;
    mix.SongID = 7;
    mix.Path = "p";
    rows.AddNew();
    EXPECT_EQ(write_columns(rows, columns, mix), E_FAIL);
    rows.Update();
    rows.MoveFirst();
    MixInfo read;
    read.Path = "before";
    EXPECT_EQ(read_columns(rows, columns, read), E_FAIL);
    EXPECT_EQ(read.SongID, 7);
    EXPECT_EQ(read.Path, "before");
}

// Members of a pending row are those of the row, not of what stood there before.
TEST_F(FieldExchange, pending_row_is_read_as_it_is_pending) {
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "MixFiles", 0);
    MixInfo mix;
    mix.SongID = 7;
    mix.Path = "p";
    rows.AddNew();
    ASSERT_EQ(write_columns(rows, kMixFiles.write, mix), S_OK);
    rows.Update();
    rows.MoveFirst();
    rows.Edit();
    mix.Path = "another";
    ASSERT_EQ(write_columns(rows, kMixFiles.write, mix), S_OK);
    MixInfo read;
    ASSERT_EQ(read_columns(rows, kMixFiles.read, read), S_OK);
    EXPECT_EQ(read.Path, "another");
    EXPECT_EQ(read.RecID, 1);
}

// Nothing is read where no row is current, and nothing set where none is pending.
TEST_F(FieldExchange, without_a_row_the_values_say_why) {
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "MixFiles", 0);
    MixInfo mix;
    EXPECT_EQ(error_of([&] { read_columns(rows, kMixFiles.read, mix); }), 3021);
    EXPECT_EQ(error_of([&] { write_columns(rows, kMixFiles.write, mix); }), 3020);
}

}  // namespace

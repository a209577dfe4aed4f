// The deviations of other tables, each on a small declaration of its own.
#include "studio/record_table.h"

#include <kvdb/records.h>

#include <string>

#include "db/values.h"
#include "tests/studio/studio_test_support.h"

namespace {

using namespace studio;

class RecordTables : public StudioTest {};

// ---- Parent rows, records for deleting

constexpr Column<MixInfo> kMixRead[] = {
    column::integer("RecID", &MixInfo::RecID),    column::integer("SongID", &MixInfo::SongID),
    column::text("Descript", &MixInfo::Descript), column::text("Path", &MixInfo::Path),
    column::integer("ExData", &MixInfo::ExData),
};
constexpr Clause<MixInfo> kMixFilter[] = {filter::equals("SongID", &MixInfo::SongID)};
constexpr TableMapping<MixInfo> kMix{
    .table = "MixFiles",
    .key = {"RecID", &MixInfo::RecID},
    .read = kMixRead,
    .write = std::span(kMixRead).subspan(1),
    .filter = kMixFilter,
    .filter_rule = FilterRule::kParent,
    .null_record = NullRecord::kFailsAtOnce,
    .add_opens = AddOpens::kParentRows,
    .parent = {"SongID", &MixInfo::SongID},
};

TEST_F(RecordTables, parent_rows_are_enumerated_also_for_parent_0) {
    RecordTable<MixInfo> table(kMix, database_);
    for (const LONG song : {3, 4, 3}) {
        MixInfo mix;
        mix.SongID = song;
        mix.Path = "p";
        ASSERT_EQ(table.Add(&mix), S_OK);
    }
    MixInfo mix;
    EXPECT_EQ(table.EnumFirst(&mix), E_FAIL);
    mix.SongID = 3;
    ASSERT_EQ(table.EnumFirst(&mix), S_OK);
    EXPECT_EQ(mix.RecID, 1);
    EXPECT_EQ(table.EnumFirst(nullptr), E_FAIL);  // fails at once: the enumeration continues
    ASSERT_EQ(table.EnumNext(&mix), S_OK);
    EXPECT_EQ(mix.RecID, 3);
    EXPECT_EQ(table.EnumNext(&mix), E_FAIL);
}

TEST_F(RecordTables, delete_takes_the_key_of_a_record) {
    RecordTable<MixInfo> table(kMix, database_);
    MixInfo mix;
    mix.SongID = 3;
    ASSERT_EQ(table.Add(&mix), S_OK);
    MixInfo other;
    other.RecID = 99;
    EXPECT_EQ(table.Delete(&other), E_FAIL);
    EXPECT_EQ(table.Delete(&mix), S_OK);
    EXPECT_EQ(row_count("MixFiles"), 0);
}

TEST_F(RecordTables, two_tables_enumerate_side_by_side) {
    RecordTable<MixInfo> one(kMix, database_);
    RecordTable<MixInfo> two(kMix, database_);
    for (int i = 0; i < 2; ++i) {
        MixInfo mix;
        mix.SongID = 1;
        ASSERT_EQ(one.Add(&mix), S_OK);
    }
    MixInfo a;
    MixInfo b;
    a.SongID = b.SongID = 1;
    ASSERT_EQ(one.EnumFirst(&a), S_OK);
    ASSERT_EQ(two.EnumFirst(&b), S_OK);
    ASSERT_EQ(one.EnumNext(&a), S_OK);
    EXPECT_EQ(one.EnumNext(&a), E_FAIL);
    ASSERT_EQ(two.EnumNext(&b), S_OK);
    EXPECT_EQ(b.RecID, 2);
}

// ---- Find by filter

constexpr Column<ConCatInfo> kCatRead[] = {
    column::integer("RecID", &ConCatInfo::RecID),
    column::text("Name", &ConCatInfo::Name),
    column::integer("Type", &ConCatInfo::Type),
    column::integer("ExData", &ConCatInfo::ExData),
};
constexpr Clause<ConCatInfo> kCatFilter[] = {filter::equals("Type", &ConCatInfo::Type),
                                             filter::contains("Name", &ConCatInfo::Name)};
constexpr TableMapping<ConCatInfo> kCategories{
    .table = "ContactCategories",
    .key = {"RecID", &ConCatInfo::RecID},
    .read = kCatRead,
    .write = std::span(kCatRead).subspan(1),
    .filter = kCatFilter,
    .filter_rule = FilterRule::kKeyBeforeClauses,
    .find_by = FindBy::kFilterOrNothing,
};

TEST_F(RecordTables, find_goes_by_the_filter_and_finds_nothing_when_nothing_is_set) {
    RecordTable<ConCatInfo> table(kCategories, database_);
    for (const char* name : {"Clients", "Artists", "Producers"}) {
        ConCatInfo category;
        category.Name = name;
        category.Type = 101;
        ASSERT_EQ(table.Add(&category), S_OK);
    }
    ConCatInfo record;
    EXPECT_EQ(table.Find(&record), E_FAIL);
    EXPECT_EQ(table.EnumFirst(&record), S_OK);
    record = ConCatInfo();
    record.Name = "tist";
    ASSERT_EQ(table.Find(&record), S_OK);
    EXPECT_EQ(record.RecID, 2);
    record.Name = "Clients";  // the key found before replaces every clause
    ASSERT_EQ(table.Find(&record), S_OK);
    EXPECT_EQ(record.Name, "Artists");
}

// ---- Gear: every operation by the filter

constexpr Column<GearServInfo> kGearRead[] = {
    column::integer("RecID", &GearServInfo::RecID),
    column::integer("GearID", &GearServInfo::GearID),
    column::text("Name", &GearServInfo::Name),
    column::single("Price", &GearServInfo::Price),
};
constexpr Clause<GearServInfo> kGearFilter[] = {filter::equals("GearID", &GearServInfo::GearID),
                                                filter::contains("Name", &GearServInfo::Name)};
constexpr TableMapping<GearServInfo> kGearServices{
    .table = "GearServices",
    .key = {"RecID", &GearServInfo::RecID},
    .read = kGearRead,
    .write = std::span(kGearRead).subspan(1),
    .filter = kGearFilter,
    .filter_rule = FilterRule::kKeyBeforeClauses,
    .find_by = FindBy::kFilter,
    .change_by = ChangeBy::kFilter,
};

TEST_F(RecordTables, gear_without_key_acts_on_the_first_row_that_matches) {
    RecordTable<GearServInfo> table(kGearServices, database_);
    for (const char* name : {"cleaning", "tuning", "repair"}) {
        GearServInfo service;
        service.Name = name;
        service.Price = 2.5f;
        ASSERT_EQ(table.Add(&service), S_OK);
    }
    GearServInfo record;
    ASSERT_EQ(table.Find(&record), S_OK);  // nothing set: the first row of the table
    EXPECT_EQ(record.Name, "cleaning");
    EXPECT_EQ(record.Price, 2.5f);
    record = GearServInfo();
    record.Name = "un";
    ASSERT_EQ(table.Find(&record), S_OK);
    EXPECT_EQ(record.RecID, 2);
    record.Name = "tuned";
    ASSERT_EQ(table.Update(&record), S_OK);  // by its key now
    GearServInfo nothing_set;
    EXPECT_EQ(table.Delete(&nothing_set), S_OK);
    EXPECT_EQ(row_count("GearServices"), 2);
    nothing_set = GearServInfo();
    ASSERT_EQ(table.Find(&nothing_set), S_OK);
    EXPECT_EQ(nothing_set.Name, "tuned");
    EXPECT_EQ(table.Find(nullptr), E_FAIL);
    EXPECT_EQ(table.EnumFirst(nullptr), E_FAIL);
}

// ---- Names

constexpr Column<RoomInfo> kRoomRead[] = {
    column::integer("RecID", &RoomInfo::RecID),
    column::text("Name", &RoomInfo::Name),
    column::currency("BasePrice", &RoomInfo::BasePrice),
    column::currency("FullPrice", &RoomInfo::FullPrice),
};
constexpr TableMapping<RoomInfo> kRooms{
    .table = "Def_Rooms",
    .key = {"RecID", &RoomInfo::RecID},
    .read = kRoomRead,
    .write = std::span(kRoomRead).subspan(1),
    .find_by = FindBy::kKeyOrName,
    .add_opens = AddOpens::kNamedRowsIfNone,
    .name = {"Name", &RoomInfo::Name},
};

TEST_F(RecordTables, known_name_is_not_added_again_but_is_a_success) {
    RecordTable<RoomInfo> table(kRooms, database_);
    RoomInfo room;
    room.Name = "Studio A";
    room.BasePrice = 19.99f;
    ASSERT_EQ(table.Add(&room), S_OK);
    EXPECT_EQ(room.RecID, 1);
    RoomInfo again;
    again.RecID = -5;
    again.Name = "studio a";
    EXPECT_EQ(table.Add(&again), S_OK);
    EXPECT_EQ(again.RecID, -5);
    EXPECT_EQ(row_count("Def_Rooms"), 1);
    RoomInfo empty;
    EXPECT_EQ(table.Add(&empty), E_FAIL);  // a short text accepts no zero length
    EXPECT_EQ(row_count("Def_Rooms"), 0 + 1);
}

TEST_F(RecordTables, find_by_key_or_else_by_name) {
    RecordTable<RoomInfo> table(kRooms, database_);
    RoomInfo room;
    room.Name = "A";
    room.BasePrice = 19.99f;
    ASSERT_EQ(table.Add(&room), S_OK);
    RoomInfo by_name;
    by_name.Name = "A";
    ASSERT_EQ(table.Find(&by_name), S_OK);
    EXPECT_EQ(by_name.RecID, 1);
    EXPECT_EQ(by_name.BasePrice, 19.99f);
    RoomInfo by_key;
    by_key.RecID = 1;
    by_key.Name = "Z";
    ASSERT_EQ(table.Find(&by_key), S_OK);
    EXPECT_EQ(by_key.Name, "A");
    RoomInfo nothing;
    EXPECT_EQ(table.Find(&nothing), E_FAIL);
    RoomInfo broken;
    broken.Name = "a\"b";
    EXPECT_EQ(table.Find(&broken), E_FAIL);
    EXPECT_EQ(table.Add(&broken), E_FAIL);
}

constexpr Column<LibGrpInfo> kGroupRead[] = {column::text("Name", &LibGrpInfo::Name),
                                             column::integer("GroupID", &LibGrpInfo::GroupID)};
constexpr TableMapping<LibGrpInfo> kGroups{
    .table = "LibGroups",
    .key = {"GroupID", &LibGrpInfo::GroupID},
    .read = kGroupRead,
    .write = std::span(kGroupRead).first(1),
    .add_opens = AddOpens::kNamedRows,
    .name = {"Name", &LibGrpInfo::Name},
};

TEST_F(RecordTables, named_rows_are_no_obstacle_to_a_second_one) {
    RecordTable<LibGrpInfo> table(kGroups, database_);
    LibGrpInfo group;
    group.Name = "Drums";
    ASSERT_EQ(table.Add(&group), S_OK);
    ASSERT_EQ(table.Add(&group), S_OK);
    EXPECT_EQ(group.GroupID, 2);
    EXPECT_EQ(row_count("LibGroups"), 2);
    EXPECT_EQ(table.EnumFirst(nullptr), E_FAIL);
}

// ---- Other ways of reading

constexpr Column<StockTypeInfo> kTypeFind[] = {
    column::text("TypeName", &StockTypeInfo::TypeName),
    column::integer("InStock", &StockTypeInfo::InStock),
    column::currency("ItemPrice", &StockTypeInfo::ItemPrice),
    column::integer("ExData", &StockTypeInfo::ExData),
};
constexpr Column<StockTypeInfo> kTypeEnum[] = {
    column::text("TypeName", &StockTypeInfo::TypeName),
    column::integer("TypeID", &StockTypeInfo::TypeID),
    column::currency_by_text("ItemPrice", &StockTypeInfo::ItemPrice),
};
constexpr TableMapping<StockTypeInfo> kTypesOnly{
    .table = "Def_StockTypes",
    .key = {"TypeID", &StockTypeInfo::TypeID},
    .read = kTypeFind,
    .write = kTypeFind,
    .enum_read = kTypeEnum,
};

TEST_F(RecordTables, enumeration_may_read_other_columns_than_find) {
    RecordTable<StockTypeInfo> table(kTypesOnly, database_);
    StockTypeInfo type;
    type.TypeName = "Tape";
    type.InStock = 4;
    type.ItemPrice = 1.1f;
    type.Spare = "kept";
    ASSERT_EQ(table.Add(&type), S_OK);
    StockTypeInfo listed;
    listed.InStock = -1;
    ASSERT_EQ(table.EnumFirst(&listed), S_OK);
    EXPECT_EQ(listed.TypeID, 1);
    EXPECT_EQ(listed.ItemPrice, 1.1f);
    EXPECT_EQ(listed.InStock, -1);  // not among the enumeration's columns
    StockTypeInfo found;
    found.TypeID = 1;
    ASSERT_EQ(table.Find(&found), S_OK);
    EXPECT_EQ(found.InStock, 4);
    EXPECT_EQ(found.ItemPrice, 1.1f);
    EXPECT_EQ(type.Spare, "kept");
}

constexpr Column<BookingInfo> kBookingRead[] = {
    column::integer("RecID", &BookingInfo::RecID),
    column::date_to_the_minute("DateStart", &BookingInfo::DateStart),
    column::date("DateEnd", &BookingInfo::DateEnd),
};
constexpr Clause<BookingInfo> kBookingFilter[] = {
    filter::ordered_span("DateStart", &BookingInfo::DateStart, &BookingInfo::DateEnd, filter::Order::kDescending,
                         &BookingInfo::ExData, 8),
};
constexpr TableMapping<BookingInfo> kBookings{
    .table = "Bookings",
    .key = {"RecID", &BookingInfo::RecID},
    .read = kBookingRead,
    .write = std::span(kBookingRead).subspan(1),
    .filter = kBookingFilter,
};

TEST_F(RecordTables, dates_keep_what_their_conversion_says) {
    RecordTable<BookingInfo> table(kBookings, database_);
    for (const int day : {2, 3, 4}) {
        BookingInfo booking;
        booking.DateStart = CTime(2005, 3, day, 9, 30, 15);
        booking.DateEnd = CTime(2005, 3, day, 11, 45, 0);
        ASSERT_EQ(table.Add(&booking), S_OK);
    }
    BookingInfo found;
    found.RecID = 1;
    ASSERT_EQ(table.Find(&found), S_OK);
    EXPECT_EQ(found.DateStart, CTime(2005, 3, 2, 9, 30, 0));
    EXPECT_EQ(found.DateEnd, CTime(2005, 3, 2, 0, 0, 0));

    BookingInfo span;
    span.ExData = 8;
    span.DateStart = CTime(2005, 3, 2, 0, 0, 0);
    span.DateEnd = CTime(2005, 3, 4, 0, 0, 0);
    ASSERT_EQ(table.EnumFirst(&span), S_OK);
    EXPECT_EQ(span.RecID, 2);  // descending; the one of the last day starts after its midnight
    ASSERT_EQ(table.EnumNext(&span), S_OK);
    EXPECT_EQ(span.RecID, 1);
    EXPECT_EQ(table.EnumNext(&span), E_FAIL);
}

TEST_F(RecordTables, null_columns_read_as_nothing) {
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "Bookings", 0);
    rows.AddNew();
    rows.Update();
    rows.Close();
    RecordTable<BookingInfo> table(kBookings, database_);
    BookingInfo record;
    record.RecID = 1;
    record.DateStart = CTime(5);
    ASSERT_EQ(table.Find(&record), S_OK);
    EXPECT_EQ(record.DateStart, CTime(-1));
    ASSERT_EQ(table.Update(&record), S_OK);  // a time without date is written as Null again
    EXPECT_EQ(value("Bookings", "DateStart").vt, VT_NULL);
}

HRESULT read_into_copy(CDaoRecordset& rows, LibGrpInfo& record) {
    LibGrpInfo fresh;
    const HRESULT result = read_columns<LibGrpInfo>(rows, kGroupRead, fresh);
    if (result == S_OK) record.Name = fresh.Name;
    return result;
}
constexpr TableMapping<LibGrpInfo> kCopiedGroups{
    .table = "LibGroups", .key = {"GroupID", &LibGrpInfo::GroupID}, .read_row = read_into_copy};

TEST_F(RecordTables, enumeration_with_a_reading_of_its_own) {
    RecordTable<LibGrpInfo> groups(kGroups, database_);
    LibGrpInfo group;
    group.Name = "Drums";
    ASSERT_EQ(groups.Add(&group), S_OK);
    RecordTable<LibGrpInfo> copied(kCopiedGroups, database_);
    LibGrpInfo record;
    record.GroupID = -3;
    ASSERT_EQ(copied.EnumFirst(&record), S_OK);
    EXPECT_EQ(record.Name, "Drums");
    EXPECT_EQ(record.GroupID, -3);
}

constexpr TableMapping<CustomInfo> kNoTable{.null_record = NullRecord::kFailsAtOnce,
                                            .read_row = [](CDaoRecordset&, CustomInfo&) { return S_OK; }};

TEST_F(RecordTables, mapping_without_table_fails_at_its_empty_statement) {
    RecordTable<CustomInfo> table(kNoTable, database_);
    CustomInfo info;
    EXPECT_EQ(table.EnumFirst(&info), E_FAIL);
    EXPECT_EQ(table.EnumNext(&info), E_FAIL);
}

TEST_F(RecordTables, table_missing_in_the_file_fails_everywhere) {
    constexpr static TableMapping<LibGrpInfo> kMissing{
        .table = "Def_Engineers", .key = {"RecID", &LibGrpInfo::GroupID}, .read = kGroupRead};
    RecordTable<LibGrpInfo> table(kMissing, database_);
    LibGrpInfo record;
    EXPECT_EQ(table.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(table.Find(&record), E_FAIL);
    EXPECT_EQ(table.Add(&record), E_FAIL);
    EXPECT_EQ(table.Update(&record), E_FAIL);
    EXPECT_EQ(table.Delete(LONG{1}), E_FAIL);
}

TEST_F(RecordTables, failing_read_mapping_keeps_the_members_before_the_failure) {
    constexpr static Column<LibGrpInfo> kBroken[] = {column::integer("GroupID", &LibGrpInfo::GroupID),
                                                     column::text("Nowhere", &LibGrpInfo::Name)};
    constexpr static TableMapping<LibGrpInfo> kMapping{
        .table = "LibGroups", .key = {"GroupID", &LibGrpInfo::GroupID}, .read = kBroken};
    RecordTable<LibGrpInfo> groups(kGroups, database_);
    LibGrpInfo group;
    group.Name = "Drums";
    ASSERT_EQ(groups.Add(&group), S_OK);
    ASSERT_EQ(groups.Add(&group), S_OK);
    RecordTable<LibGrpInfo> table(kMapping, database_);
    LibGrpInfo record;
    record.Name = "kept";
    EXPECT_EQ(table.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(record.GroupID, 1);
    EXPECT_EQ(record.Name, "kept");
    EXPECT_EQ(table.EnumNext(&record), E_FAIL);  // a failed reading, not the end
    EXPECT_EQ(record.GroupID, 2);
}

}  // namespace

// list, show, add, set and delete: on every table that a gate serves, and what they refuse.
#include <filesystem>
#include <ostream>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

// A table with a record to add, a change of it, and how to list it.
struct Sample {
    const char* table;
    const char* members;
    const char* added;  // in the JSON of the new record
    const char* change;
    const char* changed;  // in the JSON of the changed record
    const char* filter;   // lists the record, perhaps with others
};

void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.table; }

constexpr Sample kSamples[] = {
    {"Projects", "Name='Tür 7' ProjCreateDate=2026-02-28 DiscountVal=2.5", "\"ProjCreateDate\": \"2026-02-28\"",
     "Type=Demo", "\"Type\": \"Demo\"", "--filter Type=Demo"},
    {"Songs", "ProjID=1 Name=One", "\"Name\": \"One\"", "Artist=Nobody", "\"Artist\": \"Nobody\"", "--filter ProjID=1"},
    {"Tracks", "SongID=1 Number=9 TDate=2026-01-02", "\"TDate\": \"2026-01-02\"", "Status=3", "\"Status\": 3",
     "SongID=1"},
    {"MixFiles", "SongID=1 Path='C:\\a.wav'", "\"Path\": \"C:\\\\a.wav\"", "Descript=x", "\"Descript\": \"x\"",
     "SongID=1"},
    {"Sessions", "ProjID=1 RecDate=2026-01-02", "\"RecDate\": \"2026-01-02\"", "RoomID=1", "\"RoomID\": 1", "ProjID=1"},
    {"Participants", "SessionID=1 Duration=1.5", "\"Duration\": 1.5", "Notes=late", "\"Notes\": \"late\"",
     "SessionID=1"},
    {"ProjPayments", "ProjID=1 Pay=10.25", "\"Pay\": 10.25", "Details=cash", "\"Details\": \"cash\"", "ProjID=1"},
    {"ProjActivities", "ProjID=1 Fee=99.5", "\"Fee\": 99.5", "Item=Mix", "\"Item\": \"Mix\"", "ProjID=1"},
    {"Clients", "Name=Ida Email=ida@example.org", "\"Email\": \"ida@example.org\"", "City=Oslo", "\"City\": \"Oslo\"",
     "SearchName=Ida"},
    {"ContactCategories", "Name=Writers Type=2", "\"Type\": 2", "ExData=5", "\"ExData\": 5", "Type=2"},
    {"Messages", "ContactID=1 Date=2026-01-02", "\"Date\": \"2026-01-02\"", "Details=no", "\"Details\": \"no\"",
     "ContactID=1"},
    {"Services", "Name=Mixing ContactID=1 Price=12.5", "\"Price\": 12.5", "TimeUnit=2", "\"TimeUnit\": 2",
     "ContactID=1"},
    {"Stock", "Name=Reels TypeID=1 Cost=0.5", "\"Cost\": 0.5", "Quantity=4", "\"Quantity\": 4", "TypeID=1"},
    {"Supply", "StockID=1 Quantity=2", "\"Quantity\": 2", "Client=Me", "\"Client\": \"Me\"", "StockID=1"},
    {"Def_StockTypes", "TypeName=Discs", "\"TypeName\": \"Discs\"", "ItemPrice=1.25", "\"ItemPrice\": 1.25", ""},
    {"Equipment", "Name=Desk Cost=cheap", "\"Cost\": \"cheap\"", "ActDate=2026-01-02", "\"ActDate\": \"2026-01-02\"",
     ""},
    {"LibGroups", "Name=Effects", "\"Name\": \"Effects\"", "Name=Noises", "\"Name\": \"Noises\"", ""},
    {"MediaLibs", "GroupID=1 Name=Rain", "\"Name\": \"Rain\"", "Descript=wet", "\"Descript\": \"wet\"", "GroupID=1"},
    {"MediaFiles", "LibID=1 Path=rain.wav", "\"Path\": \"rain.wav\"", "Descript=wet", "\"Descript\": \"wet\"",
     "LibID=1"},
    {"Bookings", "DateStart=2026-05-06T07:08 RoomID=1", "\"DateStart\": \"2026-05-06T07:08:00\"", "StatusID=2",
     "\"StatusID\": 2", "DateStart=2026-05-01"},
    {"Invoices", "InvoiceID=7 Date=2026-05-06 Balance=-1.25", "\"Balance\": -1.25", "Total=3.5", "\"Total\": 3.5", ""},
    {"InvoiceParams", "InvoiceID=7 Total=3.5", "\"Total\": 3.5", "TaxIDs=1", "\"TaxIDs\": \"1\"", "InvoiceID=7"},
    {"Def_Sequencer", "Name=Steps", "\"Name\": \"Steps\"", "Path=steps", "\"Path\": \"steps\"", ""},
    {"Def_Rooms", "Name=Booth FullPrice=20.5", "\"FullPrice\": 20.5", "BasePrice=10", "\"BasePrice\": 10", ""},
    {"Gear", "Manufacturer=Abc Model=Q", "\"Model\": \"Q\"", "Cost=7.5", "\"Cost\": 7.5", "Manufacturer=Abc"},
    {"GearServices", "GearID=1 Name=Hour", "\"Name\": \"Hour\"", "Price=7.5", "\"Price\": 7.5", "GearID=1"},
    {"GearRepairs", "GearID=1 SendDate=2026-01-02", "\"SendDate\": \"2026-01-02\"", "TechID=4", "\"TechID\": 4",
     "TechID=4"},
    {"GearCategories", "Name=Desks", "\"Name\": \"Desks\"", "ExData=4", "\"ExData\": 4", ""},
    {"GearRentals", "GearID=1 ClientID=2 Date=2026-05-06", "\"ClientID\": 2", "Quantity=2.5", "\"Quantity\": 2.5",
     "FromDate=2026-05-06 ToDate=2026-05-07"},
};

class Records : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    Outcome on(const std::string& command, const std::string& rest) {
        return run(command + " " + in_quotes(studio_) + " " + rest);
    }
    static bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};

class EveryTable : public Records, public ::testing::WithParamInterface<Sample> {};

INSTANTIATE_TEST_SUITE_P(Tables, EveryTable, ::testing::ValuesIn(kSamples), [](const auto& sample) {
    std::string name = sample.param.table;
    name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
    return name;
});

TEST_P(EveryTable, record_is_added_shown_changed_listed_and_deleted) {
    const Sample& sample = GetParam();
    const std::string table = sample.table;
    const Outcome added = on("add", table + " " + sample.members);
    ASSERT_EQ(added.code, 0) << added.errors;
    const std::string key = added.out.substr(0, added.out.find('\n'));
    ASSERT_GT(std::atoi(key.c_str()), 0) << added.out;

    const Outcome shown = on("show", table + " " + key + " --json");
    EXPECT_EQ(shown.code, 0) << shown.errors;
    EXPECT_TRUE(has(shown.out, sample.added)) << shown.out;
    EXPECT_FALSE(has(shown.out, sample.changed)) << shown.out;

    const Outcome set = on("set", table + " " + key + " " + sample.change);
    EXPECT_EQ(set.code, 0) << set.errors;
    const std::string changed = on("show", table + " " + key + " --json").out;
    EXPECT_TRUE(has(changed, sample.changed)) << changed;

    const std::string list = "list";
    const Outcome listed = on(list, table + " " + sample.filter + " --json");
    EXPECT_EQ(listed.code, 0) << listed.errors;
    EXPECT_TRUE(has(listed.out, changed.substr(0, changed.find('\n')))) << listed.out;

    EXPECT_EQ(on("delete", table + " " + key).code, 0);
    expect_failure(on("show", table + " " + key), 1, "no row " + key + " in " + table);
    expect_failure(on("delete", table + " " + key), 1, "no row " + key);
    expect_failure(on("set", table + " " + key + " " + sample.change), 1, "no row " + key);
    const Outcome after = on(list, table + " " + sample.filter + " --json");
    EXPECT_FALSE(has(after.out, changed.substr(0, changed.find('\n')))) << after.out;
}

TEST_P(EveryTable, what_is_wrong_is_a_usage_error_and_key_0_is_not_there) {
    const std::string table = GetParam().table;
    expect_failure(on("add", table + " Colour=red"), 2, "has no member 'Colour'");
    expect_failure(on("set", table + " 1 Colour=red"), 2, "has no member 'Colour'");
    if (table != "Gear" && table != "GearRepairs") {  // which are found by what stands on a label, too
        expect_failure(on("show", table + " first"), 2, "whole number");
    }
    expect_failure(on("delete", table + " 1x"), 2, "whole number");
    expect_failure(on("list", table + " --filter Colour=red"), 2, "not filtered by 'Colour'");
    const std::string before = on("list", table + " " + GetParam().filter).out;
    expect_failure(on("show", table + " 0"), 1, "no row 0");
    expect_failure(on("delete", table + " 0"), 1, "no row 0");
    expect_failure(on("set", table + " 0 " + GetParam().change), 1, "no row 0");
    EXPECT_EQ(on("list", table + " " + GetParam().filter).out, before);
}

class EveryList : public Records, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Lists, EveryList,
                         ::testing::Values("Def_TrackTypes", "Def_ProjTypes", "Def_TrackDestination", "Def_EquipActs"));

TEST_P(EveryList, name_is_added_once_shown_listed_and_deleted) {
    const std::string list = GetParam();
    EXPECT_EQ(on("add", list + " Name='Späte Töne'").code, 0);
    EXPECT_EQ(on("add", list + " Name='Späte Töne'").code, 0);
    const std::string names = on("list", list + " --csv").out;
    EXPECT_TRUE(has(names, "Name\r\n")) << names;
    EXPECT_EQ(names.find("Späte Töne\r\n"), names.rfind("Späte Töne\r\n")) << names;
    EXPECT_TRUE(has(names, "Späte Töne\r\n")) << names;
    EXPECT_EQ(on("show", list + " 'Späte Töne'").out, "Name: Späte Töne\n");
    EXPECT_EQ(on("delete", list + " 'SPäTE TöNE'").code, 0);
    EXPECT_FALSE(has(on("list", list).out, "Späte"));
    expect_failure(on("delete", list + " 'Späte Töne'"), 1, "there is no 'Späte Töne'");
    expect_failure(on("show", list + " 'Späte Töne'"), 1, "there is no");
}

TEST_P(EveryList, what_a_list_cannot_do_is_refused) {
    const std::string list = GetParam();
    expect_failure(on("add", list + " Colour=red"), 2, "Name=TEXT");
    expect_failure(on("add", list + " Name=a Name=b"), 2, "Name=TEXT");
    expect_failure(on("set", list + " a Name=b"), 2, "not changed");
    expect_failure(on("list", list + " --filter Name=b"), 2, "no filter");
    expect_failure(on("add", list + " Name="), 2, "Name of " + list + " cannot be empty");
    expect_failure(on("add", list + " 'Name=3\" tape'"), 1, "takes no double quote");
}

TEST_F(Records, values_that_do_not_parse_are_usage_errors) {
    expect_failure(on("add", "Songs ProjID=many"), 2,
                   "ProjID takes a whole number from -2147483648 to 2147483647, not 'many'");
    expect_failure(on("add", "Songs ProjID=99999999999"), 2, "ProjID");
    expect_failure(on("add", "Projects DiscountVal=1,5"), 2, "DiscountVal takes a decimal number");
    expect_failure(on("add", "Projects DiscountVal=nan"), 2, "DiscountVal");
    for (const std::string date :
         {"2026-02-30", "2026-13-01", "1.2.2026", "2026-1-1", "1950-01-01", "2026-01-01T10:00"}) {
        expect_failure(on("add", "Projects ProjCreateDate=" + date), 2, "YYYY-MM-DD");
    }
    for (const std::string moment : {"2026-01-01T24:00", "2026-01-01T10:60", "2026-01-01T10:0", "2026-01-01 10:00"}) {
        expect_failure(on("add", "Bookings 'DateStart=" + moment + "'"), 2, "YYYY-MM-DDTHH:MM");
    }
    expect_failure(on("add", "Songs Name"), 2, "no member=value");
    expect_failure(on("add", "Songs =1"), 2, "no member=value");
#ifndef _WIN32
    expect_failure(on("add", "Songs 'Name=\xff'"), 2, "Name takes text in UTF-8");
#endif
}

TEST_F(Records, text_beyond_the_systems_code_page_is_kept_by_a_change_of_another_member) {
    const std::string name = "\u041d\u043e\u0447\u044c \u03a9";  // no narrow code page has both
    EXPECT_EQ(on("set", "Projects 1 'Name=" + name + "'").code, 0);
#ifdef _WIN32
    EXPECT_EQ(on("set", "Projects 1 Type=Demo").code, 0);
#else
    const std::string in_c =
        "LC_ALL=C " + in_quotes(KVDB_TOOL) + " set " + in_quotes(studio_) + " Projects 1 Type=Demo";
    EXPECT_EQ(std::system(in_c.c_str()), 0);
#endif
    EXPECT_TRUE(has(on("show", "Projects 1").out, "Name: " + name + "\n"));
    EXPECT_TRUE(has(on("show", "Projects 1").out, "Type: Demo\n"));
}

TEST_F(Records, what_is_refused_lists_the_valid_names) {
    expect_failure(on("list", "Nothing"), 2, "Projects, Songs, Tracks");
    expect_failure(on("add", "Def_Sequencer SequencerID=1"), 2, "it has Name, Path");
    expect_failure(on("list", "Tracks --filter Mode=1"), 2, "it is by DestinationID, PerformerID, SongID");
    expect_failure(on("list", "MixFiles --filter Colour=1"), 2, "it is by SongID");
    expect_failure(on("list", "GearRentals --filter FromDate="), 2, "FromDate needs a date");
    expect_failure(on("list", "Songs --json --csv"), 2, "--csv");
}

TEST_F(Records, usage_error_comes_before_the_studio_is_touched) {
    const std::string nowhere = in_quotes(studio_ + "/nowhere");
    expect_failure(run("add " + nowhere + " Songs Colour=red"), 2, "Colour");
    expect_failure(run("list " + nowhere + " Songs --filter Colour=red"), 2, "Colour");
    expect_failure(run("add " + nowhere + " Songs Name=red"), 1, "no folder");
    std::filesystem::create_directory(studio_ + "/empty");
    for (const std::string command : {"list", "show", "add", "set", "delete"}) {
        const std::string key = command == "list" || command == "add" ? "" : " 1";
        const std::string members = command == "add" || command == "set" ? " Name=red" : "";
        expect_failure(run(command + " " + in_quotes(studio_ + "/empty") + " Songs" + key + members), 1, "no studio");
        expect_failure(
            run(command + " " + in_quotes(studio_ + "/empty") + " Gear" + key + (members.empty() ? "" : " Model=red")),
            1, "no studio");
    }
    EXPECT_TRUE(std::filesystem::is_empty(studio_ + "/empty"));
}

TEST_F(Records, names_go_in_any_case_and_filters_add_up) {
    const std::string lead = on("list", "TRACKS --filter songid=1 --filter Performer=Jonas* --csv").out;
    EXPECT_TRUE(has(lead, "Lead,Vocal")) << lead;
    EXPECT_FALSE(has(lead, "Strings")) << lead;
    EXPECT_EQ(on("set", "projects 2 name=Renamed").code, 0);
    EXPECT_TRUE(has(on("show", "Projects 2").out, "Name: Renamed\n"));
}

TEST_F(Records, dates_of_a_span_are_open_where_none_is_given) {
    EXPECT_TRUE(has(on("list", "Invoices --filter FromDate=2026-03-31").out, "1001"));
    EXPECT_FALSE(has(on("list", "Invoices --filter FromDate=2026-04-01").out, "1001"));
    EXPECT_FALSE(has(on("list", "Invoices --filter ToDate=2026-03-30").out, "1001"));
    const std::string late = on("list", "Bookings --filter DateStart=2026-03-13").out;
    EXPECT_TRUE(has(late, "2026-04-02T09:15")) << late;
    EXPECT_FALSE(has(late, "2026-03-12T10:00")) << late;
    EXPECT_FALSE(has(on("list", "GearRentals --filter FromDate=2026-03-13").out, "Ribbon"));
    EXPECT_TRUE(has(on("list", "GearRentals --filter ToDate=2026-03-12").out, "Ribbon"));
}

TEST_F(Records, date_that_is_not_given_is_null_and_can_be_taken_away) {
    EXPECT_EQ(on("add", "Projects Name=Undated").out, "5\n");
    EXPECT_TRUE(has(on("show", "Projects 5 --json").out, "\"ProjCreateDate\": null"));
    EXPECT_EQ(on("set", "Projects 1 ProjCreateDate=").code, 0);
    EXPECT_TRUE(has(on("show", "Projects 1 --json").out, "\"ProjCreateDate\": null"));
}

TEST_F(Records, room_of_a_name_that_is_there_is_not_added) {
    expect_failure(on("add", "Def_Rooms 'Name=Studio A'"), 1, "already");
    EXPECT_EQ(on("list", "Def_Rooms --csv").out, "RecID,Name,BasePrice,FullPrice,ExData\r\n1,Studio A,40,65.5,0\r\n");
}

TEST_F(Records, engineers_have_no_table_in_a_new_file) {
    expect_failure(on("add", "Def_Engineers Name=Kim Price=30"), 1, "Nothing was added to Def_Engineers in ");
    EXPECT_EQ(on("list", "Def_Engineers --json").out, "[\n]\n");
    expect_failure(on("show", "Def_Engineers 1"), 1, "no row 1");
}

}  // namespace

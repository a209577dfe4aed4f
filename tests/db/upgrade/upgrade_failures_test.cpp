// Makes every step of an upgrade fail with a file that does not match its version: which failures stop the upgrade,
// which version the header has then, and what exists and what does not.
#include <functional>
#include <vector>

#include "afx/dao_error.h"
#include "tests/db/upgrade/upgrade_fixture.h"
#include "tests/support/code_page_file.h"

namespace {

using namespace testing_support;
using jet::Null;

class UpgradeFailure : public UpgradeTest {
protected:
    // The content after an upgrade of a filled studio; the upgrade must return `result`.
    Content upgraded(std::int32_t version, const Oddities& oddities, int result) {
        std::filesystem::remove(studio());
        OldFile file = make_studio(version, oddities);
        fill(file);
        file.close();
        EXPECT_EQ(upgrade_studio(), result) << version;
        return content_of(studio());
    }
    // A row in every table that the upgrade converts, if the file has the table.
    static void fill(OldFile& file) {
        const auto add = [&](const char* table, std::initializer_list<Cell> cells) {
            if (file.has(table)) file.add(table, cells);
        };
        add("Projects", {{"Name", "Album"}});
        add("Songs", {{"ProjID", 1}, {"Name", "Sunrise"}, {"MixFile", "a.wav"}});
        add("Tracks", {{"Name", "Bass"}});
        add("Sessions", {{"ProjID", 1}, {"SongName", "Sunrise"}, {"Engineer", "Anna"}});
        add("Clients", {{"Name", "Bob"}, {"LastName", "Smith"}});
        add("Stock", {{"Name", "Tape"}});
        add("Equipment", {{"Name", "Mixer"}});
        add("Def_StockTypes", {{"TypeName", "DAT"}});
        add("Def_Engineers", {{"Name", "Anna"}});
        add("Bookings", {{"ClientName", "Bob"}});
    }
    static Oddities without(const char* name) {
        Oddities oddities;
        oddities.without = {name};
        return oddities;
    }
    static Oddities with_table(const char* name) {
        Oddities oddities;
        oddities.also = {name};
        return oddities;
    }
    static Oddities with_kind(const char* name, const char* kind) {
        Oddities oddities;
        oddities.kinds = {{name, kind}};
        return oddities;
    }
};

// ---- Password and header

TEST_F(UpgradeFailure, oldest_file_with_the_current_password_already_stops_and_is_untouched) {
    Oddities oddities;
    oddities.password = kStudioPassword;
    OldFile file = make_studio(100005, oddities);
    fill(file);
    file.close();
    const Content before = content_of(studio());
    EXPECT_EQ(upgrade_studio(), -1);
    EXPECT_EQ(difference(before, content_of(studio())), "");
    EXPECT_EQ(password_in(studio()), kStudioPassword);
}

TEST_F(UpgradeFailure, file_whose_tables_are_listed_in_an_unknown_order_is_left_as_it_is) {
    const UseOldFormat use(jet::kJet3);
    make_old_studio(path(""), 200010);
    for (const std::string& file : {studio(), invoices()}) {
        change_code_page(file, 1250, 0x0405);
        const Content before = content_of(file);
        EXPECT_EQ(file == studio() ? upgrade_studio() : upgrade_invoices(), -1);
        EXPECT_EQ(version_in(before), "200010");
        EXPECT_EQ(difference(before, content_of(file)), "");
    }
}

TEST_F(UpgradeFailure, file_opened_for_sharing_keeps_its_password_and_stops) {
    make_studio(100005).close();
    CDaoDatabase database;
    database.Open(studio().c_str(), FALSE, FALSE, (std::string(";PWD=") + kFormerStudioPassword).c_str());
    EXPECT_EQ(db::upgrade_main_file(database), -1);
    EXPECT_EQ(db::stored_version(database), 100005);
    database.Close();
    EXPECT_EQ(password_in(studio()), kFormerStudioPassword);
}

TEST_F(UpgradeFailure, header_that_cannot_be_read_stops) {
    for (const char* const missing : {"DBHeader", "DBHeader.DBversion"}) {
        std::filesystem::remove(studio());
        Oddities oddities = without(missing);
        oddities.header_row = false;
        make_studio(200010, oddities).close();
        const Content before = content_of(studio());
        EXPECT_EQ(upgrade_studio(), -1) << missing;
        EXPECT_EQ(difference(before, content_of(studio())), "") << missing;
    }
}

TEST_F(UpgradeFailure, empty_header_of_the_oldest_file_stops_after_the_password) {
    Oddities oddities;
    oddities.header_row = false;
    make_studio(100005, oddities).close();
    EXPECT_EQ(upgrade_studio(), -1);
    EXPECT_EQ(password_in(studio()), kStudioPassword);
    EXPECT_EQ(upgrade_studio(), -1);
}

TEST_F(UpgradeFailure, version_in_a_text_column_is_read_and_written) {
    const Content after = upgraded(200010, with_kind("DBHeader.DBversion", "text"), 1);
    EXPECT_EQ(version_in(after), "'210000'");
}

TEST_F(UpgradeFailure, version_that_is_no_number_is_the_oldest_and_stops_at_the_password) {
    Oddities oddities = with_kind("DBHeader.DBversion", "short");
    oddities.header_row = false;
    OldFile file = make_studio(200010, oddities);
    file.add("DBHeader", {{"DBversion", "old"}, {"Color1", 7}});
    file.close();
    EXPECT_EQ(upgrade_studio(), -1);
    EXPECT_EQ(version_in(content_of(studio())), "'old'");
}

// ---- Demo project

TEST_F(UpgradeFailure, demo_project_that_cannot_be_added_is_left_out) {
    Content after = upgraded(200010, with_kind("Projects.Notes", "long"), 1);
    EXPECT_EQ(column(after, "Projects", "Name"), "'Album' ");
    EXPECT_EQ(column(after, "Projects", "ProjTypeID"), "0 ");
    EXPECT_EQ(rows_in(after, "ContactCategories"), 10u);
    after = upgraded(100006, without("Projects"), 1);
    EXPECT_EQ(version_in(after), "210000");
    EXPECT_FALSE(after.contains("Projects"));
    EXPECT_EQ(rows_in(after, "ContactCategories"), 10u);
}

// ---- Dated records: the first error ends their conversion, and nothing else

struct DatedCase {
    const char* odd;   // a missing column or table
    const char* kind;  // or null: a column of another kind
    bool sessions, equipment, item_price, price;
};

TEST_F(UpgradeFailure, first_error_ends_the_dated_records_but_not_the_upgrade) {
    for (const DatedCase& c : {
             DatedCase{"Sessions", nullptr, false, false, false, false},
             DatedCase{"Sessions.Date", nullptr, false, false, false, false},
             DatedCase{"Equipment", nullptr, true, false, false, false},
             DatedCase{"Equipment.Date", nullptr, true, false, false, false},
             DatedCase{"Def_StockTypes", nullptr, true, true, false, false},
             DatedCase{"Def_Engineers", nullptr, true, true, true, false},
         }) {
        const Content after = upgraded(100006, without(c.odd), 1);
        EXPECT_EQ(version_in(after), "210000") << c.odd;
        const bool sessions_done = has_column(after, "Sessions", "RecDate") && !has_column(after, "Sessions", "Date");
        EXPECT_EQ(sessions_done, c.sessions || std::string(c.odd) == "Sessions.Date") << c.odd;
        const bool equipment_done =
            has_column(after, "Equipment", "ActDate") && !has_column(after, "Equipment", "Date");
        EXPECT_EQ(equipment_done, c.equipment || std::string(c.odd) == "Equipment.Date") << c.odd;
        EXPECT_EQ(has_column(after, "Def_StockTypes", "ItemPrice"), c.item_price) << c.odd;
        EXPECT_EQ(has_column(after, "Def_Engineers", "Price"), c.price) << c.odd;
        EXPECT_EQ(rows_in(after, "LibGroups"), 3u) << c.odd;
        EXPECT_EQ(rows_in(after, "ContactCategories"), 10u) << c.odd;
    }
}

TEST_F(UpgradeFailure, dates_stay_as_text_where_the_date_column_refuses_them) {
    OldFile file = make_studio(100006, with_kind("Equipment.ActDate", "short"));
    file.add("Equipment", {{"Name", "Mixer"}, {"Date", "3/5/2005"}, {"ActDate", "old"}});
    file.add("Equipment", {{"Name", "Desk"}, {"Date", "never"}, {"ActDate", "kept"}});
    file.close();
    EXPECT_EQ(upgrade_studio(), 1);
    const Content after = content_of(studio());
    EXPECT_EQ(after.at("Equipment").columns.at("ActDate"), "short");
    EXPECT_EQ(after.at("Equipment").rows[1].at("ActDate"), "'kept'");
}

TEST_F(UpgradeFailure, price_that_is_there_already_keeps_its_values) {
    OldFile file = make_studio(100006, with_kind("Def_Engineers.Price", "currency"));
    file.add("Def_Engineers", {{"Name", "Anna"}, {"Price", amount(25)}});
    file.close();
    EXPECT_EQ(upgrade_studio(), 1);
    EXPECT_EQ(column(content_of(studio()), "Def_Engineers", "Price"), "25.0000 ");
    EXPECT_EQ(column(content_of(studio()), "Services", "Price"), "25.0000 ");
}

TEST_F(UpgradeFailure, fields_that_are_there_already_are_no_failure) {
    Oddities oddities;
    oddities.kinds = {{"Def_Engineers.RecID", "key"}, {"Sessions.RoomID", "long"},   {"Sessions.RecDate", "date"},
                      {"Clients.CatIDs", "memo"},     {"Tracks.Status", "currency"}, {"Stock.Cost", "long"}};
    const Content after = upgraded(100006, oddities, 1);
    EXPECT_EQ(after.at("Clients").columns.at("CatIDs"), "memo");
    EXPECT_EQ(column(after, "Clients", "CatIDs"), "'1' '6' ");
    EXPECT_EQ(column(after, "Tracks", "Status"), "0.0000 ");
    EXPECT_EQ(column(after, "Tracks", "Mode"), "0 ");
    EXPECT_EQ(column(after, "Stock", "Cost"), "0 ");
    EXPECT_FALSE(has_column(after, "Sessions", "Date"));
    EXPECT_TRUE(has_column(after, "Def_Engineers", "Price"));
}

// ---- Existing tables stop the upgrade, the header says 210000

struct StopCase {
    std::int32_t version;
    const char* table;
    std::vector<const char*> made;      // before it
    std::vector<const char*> not_made;  // because of it
};

TEST_F(UpgradeFailure, table_that_is_there_already_stops_with_the_ones_before_it_made) {
    for (const StopCase& c : {
             StopCase{100006, "LibGroups", {}, {"MediaLibs", "Def_Invoice", "Def_Tax", "Gear"}},
             StopCase{100006, "MediaLibs", {"LibGroups"}, {"MediaFiles", "Def_Tax"}},
             StopCase{100006, "MediaFiles", {"MediaLibs"}, {"Bookings", "Def_Tax"}},
             StopCase{100006, "Bookings", {"MediaFiles"}, {"Def_Rooms", "Def_Tax"}},
             StopCase{100006, "Def_Rooms", {"Bookings"}, {"Def_Invoice", "Def_Tax"}},
             StopCase{100006, "Def_Invoice", {"LibGroups", "Def_Rooms"}, {"Def_Tax", "Gear"}},
             StopCase{100006, "Def_Tax", {"Def_Invoice"}, {"ContactCategories", "Gear"}},
             StopCase{200000, "Def_Tax", {}, {"ContactCategories", "Gear"}},
             StopCase{200010, "ContactCategories", {}, {"ProjPayments", "Gear"}},
             StopCase{200010, "ProjPayments", {"ContactCategories"}, {"ProjActivities", "Gear"}},
             StopCase{200010, "ProjActivities", {"ProjPayments"}, {"MixFiles", "Gear"}},
             StopCase{200010, "MixFiles", {"ProjActivities"}, {"Messages", "Gear"}},
             StopCase{200010, "Messages", {"MixFiles"}, {"Services", "Gear"}},
             StopCase{200010, "Services", {"Messages"}, {"Participants", "Gear"}},
             StopCase{200010, "Participants", {"Services"}, {"Gear"}},
             StopCase{200010, "Gear", {"Participants"}, {"GearServices", "GearRentals"}},
             StopCase{200010, "GearServices", {"Gear"}, {"GearRepairs", "GearRentals"}},
             StopCase{200010, "GearRepairs", {"GearServices"}, {"GearCategories"}},
             StopCase{200010, "GearCategories", {"GearRepairs"}, {"GearRentals"}},
             StopCase{200010, "GearRentals", {"GearCategories"}, {}},
         }) {
        const Content after = upgraded(c.version, with_table(c.table), -1);
        EXPECT_EQ(version_in(after), "210000") << c.table;
        for (const char* const made : c.made) EXPECT_TRUE(after.contains(made)) << c.table << ": " << made;
        for (const char* const name : c.not_made) EXPECT_FALSE(after.contains(name)) << c.table << ": " << name;
        EXPECT_EQ(rows_in(after, "Projects"), 2u) << c.table;
        // Neither rows of a library without all its tables, nor anything of the contact model.
        EXPECT_EQ(rows_in(after, "LibGroups"), std::string(c.table) == "Def_Tax" && c.version < 200000 ? 3u : 0u);
        EXPECT_EQ(rows_in(after, "ContactCategories"), 0u) << c.table;
        EXPECT_FALSE(has_column(after, "Clients", "CategoryID")) << c.table;
        EXPECT_EQ(column(after, "Clients", "Name"), "'Bob' ") << c.table;
        EXPECT_EQ(upgrade_studio(), 0) << c.table;  // it is not tried again
    }
}

// Records what an observer of upgrades is told.
class Told : public db::UpgradeObserver {
public:
    Told() { db::set_upgrade_observer(this); }
    ~Told() override { db::set_upgrade_observer(nullptr); }
    void begins(const db::UpgradeStep& step) override {
        begun.push_back(step.effect);
        afx::clear_last_error();
    }
    void failed(const db::UpgradeStep& step) override {
        failures.push_back(std::string(step.effect) + ": " + std::to_string(afx::last_error().number));
        reason = afx::last_error().text;
    }

    std::vector<std::string> begun;
    std::vector<std::string> failures;
    std::string reason;
};

TEST_F(UpgradeFailure, observer_is_told_of_every_step_and_why_one_failed) {
    Told stopped;
    upgraded(200010, with_table("Services"), -1);
    EXPECT_EQ(stopped.failures, std::vector<std::string>{
                                    "create the tables of contacts, payments, activities, mix files and gear: 3010"});
    EXPECT_NE(stopped.reason.find("Services"), std::string::npos) << stopped.reason;
    EXPECT_EQ(stopped.begun.back(), "create the tables of contacts, payments, activities, mix files and gear");

    Told went_on;
    upgraded(200010, without("Bookings"), 1);
    ASSERT_FALSE(went_on.failures.empty());
    EXPECT_NE(went_on.reason.find("Bookings"), std::string::npos) << went_on.reason;
    EXPECT_EQ(went_on.begun.back(), "write the contact categories");

    Told sound;
    upgraded(200010, {}, 1);
    EXPECT_TRUE(sound.failures.empty()) << sound.failures.front();
}

// ---- The contact model: failed parts are left out, the rest is done

TEST_F(UpgradeFailure, missing_table_leaves_the_others_converted) {
    for (const char* const missing :
         {"Bookings", "Clients", "Projects", "Sessions", "Songs", "Stock", "Tracks", "Def_Engineers"}) {
        const Content after = upgraded(200010, without(missing), 1);
        const std::string gone = missing;
        EXPECT_EQ(version_in(after), "210000") << gone;
        EXPECT_FALSE(after.contains(gone));
        const auto expect_converted = [&](const char* table, const char* field, const char* value) {
            if (gone == table) return;
            EXPECT_EQ(column(after, table, field), value) << table << " without " << gone;
        };
        expect_converted("Bookings", "StatusID", "0 ");
        expect_converted("Projects", "ProjTypeID", "0 0 ");
        expect_converted("Songs", "WriterID", "0 ");
        expect_converted("Stock", "SupplierID", "0 ");
        expect_converted("Tracks", "Mode", "0 ");
        // A session whose engineer cannot become a contact ends the conversion of sessions.
        expect_converted("Sessions", "SongID", gone == "Songs" ? "0 " : gone == "Clients" ? "null " : "1 ");
        if (gone != "Clients") {
            EXPECT_EQ(column(after, "Clients", "Name").substr(0, 12), "'Bob Smith' ") << gone;
            EXPECT_EQ(rows_in(after, "Clients"), 2u) << gone;
        }
        EXPECT_EQ(rows_in(after, "Services"), gone == "Clients" || gone == "Def_Engineers" ? 0u : 1u) << gone;
        EXPECT_EQ(rows_in(after, "Participants"), gone == "Clients" || gone == "Sessions" ? 0u : 1u) << gone;
        EXPECT_EQ(rows_in(after, "MixFiles"), gone == "Songs" ? 0u : 1u) << gone;
        EXPECT_EQ(rows_in(after, "ContactCategories"), 10u) << gone;
    }
}

struct KindCase {
    const char* column;
    const char* kind;
    std::function<void(const Content&)> check;
};

TEST_F(UpgradeFailure, field_of_another_kind_ends_the_conversion_of_its_table_only) {
    const KindCase cases[] = {
        {"Clients.Phone5Descript", "long",
         [](const Content& after) {
             // The failed row is unchanged; the engineer's texts are refused as well.
             EXPECT_EQ(column(after, "Clients", "Name"), "'Bob' ");
             EXPECT_EQ(rows_in(after, "Services"), 0u);
             EXPECT_EQ(rows_in(after, "Participants"), 0u);
         }},
        {"Projects.ProjCreateDate", "long",
         [](const Content& after) { EXPECT_EQ(column(after, "Projects", "ProjTypeID"), "0 0 "); }},
        {"Sessions.Total", "date",
         [](const Content& after) { EXPECT_EQ(column(after, "Participants", "Duration"), "0.0000 "); }},
        {"Bookings.StatusID", "memo",
         [](const Content& after) { EXPECT_EQ(column(after, "Bookings", "StatusID"), "'0' "); }},
        {"Tracks.Date", "long", [](const Content& after) { EXPECT_EQ(column(after, "Tracks", "TDate"), "null "); }},
        {"Songs.MixFile", "long", [](const Content& after) { EXPECT_EQ(rows_in(after, "MixFiles"), 0u); }},
    };
    for (const KindCase& c : cases) {
        std::filesystem::remove(studio());
        OldFile file = make_studio(200010, with_kind(c.column, c.kind));
        file.add("Projects", {{"Name", "Album"}});
        file.add("Songs", {{"ProjID", 1}, {"Name", "Sunrise"}});
        file.add("Tracks", {{"Name", "Bass"}});
        file.add("Sessions", {{"ProjID", 1}, {"SongName", "Sunrise"}, {"Engineer", "Anna"}});
        file.add("Clients", {{"Name", "Bob"}, {"LastName", "Smith"}});
        file.add("Def_Engineers", {{"Name", "Anna"}});
        file.add("Bookings", {{"ClientName", "Bob"}});
        file.close();
        EXPECT_EQ(upgrade_studio(), 1) << c.column;
        const Content after = content_of(studio());
        EXPECT_EQ(version_in(after), "210000") << c.column;
        EXPECT_EQ(rows_in(after, "ContactCategories"), 10u) << c.column;
        EXPECT_EQ(column(after, "Songs", "WriterID"), "0 ") << c.column;
        c.check(after);
    }
}

}  // namespace

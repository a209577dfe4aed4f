// The upgrade of the studio file: its effect on the tables and rows of full studios of every version.
#include <cstdio>
#include <map>
#include <sstream>

#include "db/upgrade/upgrade.h"
#include "tests/db/upgrade/upgrade_fixture.h"
#include "tests/interop/expected_schema.h"

namespace {

using namespace testing_support;

using Columns = std::map<std::string, std::string>;

Columns expected_columns(const char* text) {
    Columns columns;
    std::istringstream words(text);
    for (std::string name, kind; words >> name >> kind;) {
        if (kind.back() == ',') kind.pop_back();
        columns[name] = kind;
    }
    return columns;
}

// The old row with the expected changes applied; everything else must be the same.
bool is_kept(const std::string& table, const std::string& name, const ContentRow& old_row) {
    if (table == "DBHeader") return name != "DBversion";
    if (table == "Clients") return name != "Name";
    if (table == "Sessions" && name == "RoomID") return old_row.at(name) != "null";
    return name != "Date" || (table != "Sessions" && table != "Equipment");
}

// Month, day and year between slashes, else no date; all such texts of the studio are valid dates.
std::string date_of(const std::string& text) {
    int month = 0, day_of_month = 0, year = 0;
    if (std::sscanf(text.c_str(), "'%d/%d/%d'", &month, &day_of_month, &year) != 3 || month > 12) return "null";
    char date[32];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", year, month, day_of_month);
    return date;
}

bool is_set(const std::string& value) { return value != "null" && value != "''"; }

class UpgradeFrom : public UpgradeTest, public ::testing::WithParamInterface<std::int32_t> {
protected:
    UpgradeFrom() {
        make_filled_studio(GetParam());
        before_ = content_of(studio());
        EXPECT_EQ(upgrade_studio(), 1);
        after_ = content_of(studio());
    }

    Content before_;
    Content after_;
};

TEST_P(UpgradeFrom, gives_every_table_and_field_of_today) {
    EXPECT_EQ(version_in(after_), "210000");
    EXPECT_EQ(after_.size(), 35u);  // with the engineers' list
    for (const interop::ExpectedTable& table : interop::kStudioTables) {
        ASSERT_TRUE(after_.contains(table.name)) << table.name;
        EXPECT_EQ(after_.at(table.name).columns, expected_columns(table.columns)) << table.name;
    }
    EXPECT_EQ(after_.at("Def_Engineers").columns, expected_columns("Name short, Price currency, RecID key"));
}

TEST_P(UpgradeFrom, keeps_every_row_with_every_value) {
    std::size_t values = 0;
    for (const auto& [name, table] : before_) {
        ASSERT_LE(table.rows.size(), rows_in(after_, name)) << name;
        for (std::size_t i = 0; i < table.rows.size(); ++i) {
            for (const auto& [field, value] : table.rows[i]) {
                if (!is_kept(name, field, table.rows[i])) continue;
                ASSERT_EQ(after_.at(name).rows[i].at(field), value) << name << "." << field << ", row " << i;
                ++values;
            }
        }
    }
    EXPECT_GT(values, 8000u);
}

TEST_P(UpgradeFrom, adds_the_rows_that_it_should_and_no_others) {
    std::map<std::string, std::size_t> added;
    for (const auto& [name, table] : after_) {
        if (const std::size_t more = table.rows.size() - rows_in(before_, name); more != 0) added[name] = more;
    }
    std::size_t participants = 0, mixes = 0;
    for (const ContentRow& row : before_.at("Sessions").rows) participants += is_set(row.at("Engineer"));
    for (const ContentRow& row : before_.at("Songs").rows) mixes += is_set(row.at("MixFile"));
    std::map<std::string, std::size_t> expected = {{"Projects", 1},     {"Clients", 9 + 3},
                                                   {"Services", 9},     {"Participants", participants},
                                                   {"MixFiles", mixes}, {"ContactCategories", 10}};
    if (GetParam() < 200000) expected.insert({{"LibGroups", 3}, {"MediaLibs", 5}});
    EXPECT_EQ(added, expected);
    EXPECT_EQ(std::pair(participants, mixes), (std::pair<std::size_t, std::size_t>(348, 50)));
}

TEST_P(UpgradeFrom, converts_every_row) {
    for (const auto table : {"Sessions", "Equipment", "Tracks", "Clients"}) ASSERT_GT(rows_in(before_, table), 0u);
    for (std::size_t i = 0; i < rows_in(before_, "Sessions"); ++i) {
        const ContentRow& old_row = before_.at("Sessions").rows[i];
        const ContentRow& row = after_.at("Sessions").rows[i];
        if (old_row.contains("Date")) {
            EXPECT_EQ(row.at("RecDate"), date_of(old_row.at("Date"))) << i;
        }
        std::string song = "0";
        for (const ContentRow& candidate : before_.at("Songs").rows) {
            const std::string& name = candidate.at("Name");
            // Names with wildcards, quotes and brackets do not match themselves.
            if (name != old_row.at("SongName") || candidate.at("ProjID") != old_row.at("ProjID") ||
                name.find_first_of("\"[#") != std::string::npos) {
                continue;
            }
            song = candidate.at("SongID");
            break;
        }
        EXPECT_EQ(row.at("SongID"), song) << i;
        if (!old_row.contains("RoomID") || old_row.at("RoomID") == "null") {
            EXPECT_EQ(row.at("RoomID"), "0") << i;
        }
    }
    for (std::size_t i = 0; i < rows_in(before_, "Equipment"); ++i) {
        const ContentRow& old_row = before_.at("Equipment").rows[i];
        if (!old_row.contains("Date")) continue;
        EXPECT_EQ(after_.at("Equipment").rows[i].at("ActDate"), date_of(old_row.at("Date"))) << i;
    }
    for (std::size_t i = 0; i < rows_in(before_, "Tracks"); ++i) {
        EXPECT_EQ(after_.at("Tracks").rows[i].at("TDate"), date_of(before_.at("Tracks").rows[i].at("Date"))) << i;
    }
    for (std::size_t i = 0; i < rows_in(before_, "Clients"); ++i) {
        const ContentRow& old_row = before_.at("Clients").rows[i];
        const std::string& first = old_row.at("Name");
        const std::string& last = old_row.at("LastName");
        EXPECT_EQ(after_.at("Clients").rows[i].at("Name"),
                  first.substr(0, first.size() - 1) + " " + (last == "null" ? "'" : last.substr(1)));
    }
}

TEST_P(UpgradeFrom, second_opening_changes_nothing) {
    EXPECT_EQ(upgrade_studio(), 0);
    EXPECT_EQ(difference(after_, content_of(studio())), "");
}

TEST_P(UpgradeFrom, gives_the_current_password) { EXPECT_EQ(password_in(studio()), kStudioPassword); }

INSTANTIATE_TEST_SUITE_P(Versions, UpgradeFrom, ::testing::ValuesIn(kOldVersions),
                         [](const auto& version) { return std::to_string(version.param); });

}  // namespace

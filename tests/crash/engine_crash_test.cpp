// Kills the engine at work: operations reported as done are in the file, and the file is sound.
#include <gtest/gtest.h>

#include <random>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tests/crash/kill_driver.h"
#include "tests/jet/tested_files.h"
#include "tests/support/temp_folder.h"

namespace jet {
namespace {

using testing_support::KilledProgram;
using testing_support::Reporter;
using testing_support::RowOperation;
using testing_support::Rows;

constexpr char16_t kTable[] = u"Things";
constexpr std::size_t kMostRows = 150;
constexpr int kKills = 70;
constexpr int kFewerKills = 15;  // of the program on each of the other kinds of file
constexpr std::chrono::milliseconds kLongestLife{50};

NewColumn column(const char16_t* name, ColumnType type) {
    NewColumn result;
    result.name = name;
    result.type = type;
    result.allow_zero_length = true;
    return result;
}

// A row's text and memo are derived from its version, so that a partial change is detected.
std::u16string title_of(std::uint32_t version) {
    return std::u16string(version % 200, static_cast<char16_t>(u'a' + version % 26));
}
std::u16string notes_of(std::uint32_t version, const Format& format) {
    const std::size_t length = version % 5 == 0 ? version % 6000 : version % 70;
    const std::uint32_t letter = format.is_jet3() ? 0xC0 + version % 60 : 0x4e00 + version % 1000;
    return std::u16string(length, static_cast<char16_t>(letter));
}

std::vector<Value> row_values(std::int32_t key, std::uint32_t version, const Format& format) {
    return {key, static_cast<std::int32_t>(version), title_of(version), notes_of(version, format)};
}

class EngineCrash : public ::testing::TestWithParam<TestedFile> {
protected:
    EngineCrash() {
        const auto database = Database::create(path_, GetParam().create_options());
        const NewColumn columns[] = {column(u"Key", ColumnType::kLong), column(u"Version", ColumnType::kLong),
                                     column(u"Title", ColumnType::kText), column(u"Notes", ColumnType::kMemo)};
        database->create_table(kTable, columns);
        database->close();
    }

    std::unique_ptr<Database> open(const PagerOptions& pager) const {
        OpenOptions options;
        options.pager = pager;
        return Database::open(path_, options);
    }

    [[noreturn]] void work(const PagerOptions& pager, Reporter& reporter, Rows rows, std::uint32_t seed) const {
        std::mt19937 random(seed);
        const Format& format = *GetParam().kind.format;
        const auto database = open(pager);
        Table& table = *database->find_table(kTable);
        std::map<std::int32_t, RowId> places;
        RowView view;
        for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
            if (table.read(*row, view)) places[std::get<std::int32_t>(view.value(0))] = *row;
        }
        while (true) {
            const RowOperation operation =
                testing_support::some_operation(rows, kMostRows, static_cast<std::uint32_t>(random()));
            reporter.begin(operation);
            switch (operation.kind) {
                case RowOperation::Kind::kAdd:
                    places[operation.key] = table.insert(row_values(operation.key, operation.version, format));
                    break;
                case RowOperation::Kind::kUpdate: {
                    const std::vector<Value> values = row_values(operation.key, operation.version, format);
                    std::vector<ColumnChange> changes;
                    for (std::size_t i = 1; i < values.size(); ++i) changes.push_back({i, values[i]});
                    table.update(places.at(operation.key), changes);
                    break;
                }
                case RowOperation::Kind::kDelete: table.erase(places.at(operation.key)); break;
            }
            reporter.done();
            testing_support::perform(operation, rows);
        }
    }

    Rows read_back() const {
        Rows rows;
        const auto database = open({});
        for (const Violation& violation : check_structure(*database)) {
            ADD_FAILURE() << "page " << violation.page << ": " << violation.rule << ": " << violation.detail;
        }
        const Table& table = *database->find_table(kTable);
        RowView view;
        for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
            if (!table.read(*row, view)) continue;
            const auto key = std::get<std::int32_t>(view.value(0));
            const auto version = static_cast<std::uint32_t>(std::get<std::int32_t>(view.value(1)));
            EXPECT_TRUE(rows.emplace(key, version).second) << key;
            EXPECT_EQ(view.value(2), Value(title_of(version))) << key;
            EXPECT_EQ(view.value(3), Value(notes_of(version, *GetParam().kind.format))) << key;
        }
        EXPECT_EQ(table.def().row_count, rows.size());
        database->close();
        return rows;
    }

    void kill_with(const PagerOptions& pager) {
        const KilledProgram program{
            [&](Reporter& reporter, const Rows& rows, std::uint32_t seed) { work(pager, reporter, rows, seed); },
            [&] { return read_back(); },
        };
        const int kills = GetParam().kind.format == &kJet4 && !GetParam().is_encoded() ? kKills : kFewerKills;
        EXPECT_GT(testing_support::kill_repeatedly(program, kills, kLongestLife), static_cast<std::uint64_t>(kills))
            << "hardly anything was done";
    }

    testing_support::TempFolder folder_;
    std::string path_ = folder_.file("a.mdb");
};

INSTANTIATE_TEST_SUITE_P(Files, EngineCrash, ::testing::ValuesIn(kTestedFiles), NameOfFile());

TEST_P(EngineCrash, killed_at_random_loses_nothing_acknowledged) { kill_with({}); }

TEST_P(EngineCrash, killed_with_every_commit_synced_loses_nothing_acknowledged) {
    PagerOptions pager;
    pager.sync_interval = std::chrono::milliseconds(0);
    kill_with(pager);
}

TEST_P(EngineCrash, killed_with_a_journal_begun_anew_often_loses_nothing_acknowledged) {
    PagerOptions pager;
    pager.sync_interval = std::chrono::milliseconds(2);
    pager.journal_limit_bytes = 40 * 1024;
    pager.cache_pages = 16;
    kill_with(pager);
}

}  // namespace
}  // namespace jet

// The journal of Jet 3 files and of encoded ones: replayed onto the file it is of, and onto no other.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

constexpr char kPath[] = "a.mdb";
const std::string kJournal = std::string(kPath) + "-journal";

CreateOptions options_of(const Format& format, std::uint32_t key) {
    CreateOptions options;
    options.format = &format;
    options.creation_date = 42329.5;
    options.encryption_key = key;
    return options;
}

struct Unclosed {
    ByteVector fresh;  // the file before anything was done to it
    ByteVector database;
    ByteVector journal;
    std::vector<std::vector<Value>> rows;
};

// A file as a crash leaves it: most of it is in the journal alone.
Unclosed leave_open(const CreateOptions& options, std::int32_t first) {
    MemoryDisk memory;
    Database::create(kPath, options)->close();
    Unclosed left;
    left.fresh = memory.disk.content(kPath);
    OpenOptions open;
    open.pager.sync_interval = std::chrono::hours(24);
    const auto database = Database::open(kPath, open);
    const NewColumn columns[] = {new_column(u"n", ColumnType::kLong), new_column(u"t", ColumnType::kMemo)};
    database->create_table(u"T", columns);
    for (std::int32_t n = first; n < first + 300; ++n) {
        left.rows.push_back({n, std::u16string(static_cast<std::size_t>(n % 40 == 0 ? 5000 : n % 50), u'\u00FC')});
        database->find_table(u"T")->insert(left.rows.back());
    }
    left.database = memory.disk.content(kPath);
    left.journal = memory.disk.content(kJournal);
    return left;
}

std::vector<std::vector<Value>> rows_in(Database& database) {
    std::vector<std::vector<Value>> rows;
    const Table* table = database.find_table(u"T");
    if (!table) return rows;
    for (auto id = table->next_row({}); id; id = table->next_row(*id)) rows.push_back(row_values(*table, *id));
    return rows;
}

TEST(Jet3Journal, unclosed_file_is_brought_up_to_date) {
    for (const Format* format : {&kJet3, &kJet4}) {
        for (const std::uint32_t key : {0u, 0xA7E0C0FEu}) {
            const Unclosed left = leave_open(options_of(*format, key), 1);
            for (const bool read_only : {true, false}) {
                MemoryDisk memory;
                memory.disk.set_content(kPath, left.database);
                memory.disk.set_content(kJournal, left.journal);
                OpenOptions open;
                open.read_only = read_only;
                {
                    const auto database = Database::open(kPath, open);
                    EXPECT_EQ(rows_in(*database), left.rows) << format->name << " " << key;
                    expect_sound(*database, format->name);
                }
                if (read_only) continue;
                // What was replayed lies in the file alone now.
                EXPECT_EQ(rows_in(*Database::open(kPath, {})), left.rows);
            }
        }
    }
}

// The headers of the two are the same, and so are their change counters: both have never been changed.
TEST(Jet3Journal, journal_of_another_file_that_was_made_alike_is_not_replayed) {
    const Unclosed other = leave_open(options_of(kJet3, 0), 1000);
    MemoryDisk memory;
    memory.disk.set_content(kPath, other.fresh);
    memory.disk.set_content(kJournal, other.journal);
    const auto database = Database::open(kPath, {});
    EXPECT_TRUE(database->table_names().empty());
    EXPECT_FALSE(memory.disk.content(kJournal + "-set-aside").empty());
}

}  // namespace
}  // namespace jet

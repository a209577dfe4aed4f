// The engine changes copies of files written by Access and ADOX: it and the other readers read back what was written,
// and nothing else is different.
#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <set>
#include <utility>

#include "jet/check/check.h"
#include "tests/interop/agreement.h"
#include "tests/interop/interop_fixture.h"
#include "tests/interop/sample_values.h"
#include "tests/jet/file_changer.h"

namespace interop {
namespace {

using Rows = std::map<jet::RowId, std::vector<jet::Value>>;

// The findings of the check, without the details that change with the content.
using Findings = std::multiset<std::pair<jet::PageNumber, std::string>>;

Findings findings(jet::Database& database) {
    Findings result;
    for (const jet::Violation& violation : jet::check_structure(database))
        result.emplace(violation.page, violation.rule);
    return result;
}

// A change may take away what the check had to say of a row.
void expect_no_new_findings(const Findings& now, const Findings& before) {
    EXPECT_TRUE(std::includes(before.begin(), before.end(), now.begin(), now.end()));
}

Rows rows_of(const OurTable& table) {
    Rows rows;
    for (const OurRow& row : table.rows) rows[row.id] = row.values;
    return rows;
}

void expect_same_rows(const Rows& actual, const Rows& expected, const std::string& table) {
    EXPECT_EQ(actual.size(), expected.size()) << table;
    for (const auto& [id, values] : expected) {
        const auto found = actual.find(id);
        ASSERT_TRUE(found != actual.end()) << table << ": no row at page " << id.page << ", slot " << int{id.slot};
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(found->second[i], values[i])
                << table << ", page " << id.page << ", slot " << int{id.slot} << ", column " << i << ": "
                << describe(found->second[i]) << " instead of " << describe(values[i]);
        }
    }
}

class ChangedSamplesInterop : public InteropTest {
protected:
    std::string copy_of(const std::string& sample) {
        const std::string copy = folder_.file(std::filesystem::path(sample).filename().string());
        std::filesystem::copy_file(sample, copy);
        std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
        return copy;
    }
    // Gives a copy of each file of Access 97 to `change` and reads it back in every way. Returns how many there were.
    std::size_t change_jet3_samples(const std::function<void(jet::Database&)>& change) {
        std::size_t changed = 0;
        for (const std::string& sample : sample_files()) {
            if (!sample.ends_with("V1997.mdb")) continue;
            SCOPED_TRACE(sample);
            const std::string path = copy_of(sample);
            auto database = jet::Database::open(path, {});
            const auto before = findings(*database);
            change(*database);
            database->close();
            database = jet::Database::open(path, {});
            expect_no_new_findings(findings(*database), before);
            const auto tables = read_with_engine(*database);
            database->close();
            compare_with_other_readers(path, tables);
            ++changed;
        }
        return changed;
    }
};

// Changes one table and keeps the rows that it must then have.
class TableEditor {
public:
    TableEditor(jet::Table& table, Rows rows) : table_(table), rows_(std::move(rows)) {}

    const Rows& rows() const { return rows_; }

    // False when the table cannot be written because of an index.
    bool insert(std::uint32_t count) {
        const auto& columns = table_.def().columns;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t number = kFirstNumber + i;
            std::vector<jet::Value> values;
            for (const jet::ColumnDef& column : columns) values.push_back(value_for(column, number));
            try {
                const jet::RowId row = table_.insert(values);
                EXPECT_FALSE(rows_.contains(row));
                rows_[row] = values;
                own_.push_back(row);
            } catch (const jet::Error& error) {
                if (error.number() == jet::errors::kCannotMaintainIndex) return false;
                throw;
            }
        }
        return true;
    }

    // Gives every own row the values of another number; the difference exceeds the number of rows, so that no two
    // values collide in a unique index on the way.
    void change_own_rows(std::uint32_t by) {
        const auto& columns = table_.def().columns;
        for (std::uint32_t i = 0; i < own_.size(); ++i) {
            std::vector<jet::ColumnChange> changes;
            for (std::size_t c = 0; c < columns.size(); ++c)
                changes.push_back({c, value_for(columns[c], kFirstNumber + i + by)});
            update(own_[i], changes);
        }
    }

    // Gives every second old row its longest texts, so that rows move to other pages; empties the texts of the row
    // before it where permitted.
    void stretch_old_rows() {
        const std::vector<jet::RowId> old = old_rows();
        const auto& columns = table_.def().columns;
        for (std::uint32_t i = 0; i < old.size(); ++i) {
            std::size_t room = kRoomInRow;
            std::vector<jet::ColumnChange> changes;
            for (std::size_t c = 0; c < columns.size(); ++c) {
                if (columns[c].required || is_required_by_index(columns[c].number)) continue;
                const jet::Value longest = longest_value_for(columns[c], 5000 + i);
                if (jet::is_null(longest) || columns[c].length_bytes > room) continue;
                room -= columns[c].length_bytes;
                changes.push_back({c, i % 2 ? longest : jet::Value(jet::Null{})});
            }
            if (!changes.empty()) update(old[i], changes);
        }
    }

    // Deletes every third row, old and new.
    void erase_some() {
        std::vector<jet::RowId> doomed;
        std::size_t i = 0;
        for (const auto& [row, values] : rows_) {
            if (i++ % 3 == 1) doomed.push_back(row);
        }
        for (const jet::RowId row : doomed) {
            table_.erase(row);
            rows_.erase(row);
        }
    }

private:
    static constexpr std::uint32_t kFirstNumber = 3001;
    static constexpr std::size_t kRoomInRow = 1000;  // bytes; keeps rows from becoming too large

    std::vector<jet::RowId> old_rows() const {
        std::vector<jet::RowId> old;
        for (const auto& [row, values] : rows_) {
            if (std::find(own_.begin(), own_.end(), row) == own_.end()) old.push_back(row);
        }
        return old;
    }

    bool is_required_by_index(std::uint16_t number) const {
        for (const jet::RealIndex& index : table_.def().real_indexes) {
            for (const jet::KeyColumn& key : index.columns) {
                if (index.required() && key.column_number == number) return true;
            }
        }
        return false;
    }

    void update(jet::RowId row, const std::vector<jet::ColumnChange>& changes) {
        table_.update(row, changes);
        for (const jet::ColumnChange& change : changes) rows_[row][change.position] = change.value;
    }

    jet::Table& table_;
    Rows rows_;
    std::vector<jet::RowId> own_;
};

TEST_F(ChangedSamplesInterop, rows_inserted_changed_and_erased_read_back_equal_everywhere) {
    const auto files = sample_files();
    if (files.empty()) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    std::size_t written = 0, moved = 0, refused = 0;
    std::map<std::string, std::size_t> faults;
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        const std::string path = copy_of(file);
        auto database = jet::Database::open(path, {});
        const auto before = findings(*database);
        std::map<std::string, Rows> expected;
        for (const OurTable& ours : read_with_engine(*database)) {
            const std::string name = jet::to_utf8(ours.def.name);
            expected[name] = rows_of(ours);
            if (ours.system) continue;
            SCOPED_TRACE(name);
            jet::Table& table = *database->find_table(ours.def.name);
            TableEditor editor(table, expected[name]);
            if (!editor.insert(22)) {
                EXPECT_EQ(error_number([&] { table.erase(ours.rows.at(0).id); }), jet::errors::kCannotMaintainIndex);
                ++refused;
                continue;
            }
            editor.change_own_rows(40);
            editor.stretch_old_rows();
            editor.erase_some();
            expected[name] = editor.rows();
            ++written;
        }
        database->close();

        database = jet::Database::open(path, {});
        const auto tables = read_with_engine(*database);
        expect_no_new_findings(findings(*database), before);
        database->close();
        for (const OurTable& table : tables) {
            const std::string name = jet::to_utf8(table.def.name);
            expect_same_rows(rows_of(table), expected[name], name);
            for (const OurRow& row : table.rows) moved += row.moved ? 1 : 0;
            EXPECT_TRUE(table.system || table.def.row_count == table.rows.size()) << name;
        }
        for (const auto& [name, count] : compare_with_other_readers(path, tables).faults) faults[name] += count;
    }
    EXPECT_GE(written, 10u) << "tables that were changed";
    EXPECT_GE(moved, 10u) << "rows that have moved";
    std::cout << written << " tables changed, " << refused << " refused, " << moved << " rows have moved\n";
    for (const auto& [name, count] : faults) std::cout << "  known fault, " << count << " times: " << name << "\n";
}

jet::NewColumn column_named(std::u16string name, jet::ColumnType type) {
    jet::NewColumn column;
    column.name = std::move(name);
    column.type = type;
    column.allow_zero_length = true;
    return column;
}

// Adds `count` rows, and takes every third one of them away again.
void add_and_erase(jet::Table& table, std::uint32_t first, std::uint32_t count) {
    std::vector<jet::RowId> rows;
    for (std::uint32_t i = first; i < first + count; ++i) {
        std::vector<jet::Value> values;
        for (const jet::ColumnDef& column : table.def().columns) values.push_back(value_for(column, i));
        try {
            rows.push_back(table.insert(values));
        } catch (const jet::Error& error) {
            // Some kinds of values come again after 256.
            if (error.number() != jet::errors::kDuplicateKey) throw;
        }
    }
    for (std::size_t i = 0; i < rows.size(); i += 3) table.erase(rows[i]);
}

TEST_F(ChangedSamplesInterop, jet3_files_with_other_columns_and_thousands_of_rows_read_back_equal_everywhere) {
    const std::size_t changed = change_jet3_samples([](jet::Database& database) {
        for (const std::u16string& name : database.table_names()) {
            SCOPED_TRACE(jet::to_utf8(name));
            jet::Transaction transaction(database.pager());
            add_and_erase(*database.find_table(name), 20000, 900);
            database.add_column(name, column_named(u"Added text", jet::ColumnType::kText));
            database.add_column(name, column_named(u"Added memo", jet::ColumnType::kMemo));
            database.add_column(name, column_named(u"Added date", jet::ColumnType::kDate));
            add_and_erase(*database.find_table(name), 21000, 300);
            database.delete_column(name, u"Added date");
            add_and_erase(*database.find_table(name), 22000, 100);
            transaction.commit();
        }
    });
    if (changed == 0) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
}

// Inserts, updates, deletes, added and dropped columns, in any order.
TEST_F(ChangedSamplesInterop, jet3_files_changed_at_random_read_back_equal_everywhere) {
    std::size_t changes = 0;
    const std::size_t changed = change_jet3_samples([&](jet::Database& database) {
        jet::FileChanger changer(database, 97, jet::FileChanger::Texts::kLetters);
        jet::Transaction transaction(database.pager());
        for (int i = 0; i < 3000; ++i) changer.step();
        transaction.commit();
        changer.expect_model(database);
        changes += changer.changes();
        EXPECT_GT(changer.schema_changes(), 20u);
    });
    if (changed == 0) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    EXPECT_GT(changes, 3000u);
    std::cout << changes << " changes of rows\n";
}

TEST_F(ChangedSamplesInterop, indexes_that_grow_over_many_pages_and_shrink_keep_one_entry_for_each_row) {
    const std::string sample = KVDB_SAMPLES "/indexTestV2000.mdb";
    if (!std::filesystem::exists(sample)) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    const std::string path = copy_of(sample);
    auto database = jet::Database::open(path, {});
    const auto before = findings(*database);
    std::size_t indexes = 0;
    for (const std::u16string& name : database->table_names()) {
        SCOPED_TRACE(jet::to_utf8(name));
        jet::Table& table = *database->find_table(name);
        indexes += table.def().real_indexes.size();
        jet::Transaction transaction(database->pager());
        std::vector<jet::RowId> rows;
        for (std::uint32_t i = 0; i < 1500; ++i) {
            std::vector<jet::Value> values;
            // Neither ascending nor descending: entries are inserted between others.
            for (const jet::ColumnDef& column : table.def().columns)
                values.push_back(value_for(column, 1000 + i * 997 % 1511));
            rows.push_back(table.insert(values));
        }
        EXPECT_EQ(findings(*database), before);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (i % 10 != 0) table.erase(rows[i]);
        }
        transaction.commit();
    }
    EXPECT_GE(indexes, 5u);
    EXPECT_EQ(findings(*database), before);
    database->close();
    compare_with_other_readers(path);
}

std::string bytes_of_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Gives a column of the table the sort order of later versions, whose keys this engine does not support.
void set_later_sort_order(jet::Database& database, jet::PageNumber table, std::uint16_t column_number) {
    using namespace jet;
    Transaction transaction(database.pager());
    const MutablePage page = database.pager().modify(table);
    const std::uint32_t indexes = load_u32(page.bytes(), jet4::tdef::kRealIndexes);
    const std::uint16_t columns = load_u16(page.bytes(), jet4::tdef::kColumns);
    for (std::size_t i = 0; i < columns; ++i) {
        const std::size_t record =
            jet4::tdef::kFixedHeader + indexes * jet4::tdef::kIndexStatistics + i * jet4::tdef::kColumnRecord;
        if (load_u16(page.bytes(), record + jet4::tdef::column::kNumber) != column_number) continue;
        store_u8(page.bytes(), record + jet4::tdef::column::kSortVersion, 1);
    }
    transaction.commit();
}

TEST_F(ChangedSamplesInterop, table_with_an_index_of_another_sort_order_is_refused_and_unchanged) {
    const std::string sample = KVDB_SAMPLES "/testV2000.mdb";
    if (!std::filesystem::exists(sample)) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    const std::string path = copy_of(sample);
    auto database = jet::Database::open(path, {});
    std::u16string name;
    for (const OurTable& table : read_with_engine(*database)) {
        if (table.system || table.rows.empty() || !name.empty()) continue;
        for (const jet::RealIndex& index : table.def.real_indexes) {
            const auto position = table.def.column_by_number(index.columns[0].column_number);
            if (!position || table.def.columns[*position].type != jet::ColumnType::kText) continue;
            set_later_sort_order(*database, table.def.page, index.columns[0].column_number);
            name = table.def.name;
            break;
        }
    }
    ASSERT_FALSE(name.empty()) << "no table of the sample has an index on a text";
    database->close();

    database = jet::Database::open(path, {});
    const auto before = read_with_engine(*database);
    database->close();
    const std::string bytes = bytes_of_file(path);
    database = jet::Database::open(path, {});
    jet::Table& table = *database->find_table(name);
    const jet::RowId row = *table.next_row({});
    std::vector<jet::Value> values;
    for (const jet::ColumnDef& column : table.def().columns) values.push_back(value_for(column, 7));
    const jet::ColumnChange change{0, values[0]};
    EXPECT_EQ(error_number([&] { table.insert(values); }), jet::errors::kCannotMaintainIndex);
    EXPECT_EQ(error_number([&] { table.update(row, {&change, 1}); }), jet::errors::kCannotMaintainIndex);
    EXPECT_EQ(error_number([&] { table.erase(row); }), jet::errors::kCannotMaintainIndex);
    database->close();
    EXPECT_TRUE(bytes_of_file(path) == bytes) << "a refused change has changed the file";
    compare_with_other_readers(path, before);
}

}  // namespace
}  // namespace interop

// Random nested transactions against a model: rows, tables and columns that are made, changed and taken back at any
// depth, over a page cache so small that every reading evicts. Rows are found by key, so that the column maps are in
// use throughout.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "jet/sql/row_set.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

using testing_support::FaultFileSystem;
using testing_support::UseFileSystem;

constexpr char kNestedPath[] = "a.mdb";
constexpr std::size_t kCachePages = 8;
constexpr std::size_t kDeepest = 4;
constexpr std::size_t kMostTables = 4;
constexpr std::size_t kMostColumns = 9;
constexpr std::size_t kMostRows = 60;

// A row by the names of its columns; a column that it has no value in is Null.
using NamedValues = std::map<std::u16string, Value>;

struct ModelTable {
    std::vector<NewColumn> columns;            // Id (auto-number), Key (long) and others
    std::map<std::int32_t, NamedValues> rows;  // by Key
};
using Model = std::map<std::u16string, ModelTable>;

class NestedTransactions {
public:
    explicit NestedTransactions(std::uint32_t seed) : use_(files_), random_(seed) {
        Database::create(kNestedPath, {})->close();
        open();
    }

    void run(int steps) {
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE("step " + std::to_string(i) + ", depth " + std::to_string(outer_.size()));
            step();
        }
        while (!outer_.empty() && !testing::Test::HasFailure()) end(random_.below(2) == 0);
        reopen();
    }

private:
    void open() {
        OpenOptions options;
        options.pager.cache_pages = kCachePages;
        options.pager.sync_interval = std::chrono::milliseconds(0);  // pages are clean after each commit
        options.pager.journal_limit_bytes = 1u << 16;
        database_ = Database::open(kNestedPath, options);
    }
    // A number that was given out is stored at the closing, so that it is not given out again.
    void reopen() {
        while (!outer_.empty()) end(false);
        database_->close();
        open();
        compare();
        expect_sound(*database_);
    }

    void step() {
        switch (random_.below(20)) {
            case 0:
            case 1:
            case 2: return begin();
            case 3:
            case 4: return end(true);
            case 5:
            case 6: return end(false);
            case 7: return create_table();
            case 8: return add_column();
            case 9: return delete_column();
            case 10: return take_number();
            case 11: return random_.below(6) == 0 ? reopen() : compare();
            case 12:
            case 13: return change(Change::kErase);
            case 14:
            case 15: return change(Change::kUpdate);
            default: return insert();
        }
    }

    // ---- Transactions

    void begin() {
        if (outer_.size() >= kDeepest) return;
        outer_.push_back(model_);
        database_->pager().begin();
    }
    void end(bool commits) {
        if (outer_.empty()) return;
        if (commits) {
            database_->pager().commit();
        } else {
            database_->pager().rollback();
            model_ = outer_.back();
            // A table that is gone has given out no numbers.
            std::erase_if(last_number_, [&](const auto& last) { return !model_.contains(last.first); });
        }
        outer_.pop_back();
        if (outer_.empty()) {
            EXPECT_LE(database_->pager().page_count(), std::max<std::uint32_t>(page_count_limit_, 1)) << "it grows";
        }
        look_up_some();
    }

    // ---- Schema

    std::u16string fresh_name(char16_t letter) {
        return std::u16string(1, letter) + from_utf8(std::to_string(random_.below(30)));
    }
    void create_table() {
        const std::u16string name = fresh_name(u'T');
        if (model_.size() >= kMostTables || model_.contains(name)) return;
        ModelTable table;
        table.columns = {new_column(u"Id", ColumnType::kLong, true), new_column(u"Key", ColumnType::kLong),
                         new_column(u"Name", ColumnType::kText)};
        database_->create_table(name, table.columns);
        model_[name] = table;
        last_number_[name] = 0;
    }
    ModelTable* some_table(std::u16string& name) {
        if (model_.empty()) return nullptr;
        auto table = model_.begin();
        std::advance(table, random_.below(static_cast<std::uint32_t>(model_.size())));
        name = table->first;
        return &table->second;
    }
    void add_column() {
        std::u16string name;
        ModelTable* const table = some_table(name);
        if (table == nullptr || table->columns.size() >= kMostColumns) return;
        const ColumnType types[] = {ColumnType::kLong, ColumnType::kText, ColumnType::kMemo, ColumnType::kBoolean};
        NewColumn column = new_column(fresh_name(u'C'), types[random_.below(4)]);
        column.compressed = random_.below(2) == 0;
        for (const NewColumn& other : table->columns) {
            if (other.name == column.name) return;
        }
        database_->add_column(name, column);
        table->columns.push_back(column);
        if (column.type != ColumnType::kBoolean) return;
        for (auto& [key, row] : table->rows) row[column.name] = false;
    }
    void delete_column() {
        std::u16string name;
        ModelTable* const table = some_table(name);
        if (table == nullptr || table->columns.size() < 4) return;
        const std::size_t at = 3 + random_.below(static_cast<std::uint32_t>(table->columns.size() - 3));
        const std::u16string column = table->columns[at].name;
        database_->delete_column(name, column);
        table->columns.erase(table->columns.begin() + static_cast<std::ptrdiff_t>(at));
        for (auto& [key, row] : table->rows) row.erase(column);
    }

    // ---- Rows

    Value some_value(ColumnType type) {
        const auto text = [&](std::uint32_t most) {
            return std::u16string(random_.below(most), random_.below(3) == 0 ? u'\u4e01' : u'x');
        };
        switch (type) {
            case ColumnType::kBoolean: return random_.below(2) == 0;
            case ColumnType::kText: return text(250);
            case ColumnType::kMemo: return text(random_.below(4) == 0 ? 9000 : 100);
            default: return static_cast<std::int32_t>(random_.below(1000));
        }
    }
    void insert() {
        std::u16string name;
        ModelTable* const table = some_table(name);
        if (table == nullptr || table->rows.size() >= kMostRows) return;
        const auto key = static_cast<std::int32_t>(random_.below(200));
        if (table->rows.contains(key)) return;
        NamedValues row;
        std::vector<Value> values;
        for (const NewColumn& column : table->columns) {
            Value value;
            if (column.name == u"Key") {
                value = key;
            } else if (!column.autonumber && random_.below(5) != 0) {
                value = some_value(column.type);
            } else if (column.type == ColumnType::kBoolean) {
                value = false;
            }
            values.push_back(value);
            if (!is_null(value)) row[column.name] = value;
        }
        const RowId place = table_of(name).insert(values);
        row[u"Id"] = ++last_number_[name];
        table->rows[key] = row;
        expect_row(name, *table, key, place);
    }
    enum class Change { kErase, kUpdate };
    void change(Change change) {
        std::u16string name;
        ModelTable* const table = some_table(name);
        if (table == nullptr || table->rows.empty()) return;
        auto row = table->rows.begin();
        std::advance(row, random_.below(static_cast<std::uint32_t>(table->rows.size())));
        const RowId place = find(name, row->first);
        if (place.is_null()) return;
        if (change == Change::kErase) {
            table_of(name).erase(place);
            table->rows.erase(row);
            return;
        }
        const std::size_t position = 2 + random_.below(static_cast<std::uint32_t>(table->columns.size() - 2));
        const NewColumn& column = table->columns[position];
        const ColumnChange changed{position, some_value(column.type)};
        table_of(name).update(place, {&changed, 1});
        row->second[column.name] = changed.value;
        expect_row(name, *table, row->first, place);
    }
    // As a row that is begun and not stored takes one.
    void take_number() {
        std::u16string name;
        if (some_table(name) == nullptr) return;
        EXPECT_EQ(table_of(name).take_autonumber(), ++last_number_[name]) << to_utf8(name);
    }

    // ---- What is in the file

    Table& table_of(const std::u16string& name) {
        Table* const table = database_->find_table(name);
        if (table == nullptr) throw std::runtime_error("no table " + to_utf8(name));
        return *table;
    }
    // The row of a key, by the way that statements go.
    RowId find(const std::u16string& name, std::int32_t key) {
        sql::RowSet rows(sql::Query::prepare(
            *database_, u"SELECT * FROM [" + name + u"] WHERE [Key]=" + from_utf8(std::to_string(key))));
        const auto row = rows.first();
        EXPECT_TRUE(row) << to_utf8(name) << " has no row of key " << key;
        EXPECT_FALSE(row && rows.next()) << to_utf8(name) << " has two rows of key " << key;
        return row.value_or(RowId{});
    }
    void expect_row(const std::u16string& name, const ModelTable& table, std::int32_t key, RowId place) {
        const std::vector<Value> values = row_values(table_of(name), place);
        ASSERT_EQ(values.size(), table.columns.size()) << to_utf8(name) << " key " << key;
        const NamedValues& row = table.rows.at(key);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto expected = row.find(table.columns[i].name);
            EXPECT_EQ(text_of(values[i]), text_of(expected == row.end() ? Value() : expected->second))
                << to_utf8(name) << " key " << key << " column " << to_utf8(table.columns[i].name);
        }
    }
    void look_up_some() {
        for (const auto& [name, table] : model_) {
            for (const auto& [key, row] : table.rows) {
                if (random_.below(3) != 0) continue;
                const RowId place = find(name, key);
                if (!place.is_null()) expect_row(name, table, key, place);
            }
            sql::RowSet none(sql::Query::prepare(*database_, u"SELECT * FROM [" + name + u"] WHERE [Key]=-1"));
            EXPECT_FALSE(none.first());
        }
    }
    void compare() {
        std::vector<std::u16string> names = database_->table_names();
        std::sort(names.begin(), names.end());
        std::vector<std::u16string> expected;
        for (const auto& [name, table] : model_) expected.push_back(name);
        ASSERT_EQ(names, expected);
        for (const auto& [name, table] : model_) {
            Table& found = table_of(name);
            EXPECT_EQ(found.def().name, name);
            ASSERT_EQ(found.def().columns.size(), table.columns.size());
            for (std::size_t i = 0; i < table.columns.size(); ++i) {
                EXPECT_EQ(found.def().columns[i].name, table.columns[i].name);
                EXPECT_EQ(found.def().columns[i].type, table.columns[i].type);
            }
            EXPECT_EQ(found.def().row_count, table.rows.size()) << to_utf8(name);
            std::size_t rows = 0;
            for (auto row = found.next_row({}); row; row = found.next_row(*row)) ++rows;
            EXPECT_EQ(rows, table.rows.size()) << to_utf8(name);
            for (const auto& [key, row] : table.rows) expect_row(name, table, key, find(name, key));
        }
        if (outer_.empty()) expect_sound(*database_);
    }

    FaultFileSystem files_;
    UseFileSystem use_;
    Random random_;
    std::unique_ptr<Database> database_;
    Model model_;
    std::vector<Model> outer_;                            // as it was when each open transaction began
    std::map<std::u16string, std::int32_t> last_number_;  // given out, whatever became of it
    // What the most rows of the most tables can take, with room for maps and holes.
    std::uint32_t page_count_limit_ = 1500;
};

TEST(NestedTransactionsTest, random_steps_leave_what_the_model_has) {
    for (std::uint32_t seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        NestedTransactions(seed).run(250);
    }
}

// The steps of each on their own, so that a fault has a name.

class TakenBack : public ::testing::Test {
protected:
    TakenBack() : use_(files_) {
        Database::create(kNestedPath, {})->close();
        open();
        create(u"T");
    }
    void open() {
        OpenOptions options;
        options.pager.cache_pages = kCachePages;
        options.pager.sync_interval = std::chrono::milliseconds(0);
        database_ = Database::open(kNestedPath, options);
    }
    void create(const std::u16string& name) {
        const NewColumn columns[] = {new_column(u"Id", ColumnType::kLong, true), new_column(u"Key", ColumnType::kLong),
                                     new_column(u"Name", ColumnType::kText)};
        database_->create_table(name, columns);
    }
    Table& table(const std::u16string& name = u"T") { return *database_->find_table(name); }
    RowId insert(std::int32_t key, std::size_t length = 200) {
        return table().insert({Null{}, key, std::u16string(length, u'x')});
    }
    std::size_t count(std::int32_t key) {
        sql::RowSet rows(
            sql::Query::prepare(*database_, u"SELECT * FROM [T] WHERE [Key]=" + from_utf8(std::to_string(key))));
        std::size_t count = 0;
        for (auto row = rows.first(); row; row = rows.next()) ++count;
        return count;
    }
    std::size_t count_rows() {
        std::size_t count = 0;
        for (auto row = table().next_row({}); row; row = table().next_row(*row)) ++count;
        return count;
    }

    FaultFileSystem files_;
    UseFileSystem use_;
    std::unique_ptr<Database> database_;
};

TEST_F(TakenBack, inner_changes_taken_back_leave_the_outer_ones_whatever_is_evicted) {
    for (int key = 0; key < 400; ++key) insert(key);
    {
        Transaction outer(database_->pager());
        const RowId mine = insert(1000);
        {
            Transaction inner(database_->pager());
            const ColumnChange change{2, std::u16string(u"inner")};
            table().update(mine, {&change, 1});
        }
        EXPECT_EQ(count_rows(), 401u);  // reads every page of the table through a cache of a few
        EXPECT_EQ(count_rows(), 401u);
        outer.commit();
    }
    EXPECT_EQ(count(1000), 1u);
    database_->close();
    open();
    EXPECT_EQ(count(1000), 1u);
    EXPECT_EQ(count_rows(), 401u);
    expect_sound(*database_);
}

TEST_F(TakenBack, insertions_that_had_extended_the_file_leave_room_for_others) {
    insert(1);
    const std::uint32_t pages = database_->pager().page_count();
    {
        Transaction transaction(database_->pager());
        for (int key = 2; key < 200; ++key) insert(key);
        EXPECT_GT(database_->pager().page_count(), pages);
    }
    EXPECT_EQ(database_->pager().page_count(), pages);
    for (int key = 2; key < 200; ++key) insert(key);
    EXPECT_EQ(count_rows(), 199u);
    expect_sound(*database_);
}

TEST_F(TakenBack, row_whose_erasing_was_taken_back_is_found_by_its_key) {
    const RowId row = insert(7);
    EXPECT_EQ(count(7), 1u);
    {
        Transaction transaction(database_->pager());
        table().erase(row);
        EXPECT_EQ(count(7), 0u);
        insert(8);
        EXPECT_EQ(count(8), 1u);
    }
    EXPECT_EQ(count(7), 1u);
    EXPECT_EQ(count(8), 0u);
}

TEST_F(TakenBack, table_made_in_the_transaction_is_gone_and_its_place_free_for_another) {
    {
        Transaction transaction(database_->pager());
        create(u"Gone");
        for (int i = 0; i < 5; ++i) table(u"Gone").insert({Null{}, 1, std::u16string(u"x")});
    }
    EXPECT_EQ(database_->find_table(u"Gone"), nullptr);
    EXPECT_EQ(database_->table_names(), std::vector<std::u16string>{u"T"});
    create(u"Other");
    EXPECT_EQ(table(u"Other").def().name, u"Other");
    const RowId first = table(u"Other").insert({Null{}, 1, std::u16string(u"x")});
    EXPECT_EQ(row_values(table(u"Other"), first)[0], Value(std::int32_t{1}));
    expect_sound(*database_);
}

TEST_F(TakenBack, field_made_in_the_transaction_is_gone_and_can_be_made_again) {
    const RowId row = insert(1);
    for (int i = 0; i < 2; ++i) {
        {
            Transaction transaction(database_->pager());
            database_->add_column(u"T", new_column(u"Extra", ColumnType::kLong));
            const ColumnChange change{3, std::int32_t{5}};
            table().update(row, {&change, 1});
        }
        EXPECT_EQ(table().def().columns.size(), 3u);
        EXPECT_EQ(row_values(table(), row).size(), 3u);
        EXPECT_THROW(table().update(row, std::vector{ColumnChange{3, std::int32_t{5}}}), std::exception);
    }
    database_->add_column(u"T", new_column(u"Extra", ColumnType::kText));
    EXPECT_EQ(row_values(table(), row)[3], Value());
    expect_sound(*database_);
}

TEST_F(TakenBack, auto_number_deleted_in_the_transaction_goes_on_counting) {
    for (int key = 0; key < 3; ++key) insert(key);
    {
        Transaction transaction(database_->pager());
        database_->delete_column(u"T", u"Id");
        EXPECT_EQ(table().def().columns.size(), 2u);
    }
    EXPECT_EQ(row_values(table(), insert(9))[0], Value(std::int32_t{4}));
}

TEST_F(TakenBack, number_taken_in_the_transaction_is_not_given_out_after_the_closing) {
    insert(1);
    {
        Transaction transaction(database_->pager());
        insert(2);
        EXPECT_EQ(table().take_autonumber(), 3);
    }
    database_->close();  // nobody has looked at the table since
    open();
    EXPECT_EQ(table().take_autonumber(), 4);
    EXPECT_EQ(table().def().row_count, 1u);
    expect_sound(*database_);
}

}  // namespace
}  // namespace jet

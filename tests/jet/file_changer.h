// Random changes of a file's rows and columns, and what its tables must hold after them.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "jet/base/code_page.h"
#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tests/jet/engine_fixture.h"

namespace jet {

using Rows = std::map<RowId, std::vector<Value>>;

inline std::multiset<std::string> findings_of(Database& database) {
    std::multiset<std::string> found;
    for (const Violation& violation : check_structure(database)) found.insert(violation.rule + ": " + violation.detail);
    return found;
}

inline Rows rows_of(const Table& table) {
    Rows rows;
    for (auto id = table.next_row({}); id; id = table.next_row(*id)) rows[*id] = row_values(table, *id);
    return rows;
}

// Changes a file at random and remembers what its tables must hold.
class FileChanger {
public:
    enum class Texts {
        kWholeCodePage,
        kLetters,  // characters that every reader and its output take as they are
    };

    FileChanger(Database& database, unsigned seed, Texts texts = Texts::kWholeCodePage)
        : database_(database), random_(seed), texts_(texts) {
        for (const std::u16string& name : database.table_names()) model_[name] = rows_of(*database.find_table(name));
    }

    void step() {
        auto table = model_.begin();
        std::advance(table, pick(model_.size()));
        const std::size_t kind = pick(20);
        if (kind == 0) return add_column(table->first);
        if (kind == 1) return drop_column(table->first);
        if (kind < 12) return insert(table->first, table->second);
        if (table->second.empty()) return;
        auto row = table->second.begin();
        std::advance(row, pick(table->second.size()));
        kind < 16 ? update(table->first, *row) : erase(table->first, table->second, row->first);
    }

    void expect_model(Database& database) const {
        for (const auto& [name, rows] : model_) {
            const Table* table = database.find_table(name);
            ASSERT_NE(table, nullptr) << to_utf8(name);
            const Rows found = rows_of(*table);
            ASSERT_EQ(found.size(), rows.size()) << to_utf8(name);
            for (const auto& [id, values] : rows) {
                const auto at = found.find(id);
                ASSERT_NE(at, found.end()) << to_utf8(name) << " " << id.page << "," << int{id.slot};
                for (std::size_t i = 0; i < values.size(); ++i) {
                    EXPECT_EQ(at->second.at(i), values[i]) << to_utf8(name) << " " << i;
                }
            }
        }
    }

    std::size_t changes() const { return changes_; }
    std::size_t schema_changes() const { return schema_changes_; }

private:
    std::size_t pick(std::size_t below) { return static_cast<std::size_t>(random_() % below); }

    std::u16string text(std::size_t most) {
        static constexpr std::u16string_view kLetters = u"abcxyzABCXYZ0189\u00E4\u00F6\u00FC\u00DF\u00C9\u00E6\u00F1";
        std::u16string made(pick(most + 1), u' ');
        if (texts_ == Texts::kLetters) {
            for (char16_t& c : made) c = kLetters[pick(kLetters.size())];
            return made;
        }
        for (char16_t& c : made) {
            const std::size_t byte = 33 + pick(223);
            c = byte < 0x80 ? static_cast<char16_t>(byte) : kCodePages[0].upper[byte - 0x80];
        }
        return made;
    }

    Value value_for(const ColumnDef& column) {
        if (!column.required && column.type != ColumnType::kBoolean && pick(8) == 0) return Null{};
        switch (column.type) {
            case ColumnType::kBoolean: return pick(2) == 0;
            case ColumnType::kByte: return static_cast<std::uint8_t>(pick(256));
            case ColumnType::kInteger: return static_cast<std::int16_t>(pick(65536));
            case ColumnType::kLong: return static_cast<std::int32_t>(random_());
            case ColumnType::kCurrency: return Currency{static_cast<std::int64_t>(random_()) * 12345};
            case ColumnType::kSingle: return static_cast<float>(pick(1000000)) / 8;
            case ColumnType::kDouble: return static_cast<double>(random_()) / 16;
            case ColumnType::kDate: return Date{25569.0 + static_cast<double>(pick(20000))};
            case ColumnType::kText: {
                std::u16string made =
                    text(pick(5) == 0 ? column.most_characters() : std::min<std::size_t>(20, column.most_characters()));
                if (made.empty()) made = u"x";
                if (column.is_fixed()) made.resize(column.most_characters(), u' ');
                return made;
            }
            case ColumnType::kMemo: return u"m" + text(pick(4) == 0 ? 9000 : pick(3) == 0 ? 2500 : 60);
            case ColumnType::kOle: {
                ByteVector bytes(1 + pick(pick(3) == 0 ? 7000 : 50));
                for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random_());
                return bytes;
            }
            case ColumnType::kBinary: {
                ByteVector bytes(column.is_fixed() ? column.length_bytes : 1 + pick(column.length_bytes));
                for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random_());
                return bytes;
            }
            case ColumnType::kGuid: {
                Guid guid;
                for (std::uint8_t& byte : guid.bytes) byte = static_cast<std::uint8_t>(random_());
                return guid;
            }
            default: return Null{};
        }
    }

    // A row that an index does not take, or that is too long, is not there afterwards either.
    static bool is_refusal(const Error& error) {
        return error.number() == errors::kDuplicateKey || error.number() == errors::kNullNotAllowed ||
               error.number() == errors::kRowTooLarge || error.number() == errors::kCannotMaintainIndex;
    }

    void insert(const std::u16string& name, Rows& rows) {
        Table& table = *database_.find_table(name);
        std::vector<Value> values;
        for (const ColumnDef& column : table.def().columns) {
            values.push_back(column.is_autonumber() && column.type == ColumnType::kLong ? Value{Null{}}
                                                                                        : value_for(column));
        }
        try {
            const RowId id = table.insert(values);
            const std::vector<Value> stored = row_values(table, id);
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (!table.def().columns[i].is_autonumber()) {
                    EXPECT_EQ(stored[i], values[i]) << to_utf8(table.def().columns[i].name);
                }
            }
            rows[id] = stored;
            ++changes_;
        } catch (const Error& error) {
            if (!is_refusal(error)) throw;
        }
    }

    void update(const std::u16string& name, std::pair<const RowId, std::vector<Value>>& row) {
        Table& table = *database_.find_table(name);
        std::vector<ColumnChange> changes;
        for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
            if (table.def().columns[i].is_autonumber() || pick(3) != 0) continue;
            changes.push_back({i, value_for(table.def().columns[i])});
        }
        if (changes.empty()) return;
        try {
            table.update(row.first, changes);
            for (const ColumnChange& change : changes) row.second[change.position] = change.value;
            ++changes_;
        } catch (const Error& error) {
            if (!is_refusal(error)) throw;
        }
    }

    void erase(const std::u16string& name, Rows& rows, RowId row) {
        database_.find_table(name)->erase(row);
        rows.erase(row);
        ++changes_;
    }

    void add_column(const std::u16string& name) {
        static constexpr ColumnType kTypes[] = {ColumnType::kLong, ColumnType::kText,    ColumnType::kMemo,
                                                ColumnType::kDate, ColumnType::kBoolean, ColumnType::kOle,
                                                ColumnType::kByte, ColumnType::kCurrency};
        if (database_.find_table(name)->def().columns.size() > 40) return;
        const std::string label = "Added " + std::to_string(++added_);
        NewColumn column = new_column(from_utf8(label), kTypes[pick(std::size(kTypes))]);
        if (column.type == ColumnType::kText) column.text_characters = static_cast<std::uint16_t>(1 + pick(40));
        try {
            database_.add_column(name, column);
        } catch (const Error& error) {
            if (!is_refusal(error)) throw;
            return;
        }
        const Table& table = *database_.find_table(name);
        for (auto& [id, values] : model_[name]) values = row_values(table, id);
        for (auto& [id, values] : model_[name]) {
            EXPECT_TRUE(column.type == ColumnType::kBoolean || is_null(values.back()));
        }
        ++schema_changes_;
    }

    void drop_column(const std::u16string& name) {
        const Table& table = *database_.find_table(name);
        const std::size_t position = pick(table.def().columns.size());
        const ColumnDef column = table.def().columns[position];
        if (table.def().columns.size() < 3 || column.is_autonumber()) return;
        try {
            database_.delete_column(name, column.name);
        } catch (const Error& error) {
            if (error.number() != errors::kFieldIndexed) throw;
            return;
        }
        for (auto& [id, values] : model_[name]) values.erase(values.begin() + static_cast<std::ptrdiff_t>(position));
        ++schema_changes_;
    }

    Database& database_;
    std::mt19937 random_;
    Texts texts_;
    std::map<std::u16string, Rows> model_;
    std::size_t changes_ = 0;
    std::size_t schema_changes_ = 0;
    int added_ = 0;
};

}  // namespace jet

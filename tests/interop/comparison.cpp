#include "tests/interop/comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "jet/storage/data_page.h"
#include "tests/interop/agreement.h"

namespace interop {

namespace {

bool is_moved(jet::Database& database, jet::RowId row) {
    const jet::Page page = database.pager().read(row.page);
    return jet::DataPage(page.bytes(), row.page).slot(row.slot).is_moved();
}

struct Verdict {
    bool same = false;
    const char* fault = nullptr;  // explains the difference
};

Sample sample_of(const OurTable& table, const OurRow& row, std::size_t position) {
    return {table.def.columns[position], row.values[position]};
}

Verdict judge(Reader reader, const Sample& sample, const Field& field) {
    if (agrees(reader, sample, field)) return {true, nullptr};
    return {false, known_fault(reader, sample, field)};
}

// Positions of our columns in the foreign row; columns that the reader lacks are not compared.
std::vector<std::size_t> column_positions(const OurTable& ours, const ForeignTable& theirs, const std::string& where) {
    std::vector<std::size_t> positions;
    for (const jet::ColumnDef& column : ours.def.columns) {
        const auto position = theirs.find_column(jet::to_utf8(column.name));
        EXPECT_TRUE(position) << where << " has no column " << jet::to_utf8(column.name);
        positions.push_back(position.value_or(theirs.columns.size()));
    }
    EXPECT_EQ(theirs.columns.size(), ours.def.columns.size()) << where;
    return positions;
}

bool row_matches(Reader reader, const OurTable& ours, const OurRow& row, const std::vector<Field>& fields,
                 const std::vector<std::size_t>& positions) {
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (positions[i] >= fields.size()) return false;
        const Verdict verdict = judge(reader, sample_of(ours, row, i), fields[positions[i]]);
        if (!verdict.same && !verdict.fault) return false;
    }
    return true;
}

std::string row_difference(Reader reader, const OurTable& ours, const OurRow& row, const std::vector<Field>& fields,
                           const std::vector<std::size_t>& positions) {
    std::string text;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (positions[i] >= fields.size()) continue;
        const Field& field = fields[positions[i]];
        const Verdict verdict = judge(reader, sample_of(ours, row, i), field);
        if (verdict.same || verdict.fault) continue;
        text += "\n  " + jet::to_utf8(ours.def.columns[i].name) + ": we read " + describe(row.values[i]) +
                ", it reads " +
                (field ? "'" + field->substr(0, 120) + "' (" + std::to_string(field->size()) + " bytes)" : "Null");
    }
    return text;
}

// For each of our rows the reader's row with the same values, or none. Both list moved rows at their current place, so
// the search starts after the last match and then covers all rows.
std::vector<const std::vector<Field>*> pair_rows(Reader reader, const OurTable& ours, const ForeignTable& theirs,
                                                 const std::vector<std::size_t>& positions, const std::string& where) {
    std::vector<const std::vector<Field>*> pairs(ours.rows.size(), nullptr);
    std::vector<bool> taken(theirs.rows.size());
    std::size_t next = 0;
    for (std::size_t i = 0; i < ours.rows.size(); ++i) {
        for (std::size_t step = 0; step < theirs.rows.size(); ++step) {
            const std::size_t at = (next + step) % theirs.rows.size();
            if (taken[at] || !row_matches(reader, ours, ours.rows[i], theirs.rows[at], positions)) continue;
            taken[at] = true;
            pairs[i] = &theirs.rows[at];
            next = at + 1;
            break;
        }
        if (!pairs[i]) {
            const jet::RowId id = ours.rows[i].id;
            ADD_FAILURE() << where << " has no row like ours at page " << id.page << ", slot " << int{id.slot}
                          << (i < theirs.rows.size()
                                  ? "; the row at its place differs in" +
                                        row_difference(reader, ours, ours.rows[i], theirs.rows[i], positions)
                                  : "");
            return pairs;
        }
    }
    EXPECT_EQ(theirs.rows.size(), ours.rows.size()) << where;
    return pairs;
}

class TableComparison {
public:
    TableComparison(const OurTable& ours, Comparison& result) : ours_(ours), result_(result) {}

    void run(const std::string& path, const ForeignFile& reader_file) {
        const std::string name = jet::to_utf8(ours_.def.name);
        const auto exported = read_with_mdbtools(path, name);
        const ForeignTable* read = reader_file.find_table(name);
        ASSERT_TRUE(exported) << "mdb-export does not read table " << name;
        ASSERT_TRUE(read) << "mdb-reader does not list table " << name;
        const bool refusable =
            std::any_of(ours_.def.columns.begin(), ours_.def.columns.end(),
                        [](const jet::ColumnDef& column) { return column.type == jet::ColumnType::kFixedBinary; });
        if (refusable) {
            // mdb-reader reads nothing of a table with a column of type 0x11.
            EXPECT_NE(read->refusal, "") << name;
            ++result_.faults["mdb-reader: a table with a column of type 0x11 is refused"];
            read = nullptr;
        } else {
            EXPECT_EQ(read->refusal, "") << "mdb-reader refuses table " << name;
        }

        expect_column_order(*exported, "mdb-export, table " + name);
        const auto export_rows = pair(Reader::kMdbExport, *exported, "mdb-export, table " + name);
        std::vector<const std::vector<Field>*> reader_rows;
        if (read) {
            expect_column_order(*read, "mdb-reader, table " + name);
            reader_rows = pair(Reader::kMdbReader, *read, "mdb-reader, table " + name);
        }
        // Rows without a counterpart have been reported.
        if (std::count(export_rows.begin(), export_rows.end(), nullptr) != 0) return;
        if (std::count(reader_rows.begin(), reader_rows.end(), nullptr) != 0) return;
        judge_values(*exported, export_rows, read, reader_rows);
    }

private:
    std::vector<const std::vector<Field>*> pair(Reader reader, const ForeignTable& theirs, const std::string& where) {
        return pair_rows(reader, ours_, theirs, column_positions(ours_, theirs, where), where);
    }

    void expect_column_order(const ForeignTable& theirs, const std::string& where) {
        std::vector<std::string> our_names, their_names;
        for (const jet::ColumnDef& column : ours_.def.columns) our_names.push_back(jet::to_utf8(column.name));
        for (const ForeignColumn& column : theirs.columns) their_names.push_back(column.name);
        EXPECT_EQ(their_names, our_names) << where;
    }

    void judge_values(const ForeignTable& exported, const std::vector<const std::vector<Field>*>& export_rows,
                      const ForeignTable* read, const std::vector<const std::vector<Field>*>& reader_rows) {
        for (std::size_t i = 0; i < ours_.rows.size(); ++i) {
            for (std::size_t c = 0; c < ours_.def.columns.size(); ++c) {
                const jet::ColumnDef& column = ours_.def.columns[c];
                const Sample sample = sample_of(ours_, ours_.rows[i], c);
                const std::string name = jet::to_utf8(column.name);
                bool confirmed = note(
                    "mdb-export: ", judge(Reader::kMdbExport, sample, (*export_rows[i])[*exported.find_column(name)]));
                if (read) {
                    confirmed |= note("mdb-reader: ",
                                      judge(Reader::kMdbReader, sample, (*reader_rows[i])[*read->find_column(name)]));
                }
                EXPECT_TRUE(confirmed || is_unreadable(sample))
                    << "neither reader has our value of " << jet::to_utf8(ours_.def.name) << "." << name << ": "
                    << describe(sample.value);
                ++result_.values;
            }
            ++result_.rows;
        }
        ++result_.tables;
    }

    // True when the reader has our value.
    bool note(const std::string& reader, const Verdict& verdict) {
        if (verdict.fault) ++result_.faults[reader + verdict.fault];
        return verdict.same;
    }

    const OurTable& ours_;
    Comparison& result_;
};

std::string schema_type(const jet::ColumnDef& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean: return "Boolean";
        case jet::ColumnType::kByte: return "Byte";
        case jet::ColumnType::kInteger: return "Integer";
        case jet::ColumnType::kLong: return "Long Integer";
        case jet::ColumnType::kCurrency: return "Currency";
        case jet::ColumnType::kSingle: return "Single";
        case jet::ColumnType::kDouble: return "Double";
        case jet::ColumnType::kDate: return "DateTime";
        case jet::ColumnType::kText: return "Text (" + std::to_string(column.most_characters()) + ")";
        // It prints the size of every long value like this, in files of Access as well.
        case jet::ColumnType::kOle: return "OLE (255)";
        case jet::ColumnType::kMemo: return "Memo/Hyperlink (255)";
        default: return "a type that we do not create";
    }
}

std::string reader_type(const jet::ColumnDef& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean: return "boolean";
        case jet::ColumnType::kByte: return "byte";
        case jet::ColumnType::kInteger: return "integer";
        case jet::ColumnType::kLong: return "long";
        case jet::ColumnType::kCurrency: return "currency";
        case jet::ColumnType::kSingle: return "float";
        case jet::ColumnType::kDouble: return "double";
        case jet::ColumnType::kDate: return "datetime";
        case jet::ColumnType::kText: return "text";
        case jet::ColumnType::kOle: return "ole";
        case jet::ColumnType::kMemo: return "memo";
        default: return "a type that we do not create";
    }
}

bool is_text(const jet::ColumnDef& column) {
    return column.type == jet::ColumnType::kText || column.type == jet::ColumnType::kMemo;
}

void compare_columns(const std::string& path, const OurTable& ours, const std::vector<ForeignColumn>& schema,
                     const ForeignTable& read) {
    const std::string table = jet::to_utf8(ours.def.name);
    // For a table without properties, as one without texts, mdb-prop reads its own uninitialised memory.
    const bool has_text = std::any_of(ours.def.columns.begin(), ours.def.columns.end(), is_text);
    const auto zero_length = has_text ? mdbtools_zero_length(path, table) : std::map<std::string, bool>();
    ASSERT_EQ(schema.size(), ours.def.columns.size()) << "mdb-schema, table " << table;
    ASSERT_EQ(read.columns.size(), ours.def.columns.size()) << "mdb-reader, table " << table;
    for (std::size_t i = 0; i < schema.size(); ++i) {
        const jet::ColumnDef& column = ours.def.columns[i];
        const std::string name = jet::to_utf8(column.name);
        EXPECT_EQ(schema[i].name, name) << "mdb-schema, table " << table;
        EXPECT_EQ(schema[i].type, schema_type(column)) << "mdb-schema, table " << table << ", column " << name;
        EXPECT_EQ(read.columns[i].name, name) << "mdb-reader, table " << table;
        EXPECT_EQ(read.columns[i].type, reader_type(column)) << "mdb-reader, table " << table << ", column " << name;
        EXPECT_EQ(read.columns[i].size, column.type == jet::ColumnType::kBoolean ? 0u : column.length_bytes)
            << "mdb-reader, table " << table << ", column " << name;
        EXPECT_EQ(read.columns[i].autonumber, column.is_autonumber())
            << "mdb-reader, table " << table << ", column " << name;
        if (!is_text(column)) continue;
        const auto allowed = zero_length.find(name);
        ASSERT_TRUE(allowed != zero_length.end()) << "mdb-prop, table " << table << ", column " << name;
        EXPECT_EQ(allowed->second, column.allow_zero_length) << "mdb-prop, table " << table << ", column " << name;
    }
}

}  // namespace

std::vector<OurTable> read_with_engine(jet::Database& database) {
    std::vector<OurTable> tables;
    for (const jet::CatalogEntry& entry : database.catalog()) {
        if (entry.type != 1) continue;
        jet::Table* table = database.table_by_page(static_cast<jet::PageNumber>(entry.id));
        EXPECT_TRUE(table) << jet::to_utf8(entry.name);
        if (!table) continue;
        OurTable ours;
        ours.def = table->def();
        ours.def.name = entry.name;
        ours.system = entry.is_system();
        jet::RowView view;
        for (auto id = table->next_row({}); id; id = table->next_row(*id)) {
            EXPECT_TRUE(table->read(*id, view));
            OurRow row;
            row.id = *id;
            row.moved = is_moved(database, *id);
            for (std::size_t i = 0; i < ours.def.columns.size(); ++i) row.values.push_back(view.value(i));
            ours.rows.push_back(std::move(row));
        }
        tables.push_back(std::move(ours));
    }
    return tables;
}

Comparison compare_with_other_readers(const std::string& path, const std::vector<OurTable>& tables) {
    Comparison result;
    const auto reader_file = read_with_mdb_reader(path);
    EXPECT_TRUE(reader_file) << "mdb-reader does not read " << path;
    if (!reader_file) return result;

    const bool is_jet3 = !tables.empty() && tables.front().def.format->is_jet3();
    EXPECT_EQ(mdbtools_version_of(path), is_jet3 ? "JET3" : "JET4");
    std::multiset<std::string> ours, exported, read;
    for (const OurTable& table : tables) {
        if (!table.system) ours.insert(jet::to_utf8(table.def.name));
    }
    for (const std::string& name : mdbtools_table_names(path)) exported.insert(name);
    for (const ForeignTable& table : reader_file->tables) {
        if (!table.system) read.insert(table.name);
    }
    EXPECT_EQ(exported, ours) << "user tables as mdb-tables lists them";
    EXPECT_EQ(read, ours) << "user tables as mdb-reader lists them";
    EXPECT_EQ(reader_file->tables.size(), tables.size()) << "tables as mdb-reader lists them";
    for (const OurTable& table : tables) TableComparison(table, result).run(path, *reader_file);
    return result;
}

void compare_definitions(const std::string& path, const std::vector<OurTable>& tables) {
    const auto reader_file = read_with_mdb_reader(path);
    ASSERT_TRUE(reader_file) << "mdb-reader does not read " << path;
    const auto schema = mdbtools_schema(path);
    for (const OurTable& ours : tables) {
        const std::string name = jet::to_utf8(ours.def.name);
        const ForeignTable* read = reader_file->find_table(name);
        ASSERT_TRUE(read) << "mdb-reader does not list table " << name;
        EXPECT_EQ(read->row_count, ours.rows.size()) << name;
        EXPECT_EQ(ours.def.row_count, ours.rows.size()) << name;
        if (ours.system) continue;
        const auto columns = schema.find(name);
        ASSERT_TRUE(columns != schema.end()) << "mdb-schema has no table " << name;
        compare_columns(path, ours, columns->second, *read);
    }
}

Comparison compare_with_other_readers(const std::string& path) {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    const auto database = jet::Database::open(path, options);
    const auto tables = read_with_engine(*database);
    database->close();
    return compare_with_other_readers(path, tables);
}

}  // namespace interop

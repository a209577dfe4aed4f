// schema: the columns and indexes of a file's tables.
#include <functional>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/open_file.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    std::string table;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.optional_word("TABLE", options.table, "that table alone");
    declare.format(options.format);
    declare.password(options.password);
}

std::string type_text(const jet::ColumnDef& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean: return "boolean";
        case jet::ColumnType::kByte: return "byte";
        case jet::ColumnType::kInteger: return "integer";
        case jet::ColumnType::kLong: return column.is_autonumber() ? "long auto-number" : "long";
        case jet::ColumnType::kCurrency: return "currency";
        case jet::ColumnType::kSingle: return "single";
        case jet::ColumnType::kDouble: return "double";
        case jet::ColumnType::kDate: return "date";
        case jet::ColumnType::kBinary: return "binary(" + std::to_string(column.length_bytes) + ")";
        case jet::ColumnType::kText: return "text(" + std::to_string(column.most_characters()) + ")";
        case jet::ColumnType::kOle: return "ole";
        case jet::ColumnType::kMemo: return "memo";
        case jet::ColumnType::kGuid: return "guid";
        case jet::ColumnType::kNumeric:
            return "numeric(" + std::to_string(column.precision) + "," + std::to_string(column.scale) + ")";
        case jet::ColumnType::kFixedBinary: return "fixed binary(" + std::to_string(column.length_bytes) + ")";
        case jet::ColumnType::kComplexId: return "complex";
    }
    return "type " + std::to_string(static_cast<int>(column.type));
}

void print_schema(const jet::TableDef& def) {
    output().print("%s (%u rows)\n", jet::to_utf8(def.name).c_str(), def.row_count);
    for (const jet::ColumnDef& column : def.columns) {
        std::string notes;
        const bool is_text = column.type == jet::ColumnType::kText || column.type == jet::ColumnType::kMemo;
        if (is_text && !column.allow_zero_length) notes += ", no zero length";
        if (column.required) notes += ", required";
        output().print("  %-24s %s%s\n", jet::to_utf8(column.name).c_str(), type_text(column).c_str(), notes.c_str());
    }
    for (const jet::LogicalIndex& index : def.logical_indexes) {
        output().print("  index %s%s:", jet::to_utf8(index.name).c_str(), index.type == 1 ? " (primary key)" : "");
        if (index.real_index < def.real_indexes.size()) {
            for (const jet::KeyColumn& key : def.real_indexes[index.real_index].columns) {
                const auto position = def.column_by_number(key.column_number);
                output().print(" %s%s", position ? jet::to_utf8(def.columns[*position].name).c_str() : "?",
                               key.ascending ? "" : " desc");
            }
        }
        output().print("\n");
    }
}

// A row for each column.
void print_columns(const jet::TableDef& def, const std::string& file, const RowVisitor& print) {
    std::int32_t position = 0;
    for (const jet::ColumnDef& column : def.columns) {
        print({jet::from_utf8(file), def.name, ++position, column.name, jet::from_utf8(type_text(column)),
               column.required, column.allow_zero_length});
    }
}

// The one that is asked for, or all that can be read.
void each_table(const Options& options, const std::function<void(const jet::Table&)>& visit) {
    if (!options.table.empty()) return visit(FoundTable(options.file, options.table, options.password).table());
    for (const OpenedFile& file : open_all_to_look(options.file, options.password)) {
        for (const jet::Table* const table : readable_tables(file)) visit(*table);
    }
}

int run(const Options& options) {
    if (options.format.format() == RowFormat::kPlain) {
        each_table(options, [](const jet::Table& table) { print_schema(table.def()); });
    } else {
        RowPrinter printer(options.format.format(),
                           {"File", "Table", "Position", "Column", "Type", "Required", "AllowsEmptyText"});
        print_rows(printer, [&](const RowVisitor& print) {
            each_table(options, [&](const jet::Table& table) {
                print_columns(table.def(), table.storage().pager().path(), print);
            });
        });
    }
    require_undamaged();
    return 0;
}

}  // namespace

const Command kSchemaCommand{"schema", kLookGroup,
                             "Print the columns and indexes of a Jet file's tables, or of one table.",
                             declared<Options, bind, run>};

}  // namespace tools

// Commands that look at one file with the engine alone: tables, schema, rows, check.
#include <memory>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/row_printer.h"

namespace tools {
namespace {

std::unique_ptr<jet::Database> open(const std::string& path, const Arguments& arguments,
                                    jet::DamageListener on_damage = {}) {
    jet::OpenOptions options;
    options.password = jet::from_utf8(arguments.value("--password").value_or(""));
    options.on_damage = std::move(on_damage);
    return open_to_read(path, options);
}

jet::Table& find_table(jet::Database& database, const std::string& name) {
    jet::Table* table = database.find_table(jet::from_utf8(name));
    if (!table) throw CommandError("there is no table '" + name + "' in " + database.path());
    return *table;
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
        case jet::ColumnType::kText: return "text(" + std::to_string(column.length_bytes / 2) + ")";
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

}  // namespace

int run_tables(const Words& words) {
    const Arguments arguments(words, {"--system"}, {"--password"});
    const auto database = open(arguments.expect(1, 1, "tables FILE [--system] [--password TEXT]")[0], arguments);
    for (const jet::CatalogEntry& entry : database->catalog()) {
        if (entry.is_system() && !arguments.has("--system")) continue;
        if (entry.type == 1) output().print("%s\n", jet::to_utf8(entry.name).c_str());
    }
    return 0;
}

int run_schema(const Words& words) {
    const Arguments arguments(words, {}, {"--password"});
    const auto& positional = arguments.expect(1, 2, "schema FILE [TABLE] [--password TEXT]");
    const auto database = open(positional[0], arguments);
    if (positional.size() == 2) {
        print_schema(find_table(*database, positional[1]).def());
        return 0;
    }
    for (const std::u16string& name : database->table_names()) {
        if (const jet::Table* table = database->find_table(name)) print_schema(table->def());
    }
    return 0;
}

int run_rows(const Words& words) {
    const Arguments arguments(words, {"--json", "--csv"}, {"--password"});
    const auto& positional = arguments.expect(2, 2, "rows FILE TABLE [--json|--csv] [--password TEXT]");
    const RowFormat format = row_format(arguments);
    const auto database = open(positional[0], arguments, damage_teller(positional[0]));
    const jet::Table& table = find_table(*database, positional[1]);
    Names names;
    for (const jet::ColumnDef& column : table.def().columns) names.push_back(jet::to_utf8(column.name));
    RowPrinter printer(format, names);
    jet::RowView view;
    for (auto id = table.next_row({}); id && !output().is_lost(); id = table.next_row(*id)) {
        if (!table.read(*id, view)) continue;
        Row row;
        for (std::size_t i = 0; i < names.size(); ++i) row.push_back(view.value(i));
        printer.print(row);
    }
    printer.finish();
    require_undamaged();
    return 0;
}

int run_check(const Words& words) {
    const Arguments arguments(words, {}, {"--password"});
    const auto& positional = arguments.expect(1, 1, "check FILE [--password TEXT]");
    const auto database = open(positional[0], arguments);
    const std::vector<jet::Violation> violations = jet::check_structure(*database);
    for (const jet::Violation& violation : violations) {
        const std::string row = violation.row < 0 ? "" : ", row " + std::to_string(violation.row);
        output().print("page %u%s: %s: %s\n", violation.page, row.c_str(), violation.rule.c_str(),
                       violation.detail.c_str());
    }
    output().print("%s: %zu violation%s\n", positional[0].c_str(), violations.size(),
                   violations.size() == 1 ? "" : "s");
    return violations.empty() ? 0 : 1;
}

}  // namespace tools

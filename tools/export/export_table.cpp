#include "tools/export/export_table.h"

#include <algorithm>
#include <bitset>
#include <map>
#include <memory>

#include "tools/errors.h"
#include "tools/names.h"
#include "tools/paths.h"

namespace tools {
namespace {

// Numbers that were seen, a bit for each.
class SeenNumbers {
public:
    // False when the number was there.
    bool add(std::int32_t number) {
        const auto unsigned_number = static_cast<std::uint32_t>(number);
        auto& bits = parts_[unsigned_number >> 16];
        if (bits == nullptr) bits = std::make_unique<std::bitset<1 << 16>>();
        const std::size_t bit = unsigned_number & 0xFFFF;
        if (bits->test(bit)) return false;
        bits->set(bit);
        return true;
    }

private:
    std::map<std::uint32_t, std::unique_ptr<std::bitset<1 << 16>>> parts_;
};

bool is_key(const jet::Table& table, std::size_t position) {
    SeenNumbers seen;
    jet::RowView row;
    for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
        if (!table.read(*id, row)) continue;
        const jet::Value value = row.value(position);
        const auto* const number = std::get_if<std::int32_t>(&value);
        if (number == nullptr || !seen.add(*number)) return false;
    }
    return true;
}

// By the name alone: a file says nothing of what belongs to what.
bool leads_to_another_table(const ExportColumn& column) {
    const std::string& name = column.name;
    return column.type == jet::ColumnType::kLong && !column.is_autonumber && name.size() > 2 &&
           name.compare(name.size() - 2, 2, "ID") == 0;
}

bool has(const Names& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& other) { return is_same_name(other, name); });
}

// A table's name may hold what leads out of a folder, or what Windows takes in no name.
std::string safe_file_name(const std::string& table, const Names& used) {
    std::string name = table;
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < 0x20 || std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos)
            c = '_';
    }
    if (name.front() == '.') name.front() = '_';
    while (has(used, name)) name += "_";
    return name;
}

}  // namespace

ExportTable::ExportTable(const jet::Table& from, std::string table_name, std::string source)
    : table(&from), name(std::move(table_name)), file(std::move(source)) {
    const jet::TableDef& def = from.def();
    last_autonumber = def.last_autonumber;
    rows = def.row_count;
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const jet::ColumnDef& column = def.columns[i];
        ExportColumn& own = columns.emplace_back();
        own.name = jet::to_utf8(column.name);
        own.type = column.type;
        own.length_characters = static_cast<std::uint16_t>(column.most_characters());
        own.precision = column.precision;
        own.scale = column.scale;
        own.is_autonumber = column.is_autonumber() && column.type == jet::ColumnType::kLong;
        own.is_parent = leads_to_another_table(own);
        if (own.is_autonumber && !key && is_key(from, i)) key = i;
    }
}

std::vector<ExportTable> export_tables(const std::vector<OpenedFile>& files, const std::vector<std::string>& wanted) {
    std::vector<ExportTable> tables;
    Names all;
    Names file_names;
    for (const OpenedFile& file : files) {
        const std::string stem = path_text(system_path(file.path).stem());
        for (const std::u16string& wide_name : file.database->table_names()) {
            const std::string own_name = jet::to_utf8(wide_name);
            const std::string name = has(all, own_name) ? stem + "_" + own_name : own_name;
            all.push_back(name);
            if (!wanted.empty() && !has(wanted, name)) continue;
            const jet::Table* const table = look_at_table(file, wide_name).table;
            if (table == nullptr) continue;
            tables.emplace_back(*table, name, file_name_of(file.path));
            tables.back().file_name = safe_file_name(name, file_names);
            file_names.push_back(tables.back().file_name);
        }
    }
    for (const std::string& name : wanted) {
        if (std::none_of(all.begin(), all.end(), [&](const std::string& own) { return is_same_name(own, name); })) {
            throw UsageError("there is no table '" + name + "' to export" + suggestion(name, all));
        }
    }
    return tables;
}

std::string type_text(const ExportColumn& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean: return "boolean";
        case jet::ColumnType::kByte: return "byte";
        case jet::ColumnType::kInteger: return "integer";
        case jet::ColumnType::kLong: return column.is_autonumber ? "long auto-number" : "long";
        case jet::ColumnType::kCurrency: return "currency";
        case jet::ColumnType::kSingle: return "single";
        case jet::ColumnType::kDouble: return "double";
        case jet::ColumnType::kDate: return "date";
        case jet::ColumnType::kText: return "text(" + std::to_string(column.length_characters) + ")";
        case jet::ColumnType::kMemo: return "memo";
        case jet::ColumnType::kGuid: return "guid";
        case jet::ColumnType::kNumeric:
            return "numeric(" + std::to_string(column.precision) + "," + std::to_string(column.scale) + ")";
        case jet::ColumnType::kBinary:
        case jet::ColumnType::kOle:
        case jet::ColumnType::kFixedBinary: return "bytes";
        case jet::ColumnType::kComplexId: return "complex";
    }
    return "unknown";
}

bool make_exportable(jet::Value& value) {
    const auto* const date = std::get_if<jet::Date>(&value);
    constexpr double kFirst = -693593;  // 0001-01-01
    constexpr double kEnd = 2958466;    // 10000-01-01
    if (date == nullptr || (date->days >= kFirst && date->days < kEnd)) return false;
    value = jet::Null{};
    return true;
}

}  // namespace tools

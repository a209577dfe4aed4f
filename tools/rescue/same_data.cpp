#include "tools/rescue/same_data.h"

#include "jet/schema/catalog.h"
#include "tools/long_work.h"

namespace tools {
namespace {

using jet::Value;

// The table's row of the catalogue.
std::optional<jet::RowId> catalogue_row(const jet::Table& objects, std::u16string_view name) {
    const auto name_at = objects.def().find_column(jet::catalog_columns::kName);
    const auto parent_at = objects.def().find_column(jet::catalog_columns::kParentId);
    jet::RowView view;
    for (auto id = objects.next_row({}); id; id = objects.next_row(*id)) {
        if (!objects.read(*id, view) || view.value(*parent_at) != Value(jet::jet4::kTablesContainer)) continue;
        if (view.value(*name_at) == Value(std::u16string(name))) return id;
    }
    return std::nullopt;
}

// Of texts, the characters count: a code page takes one byte for each, UTF-16 two.
bool is_same_size(const jet::ColumnDef& a, const jet::ColumnDef& b) {
    if (a.type == jet::ColumnType::kText) return a.most_characters() == b.most_characters();
    return a.length_bytes == b.length_bytes;
}

bool is_same_column(const jet::ColumnDef& a, const jet::ColumnDef& b) {
    return a.name == b.name && a.type == b.type && is_same_size(a, b) && a.is_autonumber() == b.is_autonumber() &&
           a.allow_zero_length == b.allow_zero_length && a.required == b.required;
}

std::string difference_of_rows(const jet::Table& a, const jet::Table& b, const std::string& name) {
    LongWork work("rows compared", a.def().row_count);
    jet::RowView row;
    jet::RowView other;
    std::size_t n = 0;
    auto at = a.next_row({});
    auto other_at = b.next_row({});
    for (; at && other_at; at = a.next_row(*at), other_at = b.next_row(*other_at), ++n) {
        work.step();
        if (!a.read(*at, row) || !b.read(*other_at, other))
            return "row " + std::to_string(n) + " of " + name + " cannot be read";
        for (std::size_t i = 0; i < a.def().columns.size(); ++i) {
            if (row.value(i) == other.value(i)) continue;
            return jet::to_utf8(a.def().columns[i].name) + " of row " + std::to_string(n) + " of " + name + " differs";
        }
    }
    return at || other_at ? "the numbers of rows of " + name + " differ" : "";
}

}  // namespace

jet::ByteVector property_blob(jet::Database& database, std::u16string_view table, std::uint16_t code_page) {
    const jet::ByteVector blob = property_blob(database, table);
    if (blob.empty() || code_page == database.code_page()) return blob;
    return jet::build_properties(jet::convert_properties(jet::parse_properties(blob, database.code_page()), code_page));
}

jet::ByteVector property_blob(jet::Database& database, std::u16string_view table) {
    const jet::Table& objects = *database.table_by_page(jet::jet4::kObjectsPage);
    const auto row = catalogue_row(objects, table);
    jet::RowView view;
    if (!row || !objects.read(*row, view)) return {};
    const Value value = view.value(*objects.def().find_column(jet::catalog_columns::kProperties));
    const auto* const bytes = std::get_if<jet::ByteVector>(&value);
    return bytes != nullptr ? *bytes : jet::ByteVector{};
}

void set_property_blob(jet::Database& database, std::u16string_view table, const jet::ByteVector& blob) {
    jet::Table& objects = *database.table_by_page(jet::jet4::kObjectsPage);
    const auto row = catalogue_row(objects, table);
    if (!row) jet::fail(jet::errors::kNoSuchTable, "There is no table '" + jet::to_utf8(table) + "'.");
    const jet::ColumnChange change{*objects.def().find_column(jet::catalog_columns::kProperties),
                                   blob.empty() ? Value{} : Value{blob}};
    objects.update(*row, {&change, 1});
}

std::string difference_of(jet::Database& a, jet::Database& b) {
    if (a.table_names() != b.table_names()) return "the lists of tables differ";
    for (const std::u16string& table : a.table_names()) {
        const std::string name = jet::to_utf8(table);
        const jet::Table& first = *a.find_table(table);
        const jet::Table& second = *b.find_table(table);
        if (first.def().columns.size() != second.def().columns.size()) return "the columns of " + name + " differ";
        for (std::size_t i = 0; i < first.def().columns.size(); ++i) {
            if (!is_same_column(first.def().columns[i], second.def().columns[i]))
                return "the columns of " + name + " differ";
        }
        if (first.def().last_autonumber != second.def().last_autonumber)
            return "the next number of " + name + " differs";
        if (property_blob(a, table, b.code_page()) != property_blob(b, table))
            return "the properties of " + name + " differ";
        if (const std::string rows = difference_of_rows(first, second, name); !rows.empty()) return rows;
    }
    return {};
}

}  // namespace tools

#include "tools/report/page_manifest.h"

#include <algorithm>
#include <string_view>

#include "tools/export/relations.h"
#include "tools/report/markup.h"
#include "tools/value_text.h"

namespace tools {
namespace {

// Numbers that lead to another table by what stands on paper, or to records without a name.
constexpr Relation kMoreRelations[] = {
    {"InvoiceParams", "InvoiceID", "Invoices", "InvoiceID"},
    {"Participants", "SessionID", "Sessions", "SessionID"},
    {"Bookings", "SessionID", "Sessions", "SessionID"},
    {"Sessions", "SongID", "Songs", "SongID"},
};

// The columns whose values tell a person which record it is; "Name" for all others.
constexpr struct {
    const char* table;
    const char* columns[2];
} kLabels[] = {
    {"Clients", {"Name", "LastName"}},         {"Gear", {"Manufacturer", "Model"}},
    {"Def_StockTypes", {"TypeName", ""}},      {"Invoices", {"InvoiceID", "ClientName"}},
    {"InvoiceParams", {"Name", ""}},           {"Sessions", {"RecDate", "SongName"}},
    {"Bookings", {"DateStart", "ClientName"}}, {"GearRepairs", {"GearName", "SendDate"}},
    {"Supply", {"StockName", "Date"}},         {"GearRentals", {"ServiceName", "Date"}},
    {"ProjPayments", {"Details", "Date"}},     {"ProjActivities", {"Item", "Date"}},
    {"Messages", {"ConnectType", "Date"}},     {"MixFiles", {"Descript", ""}},
    {"MediaFiles", {"Descript", ""}},
};

// Reals that are amounts of money.
constexpr std::string_view kAmounts[] = {"Cost", "Price", "Paymetns", "Balance"};

std::string kind_of(const ExportColumn& column) {
    using enum jet::ColumnType;
    switch (column.type) {
        case kCurrency: return "money";
        case kSingle:
        case kDouble:
            return std::find(std::begin(kAmounts), std::end(kAmounts), column.name) != std::end(kAmounts) ? "money"
                                                                                                          : "number";
        case kByte:
        case kInteger:
        case kLong:
        case kNumeric:
        case kComplexId: return "number";
        case kDate: return "date";
        default: return "text";
    }
}

const KnownTable* known(const ExportTable& table) {
    const auto tables = known_tables();
    const auto found =
        std::find_if(tables.begin(), tables.end(), [&](const KnownTable& own) { return table.name == own.table; });
    return found == tables.end() ? nullptr : &*found;
}

// "list_of_stock_bought" is "Stock bought".
std::string title_of(const ExportTable& table) {
    const KnownTable* const own = known(table);
    if (own == nullptr) return table.name;
    constexpr std::string_view kBegin = "list_of_";
    std::string title(std::string_view(own->view).substr(kBegin.size()));
    std::replace(title.begin(), title.end(), '_', ' ');
    title.front() = static_cast<char>(title.front() - 'a' + 'A');
    return title;
}

const ExportTable* find_table(std::span<const ExportTable> tables, std::string_view name) {
    const auto found =
        std::find_if(tables.begin(), tables.end(), [&](const ExportTable& own) { return own.name == name; });
    return found == tables.end() ? nullptr : &*found;
}

std::string parent_json(const Relation& relation, std::string_view column) {
    return ", \"parent\": {\"table\": " + json_string(relation.parent) + ", \"column\": " + json_string(column) + "}";
}

// Where the column's values lead; "" where that is nowhere in the page.
std::string parent_of(const ExportTable& table, const ExportColumn& column, std::span<const ExportTable> tables) {
    const auto is_it = [&](const Relation& own) { return table.name == own.table && column.name == own.column; };
    for (const Relation& relation : kMoreRelations) {
        if (is_it(relation) && find_table(tables, relation.parent) != nullptr) {
            return parent_json(relation, relation.name);
        }
    }
    for (const Relation& relation : relations()) {
        if (!is_it(relation)) continue;
        const ExportTable* const parent = find_table(tables, relation.parent);
        if (parent != nullptr && parent->key) return parent_json(relation, parent->columns[*parent->key].name);
    }
    return "";
}

std::string label_json(const ExportTable& table) {
    const char* wanted[2] = {"Name", ""};
    for (const auto& own : kLabels) {
        if (table.name == own.table) std::copy(std::begin(own.columns), std::end(own.columns), wanted);
    }
    std::string text;
    for (const char* const name : wanted) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (table.columns[i].name == name) text += (text.empty() ? "" : ", ") + std::to_string(i);
        }
    }
    return "[" + text + "]";
}

std::string table_json(const ExportTable& table, std::uint64_t rows, std::span<const ExportTable> tables) {
    std::string text = "{\"name\": " + json_string(table.name) + ", \"title\": " + json_string(title_of(table)) +
                       ", \"file\": " + json_string(table.file) + ", \"rows\": " + std::to_string(rows) +
                       ", \"known\": " + (known(table) == nullptr ? "false" : "true") +
                       ", \"label\": " + label_json(table) + ", \"columns\": [";
    const char* before = "\n  ";
    for (const ExportColumn& column : table.columns) {
        text += before + std::string("{\"name\": ") + json_string(column.name) +
                ", \"type\": " + json_string(type_text(column)) + ", \"kind\": " + json_string(kind_of(column)) +
                parent_of(table, column, tables) + "}";
        before = ",\n  ";
    }
    return text + "]}";
}

}  // namespace

std::string page_manifest(std::span<const ExportTable> tables, std::span<const std::uint64_t> rows) {
    std::string text = "{\"tables\": [";
    for (std::size_t i = 0; i < tables.size(); ++i) {
        text += (i == 0 ? "\n" : ",\n") + table_json(tables[i], rows[i], tables);
    }
    return in_script(text + "\n]}\n");
}

std::string table_list_html(std::span<const ExportTable> tables, std::span<const std::uint64_t> rows) {
    std::string text =
        "<table class=\"table-list\"><thead><tr><th scope=\"col\">Table</th><th scope=\"col\">File</th>"
        "<th scope=\"col\">Rows</th></tr></thead><tbody>\n";
    for (std::size_t i = 0; i < tables.size(); ++i) {
        text += "<tr><th scope=\"row\">" + html_text(tables[i].name) + "</th><td>" + html_text(tables[i].file) +
                "</td><td>" + count_text(rows[i]) + "</td></tr>\n";
    }
    return text + "</tbody></table>\n";
}

}  // namespace tools

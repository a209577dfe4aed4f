// The line of numbers above the pictures.
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

constexpr struct {
    const char* table;
    const char* name;
} kCounted[] = {
    {"Projects", "Projects"}, {"Clients", "Contacts"}, {"Sessions", "Sessions"},
    {"Bookings", "Bookings"}, {"Gear", "Gear"},        {"Invoices", "Invoices"},
};

std::string figure(const char* table, const char* name, const std::string& value) {
    return std::string("<li><a href=\"#t=") + table + "\"><strong>" + value + "</strong> <span>" + name +
           "</span></a></li>\n";
}

}  // namespace

std::string key_figures(const StudioTables& tables) {
    std::string items;
    for (const auto& [table, name] : kCounted) {
        if (!tables.has(table)) continue;
        std::uint64_t rows = 0;
        tables.each(table, {}, [&](StudioTables::Values) { ++rows; });
        items += figure(table, name, count_text(rows));
    }
    if (tables.has("Invoices")) {
        Amount unpaid;
        tables.each("Invoices", {"Balance"}, [&](StudioTables::Values row) {
            if (const Amount balance(row[0]); balance.is_positive()) unpaid += balance;
        });
        items += figure("Invoices", "Unpaid", unpaid.rounded());
    }
    return items.empty() ? "" : "<ul class=\"figures\">\n" + items + "</ul>\n";
}

}  // namespace tools

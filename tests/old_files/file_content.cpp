#include "tests/old_files/file_content.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "jet/check/check.h"
#include "jet/pages/header.h"
#include "jet/tables/database.h"

namespace testing_support {
namespace {

std::string kind_of(const jet::ColumnDef& column) {
    switch (column.type) {
        case jet::ColumnType::kLong: return column.is_autonumber() ? "key" : "long";
        case jet::ColumnType::kDate: return "date";
        case jet::ColumnType::kCurrency: return "currency";
        case jet::ColumnType::kSingle: return "single";
        case jet::ColumnType::kText: return column.allow_zero_length ? "text" : "short";
        case jet::ColumnType::kMemo: return column.allow_zero_length ? "memo" : "memo that must not be empty";
        default: return "another kind";
    }
}

std::string iso_text(double days) {
    const double whole = std::floor(days);
    const std::chrono::sys_days zero = std::chrono::year(1899) / 12 / 30;
    const std::chrono::year_month_day date(zero + std::chrono::days(static_cast<int>(whole)));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return days == whole ? text : text + ("+" + std::to_string(days - whole));
}

struct TextMaker {
    std::string operator()(jet::Null) const { return "null"; }
    std::string operator()(std::int32_t value) const { return std::to_string(value); }
    std::string operator()(float value) const { return std::to_string(value) + "f"; }
    std::string operator()(jet::Date value) const { return iso_text(value.days); }
    std::string operator()(const std::u16string& value) const { return "'" + jet::to_utf8(value) + "'"; }
    std::string operator()(jet::Currency value) const {
        const std::int64_t amount = value.ten_thousandths;
        char text[64];
        std::snprintf(text, sizeof text, "%s%lld.%04lld", amount < 0 ? "-" : "",
                      static_cast<long long>(std::llabs(amount) / 10000),
                      static_cast<long long>(std::llabs(amount) % 10000));
        return text;
    }
    template <class Other>
    std::string operator()(const Other&) const {
        return "another value";
    }
};

std::unique_ptr<jet::Database> open(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    options.read_only = true;
    return jet::Database::open(path, options);
}

}  // namespace

Content content_of(const std::string& path, std::string_view expected) {
    const auto database = open(path);
    for (const jet::Violation& violation : jet::check_structure(*database)) {
        if (violation.rule == expected) continue;
        ADD_FAILURE() << path << ": page " << violation.page << ": " << violation.rule << ": " << violation.detail;
    }
    Content content;
    for (const std::u16string& name : database->table_names()) {
        ContentTable& into = content[jet::to_utf8(name)];
        const jet::Table& table = *database->find_table(name);
        const auto& columns = table.def().columns;
        for (const jet::ColumnDef& column : columns) into.columns[jet::to_utf8(column.name)] = kind_of(column);
        jet::RowView view;
        for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
            if (!table.read(*id, view)) {
                ADD_FAILURE() << "unreadable row in " << jet::to_utf8(name);
                continue;
            }
            ContentRow row;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                row[jet::to_utf8(columns[i].name)] = std::visit(TextMaker{}, view.value(i));
            }
            into.rows.push_back(std::move(row));
        }
    }
    return content;
}

std::string version_in(const Content& content) {
    const auto header = content.find("DBHeader");
    return header == content.end() || header->second.rows.empty() ? "none" : header->second.rows[0].at("DBversion");
}

std::string password_in(const std::string& path) {
    const auto database = open(path);
    const jet::Page page = database->pager().read(0);
    return jet::to_utf8(jet::parse_header(page.bytes(), path).password);
}

std::string difference(const Content& a, const Content& b) {
    std::string text;
    const auto note = [&](const std::string& line) { text += line + "\n"; };
    for (const auto& [name, table] : a) {
        const auto other = b.find(name);
        if (other == b.end()) {
            note(name + " is gone");
            continue;
        }
        if (table.columns != other->second.columns) note(name + " has other columns");
        if (table.rows.size() != other->second.rows.size()) {
            note(name + ": " + std::to_string(table.rows.size()) + " rows, then " +
                 std::to_string(other->second.rows.size()));
        }
        for (std::size_t i = 0; i < std::min(table.rows.size(), other->second.rows.size()); ++i) {
            for (const auto& [column, value] : table.rows[i]) {
                const ContentRow& row = other->second.rows[i];
                const auto found = row.find(column);
                const std::string now = found == row.end() ? "gone" : found->second;
                if (now != value) {
                    note(name + ", row " + std::to_string(i) + ": " + column + " was " + value + ", is " + now);
                }
            }
        }
    }
    for (const auto& [name, table] : b) {
        if (!a.contains(name)) note(name + " is new");
    }
    return text;
}

}  // namespace testing_support

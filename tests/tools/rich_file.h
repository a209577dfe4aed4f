// A Jet file whose values are hard to export: every type that can be made, at its limits, and texts full of what other
// forms take for signs of their own.
#pragma once

#include <string>

#include "jet/tables/database.h"

namespace testing_tool {

// Rows of the second table, beside the few of the first.
inline void make_rich_file(const std::string& path, int plain_rows = 10) {
    using jet::ColumnType;
    const auto database = jet::Database::create(path, {});
    const jet::NewColumn rich[] = {
        {.name = u"Key", .type = ColumnType::kLong, .autonumber = true},
        {.name = u"Yes", .type = ColumnType::kBoolean},
        {.name = u"Small", .type = ColumnType::kByte},
        {.name = u"Short", .type = ColumnType::kInteger},
        {.name = u"OtherID", .type = ColumnType::kLong},
        {.name = u"Money", .type = ColumnType::kCurrency},
        {.name = u"Single", .type = ColumnType::kSingle},
        {.name = u"Double", .type = ColumnType::kDouble},
        {.name = u"When", .type = ColumnType::kDate},
        {.name = u"Text \"quoted\", ä", .type = ColumnType::kText, .allow_zero_length = true},
        {.name = u"Memo", .type = ColumnType::kMemo, .allow_zero_length = true},
        {.name = u"Bytes", .type = ColumnType::kOle},
    };
    database->create_table(u"Rich; table \"1\"", rich);
    jet::Table& table = *database->find_table(u"Rich; table \"1\"");
    const auto add = [&](bool yes, std::uint8_t small, std::int16_t number, std::int32_t other, std::int64_t money,
                         float single, double real, double when, std::u16string text, std::u16string memo,
                         std::vector<std::uint8_t> bytes) {
        table.insert({jet::Null{}, yes, small, number, other, jet::Currency{money}, single, real, jet::Date{when},
                      std::move(text), std::move(memo), std::move(bytes)});
    };
    add(true, 255, 32767, 2147483647, INT64_MAX, 3.4028235e38F, 1.7976931348623157e308, 2958465.5, u"plain", u"memo",
        {0x00, 0xFF, 0x5C, 0x27});
    add(false, 0, -32768, -2147483647 - 1, INT64_MIN, -0.1F, 5e-324, -657434, u"", u"", {0x41});
    add(true, 1, 1, 0, 7305600, 730.56F, 0.1, 46094.4166666667, u"a \"quoted\", one; 'other' `third`",
        u"line\r\nline\nreturn\rtab\t\\. \\N \\x41 \\\\ end\n\\.\n", {});
    add(false, 9, -1, 5, -1, -1.25F, -2.5, -1.75, u"Tromsø, Köln, \u4F5C\u66F2, \U0001F3B5, \u0416",
        std::u16string(100000, u'\u00E9') + u" end of a long one", std::vector<std::uint8_t>(5000, 0x27));
    add(true, 2, 2, 2, 1234567890123456, 16777216.0F, 123456789.123456789, 0, u"$1 %s {} [] <b>&amp;</b>", u"\"\"\"",
        {0x0A, 0x0D});
    table.insert(std::vector<jet::Value>(1));  // nothing but its key

    const jet::NewColumn plain[] = {
        {.name = u"ID", .type = ColumnType::kLong, .autonumber = true},
        {.name = u"Name", .type = ColumnType::kText},
        {.name = u"Day", .type = ColumnType::kDate},
        {.name = u"Amount", .type = ColumnType::kCurrency},
    };
    database->create_table(u"CON/\\plain:*?", plain);
    jet::Table& second = *database->find_table(u"CON/\\plain:*?");
    database->pager().begin();
    for (int i = 0; i < plain_rows; ++i) {
        second.insert({jet::Null{}, jet::from_utf8("Row " + std::to_string(i)), jet::Date{40000.0 + i % 3000},
                       jet::Currency{i * 100}});
    }
    database->pager().commit();
    database->close();
}

}  // namespace testing_tool

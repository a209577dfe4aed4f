// Studios for the tests of reports: rows set below the gates, in a studio that the demonstration has made.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "jet/tables/database.h"

namespace testing_tool {

// Full of what a page takes for signs of its own.
inline const char kHostileText[] =
    "</script><script>window.pwned = 1</script><!-- <img src=x onerror=window.pwned=1> <b>\" ' & &lt; "
    "\xE2\x80\xA8\xE2\x80\xA9 {{script}} ${x} ]]> \\u003c \xE2\x80\xAE";

class StudioRows {
public:
    explicit StudioRows(const std::string& path) {
        jet::OpenOptions options;
        options.ignore_password = true;
        database_ = jet::Database::open(path, options);
        database_->pager().begin();
    }
    ~StudioRows() {
        database_->pager().commit();
        database_->close();
    }
    StudioRows(const StudioRows&) = delete;
    StudioRows& operator=(const StudioRows&) = delete;

    using Row = std::map<std::u16string, jet::Value>;

    void add(const std::u16string& table_name, const Row& values) {
        jet::Table& table = *database_->find_table(table_name);
        std::vector<jet::Value> row(table.def().columns.size());
        for (const auto& [column, value] : values) row[*table.def().find_column(column)] = value;
        table.insert(row);
    }

    // In the first row.
    void set(const std::u16string& table_name, const std::u16string& column, const jet::Value& value) {
        jet::Table& table = *database_->find_table(table_name);
        const jet::ColumnChange change{*table.def().find_column(column), value};
        table.update(*table.next_row({}), {&change, 1});
    }

private:
    std::unique_ptr<jet::Database> database_;
};

// In every place that the page shows: headings, names in pictures, rows, memos.
inline void add_hostile_rows(const std::string& path) {
    const std::u16string text = jet::from_utf8(kHostileText);
    StudioRows rows(path);
    std::u16string memo;
    while (memo.size() < 60000) memo += text + u"\r\n";
    rows.set(u"Def_Invoice", u"StudioName", text);
    rows.add(u"Projects", {{u"Name", text}, {u"ProjCreateDate", jet::Date{46000}}, {u"Notes", memo}});
    rows.add(u"Def_Rooms", {{u"Name", text.substr(0, 50)}});
    rows.add(u"Bookings", {{u"DateStart", jet::Date{46000.5}},
                           {u"DateEnd", jet::Date{46000.75}},
                           {u"RoomID", std::int32_t{2}},
                           {u"ClientName", text}});
    rows.add(u"Gear", {{u"Manufacturer", text}, {u"Model", text}, {u"Cost", 1.5F}});
    rows.add(u"Def_StockTypes", {{u"TypeName", text.substr(0, 50)}, {u"InStock", std::int32_t{3}}});
}

// Rows of several tables, 120,000 in all.
inline void add_many_rows(const std::string& path) {
    StudioRows rows(path);
    const auto number = [](int n) { return jet::from_utf8(std::to_string(n)); };
    for (int n = 0; n < 60000; ++n) {
        const double day = 40000 + n % 6000;
        rows.add(u"Bookings", {{u"DateStart", jet::Date{day + 0.375}},
                               {u"DateEnd", jet::Date{day + 0.5}},
                               {u"ClientID", std::int32_t{n % 20000}},
                               {u"ClientName", u"Client " + number(n * 7919 % 60000)},
                               {u"RoomID", std::int32_t{n % 3}}});
    }
    for (int n = 0; n < 20000; ++n) {
        rows.add(u"Clients",
                 {{u"Name", u"Client " + number(n)}, {u"City", u"Troms\u00F8"}, {u"Notes", u"Met in " + number(n)}});
    }
    for (int n = 0; n < 40000; ++n) {
        rows.add(u"Songs", {{u"ProjID", std::int32_t{n % 3}}, {u"Name", u"Song " + number(n)}, {u"Notes", number(n)}});
    }
}

}  // namespace testing_tool

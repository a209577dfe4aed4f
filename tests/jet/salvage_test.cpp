// Damaged tables: no way of reading passes over what is missing in silence; with a listener, what is left is read and
// each place that could not be is named.
#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "jet/sql/row_set.h"
#include "jet/storage/data_page.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

constexpr char kSalvagePath[] = "d/a.mdb";
constexpr std::size_t kRows = 400;

OpenOptions writable(DamageListener on_damage) {
    OpenOptions options;
    options.on_damage = std::move(on_damage);
    return options;
}

OpenOptions read_only(DamageListener on_damage = {}) {
    OpenOptions options = writable(std::move(on_damage));
    options.read_only = true;
    return options;
}

// A table over a dozen pages, with memos in the row, on shared pages and in chains.
const ByteVector& sound_file() {
    static const ByteVector file = [] {
        MemoryDisk memory;
        const auto database = Database::create(kSalvagePath, CreateOptions{});
        const NewColumn columns[] = {new_column(u"Id", ColumnType::kLong), new_column(u"Day", ColumnType::kDate),
                                     new_column(u"Name", ColumnType::kText), new_column(u"Notes", ColumnType::kMemo)};
        database->create_table(u"T", columns);
        Table& table = *database->find_table(u"T");
        for (std::size_t n = 0; n < kRows; ++n) {
            const std::size_t length = n % 100 == 7 ? 5000 : n % 10 == 3 ? 300 : n % 20;
            table.insert({static_cast<std::int32_t>(n), Date{30000.0 + static_cast<double>(n)},
                          std::u16string(60, u'n'), std::u16string(length, u'm')});
        }
        const ColumnChange grown{2, std::u16string(250, u'g')};  // moves away
        table.update(*table.next_row({}), {&grown, 1});
        database->close();
        return memory.disk.content(kSalvagePath);
    }();
    return file;
}

// Pages of the table by the map that lists them.
struct TablePages {
    std::vector<PageNumber> rows;
    std::vector<PageNumber> long_values;
    PageNumber maps = 0;
};

TablePages table_pages() {
    MemoryDisk memory;
    memory.disk.set_content(kSalvagePath, sound_file());
    const auto database = Database::open(kSalvagePath, {});
    const Table& table = *database->find_table(u"T");
    TablePages pages;
    const auto collect = [](const UsageMap& map, std::vector<PageNumber>& into) {
        for (auto page = map.next(0); page; page = map.next(*page + 1)) into.push_back(*page);
    };
    collect(table.owned_pages(), pages.rows);
    collect(UsageMap(database->pager(), database->allocator(), table.def().columns[3].owned_map), pages.long_values);
    pages.maps = table.def().owned_map.page;
    return pages;
}

struct Damage {
    std::string name;
    std::function<void(ByteVector& file, const TablePages& pages)> make;
    std::function<PageNumber(const TablePages& pages)> named;  // a page that has to be named
    bool beyond_row_pages = false;                             // values are gone, all rows can be found
};

MutableByteSpan page_of(ByteVector& file, PageNumber page) {
    return MutableByteSpan(file).subspan(page * jet4::kPageSize, jet4::kPageSize);
}

std::vector<Damage> damages() {
    const auto third = [](const TablePages& pages) { return pages.rows[2]; };
    const auto change_third = [](std::function<void(MutableByteSpan)> change) {
        return [change](ByteVector& file, const TablePages& pages) { change(page_of(file, pages.rows[2])); };
    };
    return {
        {"zeroed", change_third([](MutableByteSpan page) { std::fill(page.begin(), page.end(), std::uint8_t{0}); }),
         third},
        {"other_kind", change_third([](MutableByteSpan page) { page[0] = jet4::kIndexLeafPage; }), third},
        {"other_owner", change_third([](MutableByteSpan page) { store_u32(page, jet4::data::kOwner, 3); }), third},
        {"long_value_owner",
         change_third([](MutableByteSpan page) { store_u32(page, jet4::data::kOwner, jet4::data::kLongValueOwner); }),
         third},
        {"too_many_slots", change_third([](MutableByteSpan page) { store_u16(page, jet4::data::kSlotCount, 257); }),
         third},
        {"slots_out_of_order",
         change_third([](MutableByteSpan page) { store_u16(page, jet4::data::kSlots + 2, 0x1000); }), third},
        {"truncated", [](ByteVector& file, const TablePages& pages) { file.resize(pages.rows[5] * jet4::kPageSize); },
         [](const TablePages& pages) { return pages.rows[5]; }},
        {"map_zeroed",
         [](ByteVector& file, const TablePages& pages) {
             const MutableByteSpan page = page_of(file, pages.maps);
             std::fill(page.begin(), page.end(), std::uint8_t{0});
         },
         [](const TablePages& pages) { return pages.maps; }},
        {"long_value_zeroed",
         [](ByteVector& file, const TablePages& pages) {
             const MutableByteSpan page = page_of(file, pages.long_values[0]);
             std::fill(page.begin(), page.end(), std::uint8_t{0});
         },
         [](const TablePages& pages) { return pages.rows[0]; }, true},
    };
}

// A way to go through the table; the rows it comes by.
struct Way {
    std::string name;
    std::function<std::size_t(Database& database)> go;
};

std::size_t count_statement(Database& database, std::u16string_view statement) {
    sql::RowSet rows(sql::Query::prepare(database, statement));
    std::size_t count = 0;
    RowView view;
    for (auto row = rows.first(); row; row = rows.next()) {
        if (!rows.query().table().read(*row, view)) continue;
        for (std::size_t i = 0; i < 4; ++i) view.value(i);
        ++count;
    }
    return count;
}

std::vector<Way> ways() {
    return {
        {"scan",
         [](Database& database) {
             const Table& table = *database.find_table(u"T");
             std::size_t count = 0;
             for (auto row = table.next_row({}); row; row = table.next_row(*row))
                 count += !row_values(table, *row).empty();
             return count;
         }},
        {"record_set", [](Database& database) { return count_statement(database, u"SELECT * FROM T"); }},
        {"condition",
         [](Database& database) { return count_statement(database, u"SELECT * FROM T WHERE Name LIKE '*'"); }},
        {"memo_condition",
         [](Database& database) { return count_statement(database, u"SELECT * FROM T WHERE NOT Notes LIKE 'x'"); }},
        {"order", [](Database& database) { return count_statement(database, u"SELECT * FROM T ORDER BY Name"); }},
        {"dates",
         [](Database& database) { return count_statement(database, u"SELECT * FROM T WHERE Day >= #1/1/1950#"); }},
        {"column_map", [](Database& database) { return database.find_table(u"T")->column_map(0)->size(); }},
        {"sum",
         [](Database& database) {
             sql::Query::prepare(database, u"SELECT SUM(Id) AS S FROM T").aggregate();
             return kRows - 1;
         }},
    };
}

bool reads_long_values(const std::string& way) { return way != "column_map" && way != "sum"; }

TEST(Salvage, damage_is_raised_in_every_way_of_reading) {
    const TablePages pages = table_pages();
    ASSERT_GT(pages.rows.size(), 8u);
    ASSERT_FALSE(pages.long_values.empty());
    for (const Damage& damage : damages()) {
        ByteVector file = sound_file();
        damage.make(file, pages);
        MemoryDisk memory;
        memory.disk.set_content(kSalvagePath, file);
        for (const Way& way : ways()) {
            if (damage.beyond_row_pages && !reads_long_values(way.name)) continue;
            const auto database = Database::open(kSalvagePath, read_only());
            EXPECT_EQ(errors::kDamaged, error_number([&] { way.go(*database); })) << damage.name << " " << way.name;
        }
    }
}

TEST(Salvage, listener_is_told_of_every_place_and_the_rest_is_read) {
    const TablePages pages = table_pages();
    for (const Damage& damage : damages()) {
        ByteVector file = sound_file();
        damage.make(file, pages);
        MemoryDisk memory;
        memory.disk.set_content(kSalvagePath, file);
        for (const Way& way : ways()) {
            if (damage.beyond_row_pages && !reads_long_values(way.name)) continue;
            std::set<PageNumber> named;
            const auto database = Database::open(kSalvagePath, read_only([&](const DamagedPlace& place) {
                                                     EXPECT_NE(std::string::npos, place.what.find("damaged"))
                                                         << place.what;
                                                     named.insert(place.page);
                                                 }));
            std::size_t read = 0;
            EXPECT_EQ(0, error_number([&] { read = way.go(*database); })) << damage.name << " " << way.name;
            EXPECT_TRUE(named.contains(damage.named(pages))) << damage.name << " " << way.name;
            EXPECT_GT(read, kRows / 4) << damage.name << " " << way.name;
            if (damage.beyond_row_pages || damage.name == "map_zeroed") {
                EXPECT_GE(read, kRows - 100) << damage.name << " " << way.name;
            } else if (way.name != "sum") {
                EXPECT_LT(read, kRows) << damage.name << " " << way.name;
            }
        }
    }
}

TEST(Salvage, one_place_is_named_once) {
    const TablePages pages = table_pages();
    ByteVector file = sound_file();
    const MutableByteSpan page = page_of(file, pages.rows[2]);
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    MemoryDisk memory;
    memory.disk.set_content(kSalvagePath, file);
    int times = 0;
    const auto database = Database::open(kSalvagePath, read_only([&](const DamagedPlace&) { ++times; }));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(0, error_number([&] { count_statement(*database, u"T"); }));
    EXPECT_EQ(1, times);
}

TEST(Salvage, listener_is_not_heeded_where_the_file_may_be_written) {
    const TablePages pages = table_pages();
    ByteVector file = sound_file();
    page_of(file, pages.rows[2])[0] = 0;
    MemoryDisk memory;
    memory.disk.set_content(kSalvagePath, file);
    const auto database = Database::open(kSalvagePath, writable([&](const DamagedPlace&) { ADD_FAILURE(); }));
    EXPECT_EQ(errors::kDamaged, error_number([&] { count_statement(*database, u"T"); }));
}

TEST(Salvage, sound_file_has_no_damage_to_name) {
    MemoryDisk memory;
    memory.disk.set_content(kSalvagePath, sound_file());
    const auto database =
        Database::open(kSalvagePath, read_only([](const DamagedPlace& place) { ADD_FAILURE() << place.what; }));
    for (const Way& way : ways()) EXPECT_GE(way.go(*database), kRows - 1) << way.name;
}

// What stood there when a cursor came by may be gone when it goes on: that is no damage.
TEST(Salvage, cursor_goes_on_where_its_page_was_given_back) {
    MemoryDisk memory;
    memory.disk.set_content(kSalvagePath, sound_file());
    const auto database = Database::open(kSalvagePath, {});
    Table& table = *database->find_table(u"T");
    const PageNumber first_page = table.next_row({})->page;
    RowId last;
    std::vector<RowId> rows;
    for (auto row = table.next_row({}); row && row->page == first_page; row = table.next_row(*row))
        rows.push_back(*row);
    for (const RowId row : rows) table.erase(row);
    last = rows.back();
    std::size_t left = 0;
    for (auto row = table.next_row(last); row; row = table.next_row(*row)) ++left;
    EXPECT_EQ(kRows - rows.size(), left);
    EXPECT_FALSE(table.exists(last));
}

// A row put on a page that no map of the table lists would never be found again.
TEST(Salvage, row_is_not_added_to_a_page_outside_of_the_table) {
    for (const bool long_value : {false, true}) {
        MemoryDisk memory;
        memory.disk.set_content(kSalvagePath, sound_file());
        {
            const auto database = Database::open(kSalvagePath, {});
            const TableDef& def = database->find_table(u"T")->def();
            UsageMap map(database->pager(), database->allocator(), long_value ? def.columns[3].free_map : def.free_map);
            Transaction transaction(database->pager());
            while (const auto page = map.next(0)) map.remove(*page);
            const MutablePage page = database->allocator().allocate();
            format_data_page(page.bytes(), long_value ? jet4::data::kLongValueOwner : def.page);
            map.add(page.number());
            transaction.commit();
        }
        const auto database = Database::open(kSalvagePath, {});
        Table& table = *database->find_table(u"T");
        const std::string before = content_of(*database);
        EXPECT_EQ(errors::kDamaged, error_number([&] {
                      table.insert({std::int32_t{1}, Date{1}, std::u16string(200, u'x'), std::u16string(900, u'y')});
                  }));
        EXPECT_EQ(before, content_of(*database));
    }
}

}  // namespace
}  // namespace jet

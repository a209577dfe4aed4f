// Files made to be expensive: a few bytes that stand for many, work that multiplies. Opening, reading everything and
// the structural check stay within memory of eight times the file's size and 64 MB, and within two seconds and one for
// each ten megabytes.
#include <gtest/gtest.h>

#include <ctime>
#include <functional>

#include "jet/schema/catalog.h"
#include "jet/sql/row_set.h"
#include "jet/storage/data_page.h"
#include "jet/storage/row_codec.h"
#include "tests/jet/allocation_meter.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/exercise.h"

namespace jet {
namespace {

constexpr char kHostilePath[] = "d/hostile.mdb";
constexpr double kMegabyte = 1 << 20;
#if defined(__SANITIZE_ADDRESS__) || defined(_WIN32)
constexpr double kSlowness = 12;  // of the build, or of an emulator
#else
constexpr double kSlowness = 1;
#endif

// Puts rows onto fresh pages of the table as they are, without asking whether they make sense.
class RawRows {
public:
    RawRows(Database& database, const TableDef& def)
        : database_(database), owner_(def.page), owned_(database.pager(), database.allocator(), def.owned_map) {}

    RowId add(ByteSpan row, std::uint16_t flags = 0) {
        if (page_ == 0 || !DataPage(database_.pager().read(page_).bytes(), page_).has_room(row.size())) {
            const MutablePage page = database_.allocator().allocate();
            page_ = page.number();
            format_data_page(page.bytes(), owner_);
            owned_.add(page_);
        }
        const MutablePage page = database_.pager().modify(page_);
        return {page_, add_row(page.bytes(), page_, row, flags)};
    }

private:
    Database& database_;
    PageNumber owner_;
    UsageMap owned_;
    PageNumber page_ = 0;
};

ByteVector packed(RowId row) {
    ByteVector bytes;
    append_u32(bytes, row.pack());
    return bytes;
}

Table& make_table(Database& database, std::u16string_view name) {
    const NewColumn columns[] = {new_column(u"Id", ColumnType::kLong), new_column(u"Notes", ColumnType::kMemo),
                                 new_column(u"Name", ColumnType::kText)};
    database.create_table(name, columns);
    return *database.find_table(name);
}

void store_properties(Database& database, std::u16string_view table_name, ByteSpan blob) {
    Table& objects = *database.table_by_page(jet4::kObjectsPage);
    RowView row;
    for (auto id = objects.next_row({}); id; id = objects.next_row(*id)) {
        objects.read(*id, row);
        const Value name = row.value(*objects.def().find_column(catalog_columns::kName));
        if (std::get<std::u16string>(name) != table_name) continue;
        const ColumnChange change{*objects.def().find_column(catalog_columns::kProperties),
                                  ByteVector(blob.begin(), blob.end())};
        objects.update(*id, {&change, 1});
        return;
    }
}

void append_block(ByteVector& blob, std::uint16_t type, ByteSpan body) {
    append_u32(blob, static_cast<std::uint32_t>(jet4::properties::kBlockHeader + body.size()));
    append_u16(blob, type);
    append_bytes(blob, body);
}

ByteVector blob_of_names(const Format& format, std::size_t name_characters) {
    ByteVector blob;
    append_u32(blob, format.properties_mark);
    const std::size_t bytes = format.text_unit * name_characters;
    ByteVector names;
    append_u16(names, static_cast<std::uint16_t>(bytes));
    names.resize(names.size() + bytes, 'n');
    append_block(blob, jet4::properties::kNameBlock, names);
    return blob;
}

struct Hostile {
    std::string name;
    std::function<void(Database& database)> make;  // inside a transaction
    std::function<void(ByteVector& file)> change = {};
};

void many_values_of_one_long_name(Database& database) {
    make_table(database, u"T");
    const Format& format = database.pager().format();
    ByteVector blob = blob_of_names(format, 32000);
    ByteVector values;
    append_u32(values, static_cast<std::uint32_t>(jet4::properties::kOwnerHeader + 2 * format.text_unit));
    append_u16(values, static_cast<std::uint16_t>(2 * format.text_unit));
    for (const std::uint8_t letter : {'I', 'd'}) {
        values.push_back(letter);
        if (!format.is_jet3()) values.push_back(0);
    }
    for (int i = 0; i < 60000; ++i) {
        append_u16(values, jet4::properties::kValueHeader);
        append_u32(values, 0x00000101);
        append_u16(values, 0);
    }
    append_block(blob, jet4::properties::kColumnBlock, values);
    store_properties(database, u"T", blob);
}

void many_blocks_of_properties(Database& database) {
    make_table(database, u"T");
    ByteVector blob = blob_of_names(database.pager().format(), 1);
    for (int i = 0; i < 60000; ++i) {
        ByteVector empty;
        append_u32(empty, jet4::properties::kOwnerHeader);
        append_u16(empty, 0);
        append_block(blob, jet4::properties::kColumnBlock, empty);
    }
    store_properties(database, u"T", blob);
}

void many_rows_of_one_chain(Database& database) {
    Table& table = make_table(database, u"T");
    table.insert({std::int32_t{1}, std::u16string(300000, u'x'), std::u16string()});
    RowView view;
    table.read(*table.next_row({}), view);
    const ByteSpan reference = *view.stored(1);
    std::vector<StoredValue> values(3);
    values[0] = ByteVector(4);
    values[1] = ByteVector(reference.begin(), reference.end());
    const ByteVector row = encode_row(table.def(), values);
    RawRows rows(database, table.def());
    for (int i = 0; i < 20000; ++i) rows.add(row);
}

void chains_that_share_their_end(Database& database) {
    Table& table = make_table(database, u"T");
    table.insert({std::int32_t{1}, std::u16string(300000, u'x'), std::u16string()});
    RowView view;
    table.read(*table.next_row({}), view);
    const ByteVector reference(view.stored(1)->begin(), view.stored(1)->end());
    const RowId second = [&] {
        const RowId first = RowId::unpack(load_u32(reference, 4));
        const Page page = database.pager().read(first.page);
        const DataPage data(page.bytes(), first.page);
        return RowId::unpack(load_u32(data.row(data.slot(0)), 0));
    }();
    UsageMap owned(database.pager(), database.allocator(), table.def().columns[1].owned_map);
    RawRows rows(database, table.def());
    for (int i = 0; i < 300; ++i) {
        const MutablePage page = database.allocator().allocate();
        format_data_page(page.bytes(), jet4::data::kLongValueOwner);
        ByteVector piece = packed(second);
        piece.resize(database.pager().format().long_value.chain_data + 4, 'y');
        add_row(page.bytes(), page.number(), piece);
        owned.add(page.number());
        std::vector<StoredValue> values(3);
        values[1] = reference;
        store_u32(*values[1], 4, RowId{page.number(), 0}.pack());
        rows.add(encode_row(table.def(), values));
    }
}

void chains_that_go_in_a_circle(Database& database) {
    Table& table = make_table(database, u"T");
    UsageMap owned(database.pager(), database.allocator(), table.def().columns[1].owned_map);
    RawRows rows(database, table.def());
    for (int i = 0; i < 400; ++i) {
        const MutablePage page = database.allocator().allocate();
        format_data_page(page.bytes(), jet4::data::kLongValueOwner);
        ByteVector piece = packed({page.number(), 0});
        piece.resize(database.pager().format().long_value.chain_data + 4, 'y');
        add_row(page.bytes(), page.number(), piece);
        owned.add(page.number());
        std::vector<StoredValue> values(3);
        values[1] = ByteVector(12);
        store_u32(*values[1], 0, jet4::long_value::kLengthMask);
        store_u32(*values[1], 4, RowId{page.number(), 0}.pack());
        rows.add(encode_row(table.def(), values));
    }
}

void many_addresses_of_one_row(Database& database) {
    Table& table = make_table(database, u"T");
    std::vector<StoredValue> values(3);
    values[0] = ByteVector(4);
    values[2] = ByteVector(255 * database.pager().format().text_unit, 'z');
    RawRows rows(database, table.def());
    const RowId body = rows.add(encode_row(table.def(), values), jet4::data::kBodyFlag);
    for (int i = 0; i < 100000; ++i) rows.add(packed(body), jet4::data::kMovedFlag);
}

void many_addresses_of_one_catalogue_row(Database& database) {
    make_table(database, std::u16string(64, u'T'));
    const Table& objects = *database.table_by_page(jet4::kObjectsPage);
    RowId last;
    for (auto row = objects.next_row({}); row; row = objects.next_row(*row)) last = *row;
    RowView view;
    objects.read(last, view);
    std::vector<StoredValue> values(objects.def().columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (const auto stored = view.stored(i)) values[i].emplace(stored->begin(), stored->end());
    }
    RawRows rows(database, objects.def());
    const RowId body = rows.add(encode_row(objects.def(), values), jet4::data::kBodyFlag);
    for (int i = 0; i < 100000; ++i) rows.add(packed(body), jet4::data::kMovedFlag);
}

void many_names_of_one_table(Database& database) {
    Table& table = make_table(database, u"T");
    for (int i = 0; i < 2000; ++i) {
        table.insert({std::int32_t{i}, std::u16string(100, u'm'), std::u16string(100, u'n')});
    }
    Table& objects = *database.table_by_page(jet4::kObjectsPage);
    RawRows rows(database, objects.def());
    for (int i = 0; i < 5000; ++i) {
        std::vector<StoredValue> values(objects.def().columns.size());
        const auto set = [&](std::u16string_view column, const Value& value) {
            const std::size_t position = *objects.def().find_column(column);
            values[position] = encode_value(value, objects.def().columns[position]);
        };
        set(catalog_columns::kId, static_cast<std::int32_t>(table.def().page));
        set(catalog_columns::kParentId, jet4::kTablesContainer);
        set(catalog_columns::kType, std::int16_t{1});
        set(catalog_columns::kName, from_utf8("N" + std::to_string(i)));
        rows.add(encode_row(objects.def(), values));
    }
}

void tables_that_share_a_definition_page(Database& database) {
    std::vector<NewColumn> columns;
    for (int i = 0; i < 250; ++i) {
        columns.push_back(new_column(from_utf8("a column with a name " + std::to_string(i)), ColumnType::kLong));
    }
    database.create_table(u"Wide", columns);
    const PageNumber first = database.find_table(u"Wide")->def().page;
    for (int i = 0; i < 300; ++i) {
        const std::u16string name = from_utf8("T" + std::to_string(i));
        make_table(database, name);
        const PageNumber copy = database.find_table(name)->def().page;
        const MutablePage page = database.pager().modify(copy);
        const Page original = database.pager().read(first);
        store_bytes(page.bytes(), 0, original.bytes());
    }
}

void map_of_every_page(Database& database) {
    for (int i = 0; i < 60; ++i) {
        const Table& table = make_table(database, from_utf8("T" + std::to_string(i)));
        const RowId map = table.def().free_map;
        const MutablePage page = database.pager().modify(map.page);
        const Slot slot = DataPage(page.bytes(), map.page).slot(map.slot);
        for (std::size_t at = jet4::usage::kBitmap; at < slot.length; ++at) page.bytes()[slot.offset + at] = 0xFF;
    }
}

void leaves_of_an_index_in_a_circle(Database& database) {
    const Format::IndexPage& layout = database.pager().format().index;
    const TableDef& def = database.table_by_page(jet4::kObjectsPage)->def();
    for (const RealIndex& index : def.real_indexes) {
        const MutablePage page = database.pager().modify(index.root);
        store_u32(page.bytes(), layout.next, index.root);
        store_u32(page.bytes(), layout.previous, index.root);
    }
}

void definition_of_three_megabytes(Database& database) {
    const Format& format = database.pager().format();
    const std::size_t count = 800 * jet4::kPageSize / format.page_size;
    const PageNumber first = make_table(database, u"T").def().page;
    PageNumber before = first;
    for (std::size_t i = 0; i < count; ++i) {
        const MutablePage page = database.allocator().allocate();
        page.bytes()[0] = jet4::kTableDefPage;
        page.bytes()[1] = 1;
        store_u32(database.pager().modify(before).bytes(), jet4::tdef::kNext, page.number());
        before = page.number();
    }
    const MutablePage page = database.pager().modify(first);
    store_u32(page.bytes(), jet4::tdef::kLength,
              static_cast<std::uint32_t>(count * (format.page_size - jet4::tdef::kPageHeader)));
    store_u32(page.bytes(), format.definition.real_indexes, 20000);
    store_u32(page.bytes(), format.definition.logical_indexes, 40000);
}

#define HOSTILE(make) \
    { #make, make }
const std::vector<Hostile> kHostileFiles = {
    HOSTILE(many_values_of_one_long_name),
    HOSTILE(many_blocks_of_properties),
    HOSTILE(many_rows_of_one_chain),
    HOSTILE(chains_that_share_their_end),
    HOSTILE(chains_that_go_in_a_circle),
    HOSTILE(many_addresses_of_one_row),
    HOSTILE(many_addresses_of_one_catalogue_row),
    HOSTILE(many_names_of_one_table),
    HOSTILE(tables_that_share_a_definition_page),
    HOSTILE(map_of_every_page),
    HOSTILE(leaves_of_an_index_in_a_circle),
    HOSTILE(definition_of_three_megabytes),
};
#undef HOSTILE

ByteVector file_of(const Hostile& hostile, const Format& format) {
    MemoryDisk memory;
    OpenOptions options;
    options.pager.journal_limit_bytes = 64 << 20;
    CreateOptions create;
    create.format = &format;
    Database::create(kHostilePath, create)->close();
    const auto database = Database::open(kHostilePath, options);
    {
        Transaction transaction(database->pager());
        hostile.make(*database);
        transaction.commit();
    }
    database->pager().sync_point();
    return memory.disk.content(kHostilePath);
}

void order_by_text(Database& database) {
    sql::RowSet rows(sql::Query::prepare(database, u"SELECT * FROM T ORDER BY Name"));
    rows.first();
}

class HostileCost : public ::testing::TestWithParam<const Format*> {};

INSTANTIATE_TEST_SUITE_P(Formats, HostileCost, ::testing::Values(&kJet4, &kJet3),
                         [](const auto& test) { return std::string(test.param->is_jet3() ? "Jet3" : "Jet4"); });

TEST_P(HostileCost, file_made_to_be_expensive_is_read_and_checked_within_bounds) {
    for (const Hostile& hostile : kHostileFiles) {
        SCOPED_TRACE(hostile.name);
        const ByteVector file = file_of(hostile, *GetParam());
        MemoryDisk memory;
        memory.disk.set_content(kHostilePath, file);
        const double seconds_allowed = kSlowness * (2 + static_cast<double>(file.size()) / (10 * kMegabyte));
        for (const bool damage_passed_over : {false, true}) {
            reset_peak_allocation();
            const std::clock_t begin = std::clock();
            OpenOptions options;
            options.read_only = true;
            int places = 0;
            if (damage_passed_over) options.on_damage = [&](const DamagedPlace&) { ++places; };
            error_number([&] {
                const auto database = Database::open(kHostilePath, options);
                read_everything(*database);
                error_number([&] { order_by_text(*database); });
            });
            const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
            EXPECT_LT(seconds, seconds_allowed) << damage_passed_over;
            EXPECT_LT(peak_allocation(), 8 * file.size() + (64u << 20)) << damage_passed_over;
            if (std::getenv("KVDB_SHOW_COST")) {
                std::printf("%-40s %6.2f MB  %6.3f s  %7.2f MB  %d places\n", hostile.name.c_str(),
                            static_cast<double>(file.size()) / kMegabyte, seconds,
                            static_cast<double>(peak_allocation()) / kMegabyte, places);
            }
        }
    }
}

}  // namespace
}  // namespace jet

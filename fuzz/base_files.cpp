#include "fuzz/base_files.h"

#include <map>
#include <stdexcept>
#include <string>

#include "jet/indexes/index.h"
#include "jet/storage/data_page.h"
#include "jet/tables/database.h"
#include "tests/jet/exercise.h"
#include "tests/jet/new_column.h"
#include "tests/jet/sparse_file_system.h"
#include "tests/support/fault_file_system.h"

namespace kvdb_fuzz {

using namespace jet;
using enum ColumnType;

namespace {

constexpr char kBasePath[] = "base.mdb";

// Adds an index to a table, as another program would: the engine creates none for user tables.
void add_index(Database& database, std::u16string_view table_name, std::vector<KeyColumn> columns) {
    TableDef def = database.find_table(table_name)->def();
    Transaction transaction(database.pager());
    const MutablePage root = database.allocator().allocate();
    Index::format_root(root, def.page);
    RealIndex index;
    index.columns = std::move(columns);
    index.root = root.number();
    PageNumber maps = def.owned_map.page;
    index.map = database.allocator().create_map(&maps, root.number());
    def.real_indexes.push_back(index);
    LogicalIndex name;
    name.name = u"Order";
    def.logical_indexes.push_back(name);
    const Format& format = database.pager().format();
    const ByteVector bytes = build_table_def(def);
    const MutablePage page = database.pager().modify(def.page);
    store_bytes(page.bytes(), 0, bytes);
    if (format.definition.free != 0) {
        store_u16(page.bytes(), format.definition.free,
                  static_cast<std::uint16_t>(format.page_size - bytes.size() - jet4::tdef::kPageHeader));
    }
    transaction.commit();
}

void fill(Table& table, std::int32_t count) {
    std::vector<RowId> rows;
    for (std::int32_t i = 0; i < count; ++i) {
        const std::size_t length = i % 7 == 5 ? 5000 : i % 3 == 1 ? 90 : static_cast<std::size_t>(i);
        std::vector<Value> values(table.def().columns.size());
        for (std::size_t at = 0; at < values.size(); ++at) {
            switch (table.def().columns[at].type) {
                case kBoolean: values[at] = i % 2 == 0; break;
                case kByte: values[at] = static_cast<std::uint8_t>(i); break;
                case kInteger: values[at] = static_cast<std::int16_t>(i); break;
                case kLong:
                    if (!table.def().columns[at].is_autonumber()) values[at] = i * 3 % 11;
                    break;
                case kCurrency: values[at] = Currency{i * 1000}; break;
                case kSingle: values[at] = static_cast<float>(i); break;
                case kDouble: values[at] = i / 3.0; break;
                case kDate: values[at] = Date{38000.0 + i}; break;
                case kText: values[at] = std::u16string(static_cast<std::size_t>(i) * 9 % 60, u't'); break;
                case kMemo: values[at] = std::u16string(length, u'm'); break;
                case kOle: values[at] = ByteVector(length, static_cast<std::uint8_t>(i)); break;
                default: break;
            }
        }
        rows.push_back(table.insert(std::move(values)));
    }
    const auto text = table.def().find_column(u"Title");
    for (std::size_t i = 0; text && i < rows.size(); i += 4) {
        const ColumnChange change{*text, std::u16string(250, u'w')};
        table.update(rows[i], {&change, 1});
    }
    for (std::size_t i = 1; i < rows.size(); i += 5) table.erase(rows[i]);
}

template <class Work>
ByteVector file_after(const TestedFile& file, Work&& work) {
    testing_support::FaultFileSystem disk;
    const testing_support::UseFileSystem use(disk);
    auto database = Database::create(kBasePath, file.create_options());
    work(*database);
    database->close();
    return disk.content(kBasePath);
}

ByteVector file_of_every_kind(const TestedFile& file) {
    return file_after(file, [](Database& database) {
        const NewColumn columns[] = {
            new_column(u"Id", kLong, true), new_column(u"Flag", kBoolean),   new_column(u"Small", kByte),
            new_column(u"Short", kInteger), new_column(u"Price", kCurrency), new_column(u"Single", kSingle),
            new_column(u"Double", kDouble), new_column(u"Day", kDate),       new_column(u"Title", kText),
            new_column(u"Notes", kMemo),    new_column(u"Picture", kOle),    new_column(u"Count", kLong)};
        database.create_table(u"Rich", columns);
        database.delete_column(u"Rich", u"Double");
        database.add_column(u"Rich", new_column(u"Later", kText));
        const NewColumn plain[] = {new_column(u"Number", kLong), new_column(u"Done", kBoolean),
                                   new_column(u"Title", kText)};
        database.create_table(u"Plain", plain);
        add_index(database, u"Plain", {{0, true}, {2, false}});
        database.close();
        const auto again = Database::open(kBasePath, {});
        fill(*again->find_table(u"Rich"), 14);
        fill(*again->find_table(u"Plain"), 30);
        again->close();
    });
}

ByteVector file_of_large_structures(const TestedFile& file) {
    return file_after(file, [](Database& database) {
        std::vector<NewColumn> many;
        for (std::size_t i = 0; i < 60; ++i) {
            many.push_back(
                new_column(from_utf8(std::to_string(i)) + u" a column of a long name", i % 3 ? kLong : kText));
        }
        database.create_table(u"Wide", many);
        const NewColumn one[] = {new_column(u"Id", kLong)};
        // Names that have nothing in common at their beginning and two bytes a letter in the catalogue's index.
        for (int i = 0; i < 30; ++i)
            database.create_table(from_utf8(std::to_string(i)) + std::u16string(60, u'\u00E9'), one);
        const Table& wide = *database.find_table(u"Wide");
        Transaction transaction(database.pager());
        UsageMap map(database.pager(), database.allocator(), wide.def().free_map);
        // Too far apart for a window: the map switches to bitmap pages.
        for (const PageNumber page : {20u, 2000u}) map.add(page);
        for (const PageNumber page : {20u, 2000u}) map.remove(page);
        transaction.commit();
        fill(*database.find_table(u"Wide"), 6);
    });
}

// Damage to a structure that no base file has would never be tried.
void require_page(ByteVector file, const FileKind& kind, std::uint8_t page_kind) {
    code_pages(file, kind);
    for (std::size_t at = kind.format->page_size; at < file.size(); at += kind.format->page_size) {
        if (file[at] == page_kind) return;
    }
    throw std::logic_error("a base file has no page of kind " + std::to_string(page_kind));
}

}  // namespace

const ByteVector& smallest_file(const TestedFile& file) {
    static std::map<std::string, ByteVector> files;
    ByteVector& known = files[file.name];
    if (known.empty()) {
        known = file_after(file, [](Database& database) {
            const NewColumn columns[] = {new_column(u"Id", kLong, true), new_column(u"Title", kText),
                                         new_column(u"Notes", kMemo)};
            database.create_table(u"Small", columns);
            fill(*database.find_table(u"Small"), 6);
        });
    }
    return known;
}

const std::vector<ByteVector>& base_files(const TestedFile& file) {
    static std::map<std::string, std::vector<ByteVector>> files;
    std::vector<ByteVector>& known = files[file.name];
    if (known.empty()) {
        known = {file_of_every_kind(file), file_of_large_structures(file), file_after(file, [](Database&) {})};
        for (const std::uint8_t page_kind : {jet4::kIndexNodePage, jet4::kUsageBitmapPage}) {
            require_page(known[1], file.kind, page_kind);
        }
    }
    return known;
}

}  // namespace kvdb_fuzz

#include "tests/jet/exercise.h"

#include "jet/check/check.h"
#include "jet/pages/page_cipher.h"
#include "tests/jet/new_column.h"
#include "tests/support/fault_file_system.h"

namespace jet {
namespace {

using enum ColumnType;

// The engine's number of what `work` throws, 0 for nothing.
template <class Work>
int attempt(Work&& work) {
    try {
        work();
        return 0;
    } catch (const Error& error) {
        return error.number();
    }
}

// A value for a column, of a size that `n` decides.
Value some_value(const ColumnDef& column, std::size_t n) {
    const std::size_t wide = column.code_page != 0 ? 0xC0 + n % 60 : 0x4e00 + n;
    const auto letter = static_cast<char16_t>(n % 2 ? u'a' + n % 26 : wide);
    switch (column.type) {
        case kBoolean: return n % 2 == 0;
        case kByte: return static_cast<std::uint8_t>(n);
        case kInteger: return static_cast<std::int16_t>(n);
        case kLong:
        case kComplexId: return static_cast<std::int32_t>(n);
        case kCurrency: return Currency{static_cast<std::int64_t>(n) * 12345};
        case kSingle: return static_cast<float>(n);
        case kDouble: return static_cast<double>(n) / 3;
        case kDate: return Date{30000.5 + static_cast<double>(n)};
        case kText: return std::u16string(std::min<std::size_t>(n % 120, column.most_characters()), letter);
        case kMemo: return std::u16string(n * n * 3 % 3001, letter);
        case kOle: return ByteVector(n * n * 7 % 5003, static_cast<std::uint8_t>(n));
        case kGuid: return Guid{};
        case kNumeric: return Numeric{};
        case kBinary:
            return ByteVector(std::min<std::size_t>(n % 50, column.length_bytes), static_cast<std::uint8_t>(n));
        case kFixedBinary: break;
    }
    return Null{};
}

std::vector<Value> some_row(const Table& table, std::size_t n) {
    std::vector<Value> values;
    for (const ColumnDef& column : table.def().columns) {
        values.push_back(column.is_autonumber() || (n + column.number) % 7 == 0 ? Value{} : some_value(column, n));
    }
    return values;
}

void add_rows(Table& table, std::size_t first, std::size_t count) {
    for (std::size_t n = first; n < first + count; ++n) table.insert(some_row(table, n));
}

std::vector<RowId> rows_of(const Table& table) {
    std::vector<RowId> rows;
    for (auto row = table.next_row({}); row; row = table.next_row(*row)) rows.push_back(*row);
    return rows;
}

std::size_t read_table(const Table& table) {
    std::size_t read = 0;
    RowView view;
    for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
        attempt([&] {
            if (!table.read(*row, view)) return;
            for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
                if (attempt([&] { view.value(i); }) == 0) ++read;
            }
        });
    }
    return read;
}

void change_table(Table& table) {
    attempt([&] { add_rows(table, 40, 2); });
    std::vector<RowId> rows;
    attempt([&] { rows = rows_of(table); });
    if (rows.empty()) return;
    for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
        const ColumnDef& column = table.def().columns[i];
        if (column.is_autonumber()) continue;
        const ColumnChange change{i, some_value(column, 90 + i)};
        attempt([&] { table.update(rows[i % rows.size()], {&change, 1}); });
    }
    attempt([&] { table.column_map(0); });
    attempt([&] { table.erase(rows.back()); });
    attempt([&] { table.erase(rows.front()); });
}

}  // namespace

ByteVector make_rich_file(const TestedFile& file) {
    testing_support::FaultFileSystem disk;
    const testing_support::UseFileSystem use(disk);
    constexpr char kPath[] = "rich.mdb";
    auto database = Database::create(kPath, file.create_options());
    const NewColumn columns[] = {
        new_column(u"Id", kLong, true), new_column(u"Flag", kBoolean),   new_column(u"Small", kByte),
        new_column(u"Short", kInteger), new_column(u"Price", kCurrency), new_column(u"Single", kSingle),
        new_column(u"Double", kDouble), new_column(u"Day", kDate),       new_column(u"Title", kText),
        new_column(u"Notes", kMemo),    new_column(u"Picture", kOle),    new_column(u"Count", kLong)};
    database->create_table(u"Rich", columns);
    Table& rich = *database->find_table(u"Rich");
    add_rows(rich, 0, 30);
    const std::vector<RowId> rows = rows_of(rich);
    for (std::size_t i = 0; i < rows.size(); i += 3) {
        const ColumnChange change{8, std::u16string(255, u'w')};  // moves away
        rich.update(rows[i], {&change, 1});
    }
    for (std::size_t i = 1; i < rows.size(); i += 5) rich.erase(rows[i]);
    database->delete_column(u"Rich", u"Double");
    database->add_column(u"Rich", new_column(u"Later", kText));
    add_rows(rich, 50, 10);
    const NewColumn plain[] = {new_column(u"Number", kLong), new_column(u"Done", kBoolean)};
    database->create_table(u"Plain", plain);
    add_rows(*database->find_table(u"Plain"), 0, 300);
    std::vector<NewColumn> many;
    for (std::size_t i = 0; i < 60; ++i) {
        const std::u16string name = from_utf8(std::to_string(i)) + u" is the number of a column with a long name";
        many.push_back(new_column(name, i % 2 ? kText : kLong));
    }
    database->create_table(u"Wide", many);  // its definition needs more than one page
    add_rows(*database->find_table(u"Wide"), 0, 3);
    database->close();
    return disk.content(kPath);
}

void code_pages(ByteVector& file, const FileKind& kind) {
    const PageCipher cipher(kind.encryption_key);
    const std::size_t bytes = kind.format->page_size;
    for (std::size_t i = 0; (i + 1) * bytes <= file.size(); ++i) {
        cipher.apply(static_cast<PageNumber>(i), MutableByteSpan(file).subspan(i * bytes, bytes));
    }
}

std::size_t read_rows(Database& database) {
    std::size_t read = 0;
    for (PageNumber page = jet4::kObjectsPage; page <= jet4::kRelationshipsPage; ++page) {
        attempt([&] {
            if (const Table* table = database.table_by_page(page)) read += read_table(*table);
        });
    }
    for (const std::u16string& name : database.table_names()) {
        attempt([&] {
            if (const Table* table = database.find_table(name)) read += read_table(*table);
        });
    }
    return read;
}

std::size_t read_everything(Database& database) {
    const std::size_t read = read_rows(database);
    check_structure(database);
    return read;
}

void change_a_little(Database& database) {
    const std::vector<std::u16string> names = database.table_names();
    for (const std::u16string& name : names) {
        attempt([&] {
            if (Table* table = database.find_table(name)) change_table(*table);
        });
    }
    const NewColumn columns[] = {new_column(u"A", kLong, true), new_column(u"B", kMemo)};
    attempt([&] { database.create_table(u"Made later", columns); });
    attempt([&] {
        if (Table* table = database.find_table(u"Made later")) add_rows(*table, 0, 3);
    });
    for (const std::u16string& name : names) {
        attempt([&] { database.add_column(name, new_column(u"Added later", kMemo)); });
        attempt([&] {
            const Table* table = database.find_table(name);
            if (table) database.delete_column(name, table->def().columns.front().name);
        });
    }
    attempt([&] { database.change_password(u"", u"secret"); });
}

int read_file(const std::string& path) {
    OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    return attempt([&] {
        const auto database = Database::open(path, options);
        read_everything(*database);
        database->close();
    });
}

int change_file(const std::string& path) {
    OpenOptions options;
    options.ignore_password = true;
    options.pager.journal_limit_bytes = 256 * 1024;  // a disk in memory holds it
    return attempt([&] {
        const auto database = Database::open(path, options);
        change_a_little(*database);
        read_everything(*database);
        database->close();
    });
}

}  // namespace jet

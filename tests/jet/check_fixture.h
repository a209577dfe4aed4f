// A file with everything a file can have, the way to its parts, and the rules of the structural check that it breaks.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/indexes/index_page.h"
#include "jet/tables/database.h"
#include "support/temp_folder.h"

namespace jet {

namespace data = jet4::data;
namespace fs = std::filesystem;

using Rules = std::set<std::string>;

inline ByteVector read_whole(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

inline void write_whole(const fs::path& path, ByteSpan bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// A slot of a data page, as it stands there.
struct RawSlot {
    std::size_t entry_at = 0;  // of the slot itself, in the file
    std::size_t begin = 0;     // of the row, in the file
    std::size_t length = 0;
    std::uint16_t flags = 0;
};

// The bytes of one file with everything a file can have, and the way to its parts.
class Subject {
public:
    explicit Subject(ByteVector content) : bytes(std::move(content)) {}

    std::size_t at(PageNumber page, std::size_t offset) const { return page * jet4::kPageSize + offset; }
    ByteSpan page(PageNumber page_no) const { return slice(bytes, at(page_no, 0), jet4::kPageSize); }

    RawSlot slot(RowId row) const {
        RawSlot found;
        found.entry_at = at(row.page, data::kSlots + 2u * row.slot);
        const std::uint16_t raw = load_u16(bytes, found.entry_at);
        const std::size_t end =
            row.slot == 0 ? jet4::kPageSize : load_u16(bytes, found.entry_at - 2) & data::kOffsetMask;
        found.flags = raw & data::kDeletedFlags;
        found.begin = at(row.page, raw & data::kOffsetMask);
        found.length = at(row.page, end) - found.begin;
        return found;
    }
    std::vector<RowId> rows(PageNumber page_no, std::uint16_t flags) const {
        std::vector<RowId> found;
        for (std::size_t i = 0; i < load_u16(page(page_no), data::kSlotCount); ++i) {
            const RowId row{page_no, static_cast<std::uint8_t>(i)};
            if (slot(row).flags == flags) found.push_back(row);
        }
        return found;
    }
    void set_flags(RowId row, std::uint16_t flags) {
        const std::size_t entry_at = slot(row).entry_at;
        store_u16(bytes, entry_at, (load_u16(bytes, entry_at) & data::kOffsetMask) | flags);
    }
    // Pages of an inline map.
    std::vector<PageNumber> map(RowId row) const {
        const RawSlot raw = slot(row);
        std::vector<PageNumber> pages;
        for (std::size_t bit = 0; bit < 8 * (raw.length - 5); ++bit) {
            if ((bytes[raw.begin + 5 + bit / 8] >> (bit % 8) & 1) == 0) continue;
            pages.push_back(load_u32(bytes, raw.begin + 1) + static_cast<PageNumber>(bit));
        }
        return pages;
    }
    // A bit of an inline map, or of the global one in either form.
    void set_map_bit(RowId row, PageNumber page_no, bool on) {
        const RawSlot raw = slot(row);
        std::size_t bits = raw.begin + 5;
        std::size_t bit = page_no - load_u32(bytes, raw.begin + 1);
        if (bytes[raw.begin] == jet4::usage::kReference) {
            bits = at(load_u32(bytes, raw.begin + 1), jet4::usage::kPagePrefix);
            bit = page_no;
        }
        const auto mask = static_cast<std::uint8_t>(1u << (bit % 8));
        std::uint8_t& byte = bytes[bits + bit / 8];
        byte = static_cast<std::uint8_t>(on ? byte | mask : byte & ~mask);
    }
    void set_free(PageNumber page_no, bool on) { set_map_bit({jet4::kGlobalMapPage, 0}, page_no, on); }
    TableDef def(PageNumber page_no) const { return parse_table_def(page(page_no), page_no); }
    // Where a column's record stands in the file.
    std::size_t column_record(PageNumber table, std::u16string_view name) const {
        const TableDef found = def(table);
        const std::uint16_t number = found.columns[found.find_column(name).value()].number;
        std::size_t record =
            at(table, jet4::tdef::kFixedHeader + found.real_indexes.size() * jet4::tdef::kIndexStatistics);
        while (load_u16(bytes, record + jet4::tdef::column::kNumber) != number) record += jet4::tdef::kColumnRecord;
        return record;
    }
    std::uint32_t page_count() const { return static_cast<std::uint32_t>(bytes.size() / jet4::kPageSize); }

    ByteVector bytes;
};

class StructureCheck : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const testing_support::TempFolder folder;
        const std::string path = folder.file("sound.mdb");
        auto database = Database::create(path, {});
        const std::vector<NewColumn> columns{{u"Id", ColumnType::kLong},   {u"Text", ColumnType::kText, 255},
                                             {u"When", ColumnType::kDate}, {u"Memo", ColumnType::kMemo},
                                             {u"Thing", ColumnType::kOle}, {u"Yes", ColumnType::kBoolean}};
        database->create_table(u"Main", columns);
        database->create_table(u"Other", columns);
        // Enough names for the catalogue's index of names to have a node above its leaves.
        const std::vector<NewColumn> one{{u"Id", ColumnType::kLong}};
        for (int i = 0; i < 90; ++i) {
            std::u16string name(50, u'n');
            for (const char c : std::to_string(i)) name.push_back(static_cast<char16_t>(c));
            database->create_table(name, one);
        }
        fill(*database->find_table(u"Main"));
        fill(*database->find_table(u"Other"));
        main_ = database->find_table(u"Main")->def().page;
        other_ = database->find_table(u"Other")->def().page;
        database->close();
        sound_ = read_whole(path);
    }

    static void fill(Table& table) {
        std::vector<RowId> rows;
        for (std::int32_t i = 0; i < 60; ++i) {
            rows.push_back(table.insert({Value{i}, Value{std::u16string(40, u'a')}, Value{Date{40000.5}},
                                         Value{std::u16string(100u + i, u'm')}, Value{}, Value{i % 2 == 0}}));
        }
        table.insert({Value{1000}, Value{}, Value{}, Value{std::u16string(9000, u'x')}, Value{}, Value{true}});
        const ByteVector object(300, 7);
        table.insert({Value{1001}, Value{}, Value{}, Value{}, Value{object}, Value{true}});
        table.insert({Value{1002}, Value{}, Value{}, Value{std::u16string(u"ab")}, Value{}, Value{true}});
        const std::vector<ColumnChange> longer{{1, Value{std::u16string(255, 0x416)}}};
        for (std::size_t i = 0; i < 60; i += 3) table.update(rows[i], longer);
        for (std::size_t i = 1; i < 60; i += 9) table.erase(rows[i]);
    }

    void SetUp() override { subject_ = std::make_unique<Subject>(sound_); }

    std::vector<Violation> check(ByteSpan bytes) {
        const fs::path path = folder_.file("subject.mdb");
        write_whole(path, bytes);
        OpenOptions options;
        options.read_only = true;
        auto database = Database::open(path.string(), options);
        return check_structure(*database);
    }
    // The rules that the subject breaks.
    Rules broken() {
        Rules rules;
        for (const Violation& violation : check(subject_->bytes)) {
            rules.insert(violation.rule);
            EXPECT_FALSE(violation.detail.empty());
        }
        return rules;
    }

    ByteVector& bytes() { return subject_->bytes; }
    Subject& subject() { return *subject_; }
    // Pages of the main table's rows.
    std::vector<PageNumber> row_pages() { return subject().map(subject().def(main_).owned_map); }
    std::vector<RowId> main_rows(std::uint16_t flags) {
        std::vector<RowId> found;
        for (const PageNumber page_no : row_pages()) {
            for (const RowId row : subject().rows(page_no, flags)) found.push_back(row);
        }
        return found;
    }
    void change_row_count(std::int32_t by) {
        const std::size_t at = subject().at(main_, jet4::tdef::kRowCount);
        store_u32(bytes(), at, load_u32(bytes(), at) + static_cast<std::uint32_t>(by));
    }
    // The reference of the memo in a row that has one of that kind, in the file.
    std::vector<std::size_t> memo_references(std::uint32_t kind) {
        const TableDef def = subject().def(main_);
        const ColumnDef& memo = def.columns[def.find_column(u"Memo").value()];
        std::vector<std::size_t> found;
        std::vector<RowId> rows = main_rows(0);
        for (const RowId row : main_rows(data::kBodyFlag)) rows.push_back(row);
        for (const RowId row : rows) {
            const RawSlot raw = subject().slot(row);
            const ByteSpan content = slice(bytes(), raw.begin, raw.length);
            const std::size_t mask = raw.length - (load_u16(content, 0) + 7u) / 8;
            const std::size_t begin = load_u16(content, mask - 2 - 2 * (memo.variable_index + 1u));
            const std::size_t end = load_u16(content, mask - 2 - 2 * (memo.variable_index + 2u));
            if (begin == end) continue;
            const std::uint32_t head = load_u32(content, begin);
            if ((head & jet4::long_value::kKindMask) == kind) found.push_back(raw.begin + begin);
        }
        return found;
    }
    const RealIndex& objects_index(std::size_t columns) {
        objects_ = subject().def(jet4::kObjectsPage);
        for (const RealIndex& index : objects_.real_indexes) {
            if (index.columns.size() == columns) return index;
        }
        throw std::logic_error("no such index");
    }
    PageNumber id_root() { return objects_index(1).root; }
    PageNumber name_root() { return objects_index(2).root; }
    IndexPage index_page(PageNumber page_no) {
        return IndexPage::parse(subject().page(page_no), page_no, jet4::kObjectsPage);
    }
    void write_index_page(PageNumber page_no, const IndexPage& page) {
        page.write(MutableByteSpan(bytes()).subspan(subject().at(page_no, 0), jet4::kPageSize));
    }

    static inline ByteVector sound_;
    static inline PageNumber main_ = 0;
    static inline PageNumber other_ = 0;
    testing_support::TempFolder folder_;
    std::unique_ptr<Subject> subject_;
    TableDef objects_;
};

}  // namespace jet

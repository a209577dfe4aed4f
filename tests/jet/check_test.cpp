// Every rule of the structural check: silent on a sound file, and naming exactly the damage done to one.
#include "jet/check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>

#include "jet/index_page.h"

namespace {

using namespace jet;
namespace data = jet4::data;
namespace fs = std::filesystem;

using Rules = std::set<std::string>;

ByteVector read_whole(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

void write_whole(const fs::path& path, ByteSpan bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

class TempFolder {
public:
    TempFolder() : path_(fs::temp_directory_path() / ("kvdb_check_" + std::to_string(std::random_device{}()))) {
        fs::create_directory(path_);
    }
    ~TempFolder() { fs::remove_all(path_); }
    fs::path file(const char* name) const { return path_ / name; }

private:
    fs::path path_;
};

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
        const TempFolder folder;
        const std::string path = folder.file("sound.mdb").string();
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
    TempFolder folder_;
    std::unique_ptr<Subject> subject_;
    TableDef objects_;
};

TEST_F(StructureCheck, sound_file_breaks_no_rule) {
    for (const Violation& violation : check(sound_)) {
        ADD_FAILURE() << "page " << violation.page << " row " << violation.row << " " << violation.rule << ": "
                      << violation.detail;
    }
    // What the other cases need is there.
    EXPECT_GT(main_rows(data::kMovedFlag).size(), 1u);
    EXPECT_GT(memo_references(jet4::long_value::kSingle).size(), 1u);
    EXPECT_EQ(memo_references(0).size(), 1u);
    EXPECT_FALSE(index_page(name_root()).is_leaf());
}

TEST_F(StructureCheck, file_of_broken_size_is_named) {
    bytes().resize(bytes().size() + 100);
    EXPECT_EQ(broken(), Rules{"file-size"});
}

// --- pages and maps ---------------------------------------------------------------------------------------

TEST_F(StructureCheck, leaked_page_is_named) {
    const PageNumber page_no = subject().page_count();
    bytes().resize(bytes().size() + jet4::kPageSize);
    EXPECT_EQ(broken(), Rules{});
    subject().set_free(page_no, false);
    EXPECT_EQ(broken(), Rules{"page-leaked"});
}

TEST_F(StructureCheck, used_page_marked_free_is_named) {
    subject().set_free(row_pages().front(), true);
    EXPECT_EQ(broken(), Rules{"page-free"});
}

TEST_F(StructureCheck, page_of_two_tables_is_named) {
    subject().set_map_bit(subject().def(other_).owned_map, row_pages().front(), true);
    EXPECT_EQ(broken(), Rules{"page-twice"});
}

TEST_F(StructureCheck, definition_chain_behind_the_end_is_named) {
    store_u32(bytes(), subject().at(main_, jet4::tdef::kNext), 0x00FFFFFF);
    EXPECT_EQ(broken(), Rules{"page-range"});
}

TEST_F(StructureCheck, definition_chain_in_a_circle_is_named) {
    store_u32(bytes(), subject().at(main_, jet4::tdef::kNext), main_);
    EXPECT_EQ(broken(), Rules{"page-twice"});
}

TEST_F(StructureCheck, map_behind_the_end_is_named) {
    subject().set_map_bit(subject().def(main_).owned_map, subject().page_count() + 3, true);
    EXPECT_EQ(broken(), Rules{"map-range"});
}

TEST_F(StructureCheck, map_of_unknown_kind_is_named) {
    bytes()[subject().slot(subject().def(main_).owned_map).begin] = 7;
    EXPECT_EQ(broken(), Rules{"map"});
}

TEST_F(StructureCheck, map_that_belongs_to_nothing_is_named) {
    store_u32(bytes(), subject().at(main_, jet4::tdef::kFreeMap), 0);
    EXPECT_EQ(broken(), Rules{"map-row-lost"});
}

TEST_F(StructureCheck, map_used_twice_is_named) {
    const TableDef def = subject().def(main_);
    store_u32(bytes(), subject().at(main_, jet4::tdef::kFreeMap), def.owned_map.pack());
    EXPECT_EQ(broken(), (Rules{"map-row-twice", "map-row-lost"}));
}

TEST_F(StructureCheck, free_space_map_beyond_owned_pages_is_named) {
    subject().set_map_bit(subject().def(main_).free_map, 3, true);
    EXPECT_EQ(broken(), Rules{"free-map"});
}

TEST_F(StructureCheck, free_space_map_of_long_values_beyond_owned_pages_is_named) {
    const TableDef def = subject().def(main_);
    subject().set_map_bit(def.columns[def.find_column(u"Memo").value()].free_map, 3, true);
    EXPECT_EQ(broken(), Rules{"free-map"});
}

// --- data pages -------------------------------------------------------------------------------------------

TEST_F(StructureCheck, too_many_slots_are_named) {
    store_u16(bytes(), subject().at(row_pages().front(), data::kSlotCount), 300);
    EXPECT_EQ(broken(), Rules{"slot-count"});
}

TEST_F(StructureCheck, increasing_slot_offset_is_named) {
    const std::size_t at = subject().at(row_pages().front(), data::kSlots + 4);
    store_u16(bytes(), at, jet4::kPageSize);
    EXPECT_EQ(broken(), Rules{"slot-order"});
}

TEST_F(StructureCheck, wrong_free_count_is_named) {
    const std::size_t at = subject().at(row_pages().front(), data::kFree);
    store_u16(bytes(), at, static_cast<std::uint16_t>(load_u16(bytes(), at) + 1));
    EXPECT_EQ(broken(), Rules{"page-free-count"});
}

TEST_F(StructureCheck, owned_page_of_wrong_kind_is_named) {
    bytes()[subject().at(row_pages().front(), 0)] = jet4::kIndexLeafPage;
    EXPECT_EQ(broken(), Rules{"row-page"});
}

TEST_F(StructureCheck, owned_page_of_wrong_owner_is_named) {
    store_u32(bytes(), subject().at(row_pages().front(), data::kOwner), other_);
    EXPECT_EQ(broken(), Rules{"row-page"});
}

TEST_F(StructureCheck, wrong_row_count_is_named) {
    change_row_count(1);
    EXPECT_EQ(broken(), Rules{"row-count"});
}

TEST_F(StructureCheck, row_leaving_its_bounds_is_named) {
    const std::size_t begin = subject().slot(main_rows(0).front()).begin;
    store_u16(bytes(), begin, 0x0FFF);
    EXPECT_EQ(broken(), Rules{"row-bounds"});
}

TEST_F(StructureCheck, moved_row_pointer_to_nowhere_is_named) {
    const std::size_t begin = subject().slot(main_rows(data::kMovedFlag).front()).begin;
    store_u32(bytes(), begin, RowId{row_pages().front(), 200}.pack());
    EXPECT_EQ(broken(), Rules{"moved-row-pointer"});
}

TEST_F(StructureCheck, moved_row_without_pointer_is_named) {
    const std::size_t begin = subject().slot(main_rows(data::kMovedFlag).front()).begin;
    const RowId body = RowId::unpack(load_u32(bytes(), begin));
    // The value of the moved row is lost with it in the eyes of nobody: the body still refers to it.
    subject().set_flags(main_rows(data::kMovedFlag).front(), data::kDeletedFlags);
    change_row_count(-1);
    const std::vector<Violation> found = check(bytes());
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].rule, "moved-row-lost");
    EXPECT_EQ((RowId{found[0].page, static_cast<std::uint8_t>(found[0].row)}), body);
}

TEST_F(StructureCheck, moved_row_with_two_pointers_is_named) {
    const std::vector<RowId> moved = main_rows(data::kMovedFlag);
    const std::uint32_t first = load_u32(bytes(), subject().slot(moved[0]).begin);
    store_u32(bytes(), subject().slot(moved[1]).begin, first);
    EXPECT_EQ(broken(), (Rules{"moved-row-twice", "moved-row-lost"}));
}

// --- long values ------------------------------------------------------------------------------------------

TEST_F(StructureCheck, long_reference_to_nowhere_is_named) {
    const std::size_t at = memo_references(0).front();
    store_u32(bytes(), at + 4, RowId{row_pages().front(), 0}.pack());
    EXPECT_EQ(broken(), (Rules{"long-reference", "long-lost"}));
}

TEST_F(StructureCheck, long_reference_of_unknown_kind_is_named) {
    const std::size_t at = memo_references(jet4::long_value::kInline).front();
    bytes()[at + 3] = 0xC0;
    EXPECT_EQ(broken(), Rules{"long-reference"});
}

TEST_F(StructureCheck, long_value_of_wrong_length_is_named) {
    for (const std::uint32_t kind : {jet4::long_value::kInline, jet4::long_value::kSingle, std::uint32_t{0}}) {
        subject_ = std::make_unique<Subject>(sound_);
        const std::size_t at = memo_references(kind).front();
        store_u32(bytes(), at, load_u32(bytes(), at) + 1);
        EXPECT_EQ(broken(), Rules{"long-length"}) << kind;
    }
}

TEST_F(StructureCheck, long_value_used_twice_is_named) {
    const std::vector<std::size_t> references = memo_references(jet4::long_value::kSingle);
    store_u32(bytes(), references[1] + 4, load_u32(bytes(), references[0] + 4));
    EXPECT_EQ(broken(), (Rules{"long-twice", "long-lost"}));
}

TEST_F(StructureCheck, long_value_in_a_circle_is_named) {
    const std::size_t at = memo_references(0).front();
    const RowId first = RowId::unpack(load_u32(bytes(), at + 4));
    store_u32(bytes(), subject().slot(first).begin, first.pack());
    EXPECT_EQ(broken(), (Rules{"long-twice", "long-lost"}));
}

TEST_F(StructureCheck, long_value_nobody_refers_to_is_named) {
    for (const RowId row : main_rows(0)) {
        // The row with an object: the only one without text and memo.
        if (load_u32(bytes(), subject().slot(row).begin + 2) != 1001) continue;
        subject().set_flags(row, data::kDeletedFlags);
    }
    change_row_count(-1);
    EXPECT_EQ(broken(), Rules{"long-lost"});
}

TEST_F(StructureCheck, wrong_stamp_of_a_chain_is_named) {
    const std::size_t at = memo_references(0).front();
    const RowId first = RowId::unpack(load_u32(bytes(), at + 4));
    const std::size_t stamp = subject().at(first.page, data::kStamp);
    store_u32(bytes(), stamp, load_u32(bytes(), stamp) + 1);
    EXPECT_EQ(broken(), Rules{"long-stamp"});
}

TEST_F(StructureCheck, long_value_page_of_wrong_owner_is_named) {
    const TableDef def = subject().def(main_);
    const RowId map = def.columns[def.find_column(u"Thing").value()].owned_map;
    store_u32(bytes(), subject().at(subject().map(map).front(), data::kOwner), main_);
    EXPECT_EQ(broken(), Rules{"long-page"});
}

// --- definitions ------------------------------------------------------------------------------------------

TEST_F(StructureCheck, column_number_out_of_range_is_named) {
    store_u16(bytes(), subject().column_record(main_, u"When") + jet4::tdef::column::kNumber, 99);
    EXPECT_EQ(broken(), Rules{"table-definition"});
}

TEST_F(StructureCheck, variable_index_out_of_range_is_named) {
    store_u16(bytes(), subject().column_record(main_, u"Text") + jet4::tdef::column::kVariableIndex, 99);
    EXPECT_EQ(broken(), Rules{"table-definition"});
}

TEST_F(StructureCheck, overlapping_fixed_columns_are_named) {
    store_u16(bytes(), subject().column_record(main_, u"When") + jet4::tdef::column::kFixedOffset, 2);
    EXPECT_EQ(broken(), Rules{"fixed-overlap"});
}

TEST_F(StructureCheck, definition_longer_than_its_pages_is_named) {
    store_u32(bytes(), subject().at(main_, jet4::tdef::kLength), 5000);
    store_u16(bytes(), subject().at(main_, jet4::tdef::kFree), 0);
    EXPECT_EQ(broken(), Rules{"definition-length"});
}

TEST_F(StructureCheck, definition_page_behind_its_end_is_named) {
    const PageNumber page_no = subject().page_count();
    bytes().resize(bytes().size() + jet4::kPageSize);
    subject().set_free(page_no, false);
    bytes()[subject().at(page_no, 0)] = jet4::kTableDefPage;
    store_u32(bytes(), subject().at(main_, jet4::tdef::kNext), page_no);
    EXPECT_EQ(broken(), Rules{"definition-length"});
}

TEST_F(StructureCheck, wrong_free_count_of_a_definition_is_named) {
    const std::size_t at = subject().at(main_, jet4::tdef::kFree);
    store_u16(bytes(), at, static_cast<std::uint16_t>(load_u16(bytes(), at) - 8));
    EXPECT_EQ(broken(), Rules{"definition-free-count"});
}

// --- indexes ----------------------------------------------------------------------------------------------

TEST_F(StructureCheck, index_page_of_another_table_is_named) {
    store_u32(bytes(), subject().at(id_root(), jet4::index::kOwner), main_);
    EXPECT_EQ(broken(), Rules{"index-page"});
}

TEST_F(StructureCheck, index_page_of_wrong_free_count_is_named) {
    store_u16(bytes(), subject().at(id_root(), jet4::index::kFree), 1);
    EXPECT_EQ(broken(), Rules{"index-free-count"});
}

TEST_F(StructureCheck, index_entries_out_of_order_are_named) {
    const IndexPage page = index_page(id_root());
    IndexPage changed = page;
    changed.replace(3, page.entry(4));
    changed.replace(4, page.entry(3));
    write_index_page(id_root(), changed);
    EXPECT_EQ(broken(), Rules{"index-order"});
}

TEST_F(StructureCheck, index_key_other_than_its_rows_is_named) {
    IndexPage page = index_page(id_root());
    ByteVector entry(page.last_entry().begin(), page.last_entry().end());
    ++entry[1];
    page.replace(page.size() - 1, entry);
    write_index_page(id_root(), page);
    EXPECT_EQ(broken(), Rules{"index-key"});
}

TEST_F(StructureCheck, index_entry_without_row_is_named) {
    IndexPage page = index_page(id_root());
    ByteVector entry(page.last_entry().begin(), page.last_entry().end());
    entry.back() = 254;
    page.replace(page.size() - 1, entry);
    write_index_page(id_root(), page);
    EXPECT_EQ(broken(), (Rules{"index-entry", "index-missing"}));
}

TEST_F(StructureCheck, row_without_index_entry_is_named) {
    IndexPage page = index_page(id_root());
    page.erase(5);
    write_index_page(id_root(), page);
    EXPECT_EQ(broken(), Rules{"index-missing"});
}

TEST_F(StructureCheck, repeated_key_of_unique_index_is_named) {
    // Two objects that are no tables get one number, in their rows and in the index.
    IndexPage page = index_page(id_root());
    ASSERT_TRUE(objects_index(1).unique());
    std::size_t i = 0;
    const auto key_of = [&](std::size_t n) { return load_be32(page.entry(n), 1) ^ 0x80000000u; };
    const std::uint32_t first_id = static_cast<std::uint32_t>(jet4::kTablesContainer);
    while (key_of(i) != first_id) ++i;
    const RowId second = RowId::unpack(load_be32(page.entry(i + 1), 5));
    ASSERT_LT(RowId::unpack(load_be32(page.entry(i), 5)), second);
    ByteVector entry(page.entry(i).begin(), page.entry(i).end());
    store_bytes(entry, 5, page.entry(i + 1).subspan(5));
    page.replace(i + 1, entry);
    write_index_page(id_root(), page);
    const TableDef def = subject().def(jet4::kObjectsPage);
    const ColumnDef& id = def.columns[def.find_column(u"Id").value()];
    store_u32(bytes(), subject().slot(second).begin + 2 + id.fixed_offset, first_id);
    EXPECT_EQ(broken(), Rules{"index-unique"});
}

TEST_F(StructureCheck, separator_other_than_last_entry_below_is_named) {
    IndexPage page = index_page(name_root());
    ByteVector entry(page.entry(0).begin(), page.entry(0).end());
    ++entry.back();
    page.replace(0, entry);
    write_index_page(name_root(), page);
    EXPECT_EQ(broken(), Rules{"index-separator"});
}

TEST_F(StructureCheck, broken_leaf_chain_is_named) {
    store_u32(bytes(), subject().at(index_page(name_root()).child(0), jet4::index::kNext), 0);
    EXPECT_EQ(broken(), Rules{"index-chain"});
}

TEST_F(StructureCheck, index_page_missing_in_its_map_is_named) {
    const PageNumber leaf = index_page(name_root()).child(0);
    subject().set_map_bit(objects_index(2).map, leaf, false);
    EXPECT_EQ(broken(), Rules{"index-map"});
}

TEST_F(StructureCheck, page_in_the_map_of_an_index_only_is_named) {
    const PageNumber page_no = subject().page_count();
    bytes().resize(bytes().size() + jet4::kPageSize);
    subject().set_free(page_no, false);
    subject().set_map_bit(objects_index(2).map, page_no, true);
    EXPECT_EQ(broken(), Rules{"index-map"});
}

TEST_F(StructureCheck, wrong_index_level_is_named) {
    bytes()[subject().at(index_page(name_root()).child(0), jet4::index::kLevel)] = 1;
    EXPECT_EQ(broken(), Rules{"index-level"});
}

TEST_F(StructureCheck, node_without_tail_is_named) {
    // The tail's entry is added, the tail itself taken away.
    IndexPage page = index_page(name_root());
    const PageNumber tail = page.tail;
    const IndexPage last = index_page(tail);
    ASSERT_TRUE(last.is_leaf());
    page.tail = 0;
    page.insert(page.size(), last.last_entry(), tail);
    write_index_page(name_root(), page);
    EXPECT_EQ(broken(), Rules{"index-shape"});
}

TEST_F(StructureCheck, index_in_a_circle_is_named) {
    IndexPage page = index_page(name_root());
    page.tail = name_root();
    write_index_page(name_root(), page);
    EXPECT_TRUE(broken().count("page-twice"));
}

// --- any damage -------------------------------------------------------------------------------------------

TEST_F(StructureCheck, random_damage_never_does_worse_than_be_named) {
    std::mt19937 random(10);
    int named = 0;
    for (int round = 0; round < 150; ++round) {
        subject_ = std::make_unique<Subject>(sound_);
        for (int i = 0; i < 20; ++i) {
            const std::size_t page_no = 1 + random() % (subject().page_count() - 1);
            const std::size_t offset = random() % 2 == 0 ? random() % 80 : random() % jet4::kPageSize;
            bytes()[page_no * jet4::kPageSize + offset] = static_cast<std::uint8_t>(random());
        }
        try {
            if (!check(bytes()).empty()) ++named;
        } catch (const Error&) {
            // Thrown by the opening: not even the catalogue can be read.
        }
    }
    EXPECT_GT(named, 20);
}

TEST_F(StructureCheck, list_of_violations_ends_somewhere) {
    const PageNumber first = subject().page_count();
    bytes().resize(bytes().size() + 1200 * jet4::kPageSize);
    for (PageNumber page_no = first; page_no < first + 1200; ++page_no) {
        const RawSlot raw = subject().slot({jet4::kGlobalMapPage, 0});
        if (bytes()[raw.begin] == jet4::usage::kInline && page_no >= 8 * (raw.length - 5)) break;
        subject().set_free(page_no, false);
    }
    const std::size_t found = check(bytes()).size();
    EXPECT_GT(found, 100u);
    EXPECT_LE(found, 1001u);
}

// --- files of Access --------------------------------------------------------------------------------------

// Jet 4 files of the samples.
std::vector<fs::path> access_files() {
    std::vector<fs::path> files;
    const fs::path samples = KVDB_SAMPLES;
    if (!fs::is_directory(samples)) return files;
    for (const auto& entry : fs::directory_iterator(samples)) {
        if (entry.path().extension() != ".mdb") continue;
        const ByteVector file = read_whole(entry.path());
        if (load_u32(file, jet4::header::kVersion) == jet4::header::kVersionJet4) files.push_back(entry.path());
    }
    return files;
}

// Access lets row counts of catalogue tables go stale, and pages of removed modules leak; one file shows it.
bool is_known_of(const fs::path& file, const Violation& violation) {
    const bool stale_count = violation.rule == "row-count" && violation.page <= jet4::kRelationshipsPage;
    return file.filename() == "testV2000.mdb" && (violation.rule == "page-leaked" || stale_count);
}

TEST_F(StructureCheck, access_files_break_only_the_rules_access_does_not_keep) {
    const std::vector<fs::path> files = access_files();
    if (files.empty()) GTEST_SKIP() << "no sample files";
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        for (const Violation& violation : check(read_whole(file))) {
            EXPECT_TRUE(is_known_of(file, violation))
                << violation.page << " " << violation.rule << ": " << violation.detail;
        }
    }
}

// Every other row goes and comes back with the values it had.
int replace_rows(Table& table) {
    int replaced = 0;
    std::vector<RowId> rows;
    for (auto row = table.next_row({}); row; row = table.next_row(*row)) rows.push_back(*row);
    for (std::size_t i = 0; i < rows.size(); i += 2, ++replaced) {
        RowView view;
        EXPECT_TRUE(table.read(rows[i], view));
        std::vector<Value> values;
        for (std::size_t k = 0; k < table.def().columns.size(); ++k) values.push_back(view.value(k));
        table.erase(rows[i]);
        table.insert(values);
    }
    return replaced;
}

TEST_F(StructureCheck, access_files_changed_by_this_engine_break_no_other_rule) {
    const std::vector<fs::path> files = access_files();
    if (files.empty()) GTEST_SKIP() << "no sample files";
    int replaced = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const fs::path path = folder_.file("changed.mdb");
        write_whole(path, read_whole(file));
        auto database = Database::open(path.string(), {});
        for (const std::u16string& name : database->table_names()) {
            replaced += replace_rows(*database->find_table(name));
        }
        database->close();
        for (const Violation& violation : check(read_whole(path))) {
            EXPECT_TRUE(is_known_of(file, violation))
                << violation.page << " " << violation.rule << ": " << violation.detail;
        }
    }
    EXPECT_GT(replaced, 15);
}

}  // namespace

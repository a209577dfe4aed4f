// Every rule of the structural check: silent on a sound file, and naming exactly the damage done to one.
#include <random>

#include "tests/jet/check_fixture.h"

namespace jet {
namespace {

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

TEST_F(StructureCheck, map_of_two_tables_is_named) {
    const TableDef other = subject().def(jet4::kQueriesPage);
    store_u32(bytes(), subject().at(main_, jet4::tdef::kFreeMap), other.free_map.pack());
    EXPECT_EQ(broken(), Rules{"map-row-twice"});
}

TEST_F(StructureCheck, map_used_twice_by_a_table_is_named) {
    const TableDef def = subject().def(main_);
    store_u32(bytes(), subject().at(main_, jet4::tdef::kFreeMap), def.owned_map.pack());
    EXPECT_EQ(broken(), Rules{"table-definition"});
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
    EXPECT_EQ(broken(), Rules{"table-definition"});
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

}  // namespace
}  // namespace jet

// What the structural check says of damaged indexes.
#include "tests/jet/check_fixture.h"

namespace jet {
namespace {

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

TEST_F(StructureCheck, index_node_whose_level_is_not_set_is_named) {
    bytes()[subject().at(name_root(), jet4::index::kLevel)] = 0;
    EXPECT_EQ(broken(), Rules{"index-level-unset"});
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

}  // namespace
}  // namespace jet

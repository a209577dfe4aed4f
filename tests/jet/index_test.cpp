// The tree of an index, against a plain ordered set.
#include "jet/indexes/index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <set>

#include "jet/indexes/index_page.h"
#include "jet/storage/data_page.h"
#include "tests/jet/index_entries.h"

namespace {

using namespace jet;
namespace format = jet4::index;

// How many keys a large tree has. Without optimisation one insertion takes a quarter of a millisecond.
#ifdef NDEBUG
constexpr std::uint32_t kManyKeys = 60000;
#else
constexpr std::uint32_t kManyKeys = 12000;
#endif

RowId row_number(std::uint32_t i) { return {100 + i / 200, static_cast<std::uint8_t>(i % 200)}; }

// A file that holds one index and nothing else, in a folder of its own.
class IndexTree : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("kvdb_index_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + "_" +
                   std::to_string(std::random_device{}()));
        std::filesystem::create_directory(folder_);
        const std::string path = (folder_ / "index.mdb").string();
        auto file = os::file_system().open(path, os::OpenMode::kCreateExclusive);
        ByteVector pages(7 * jet4::kPageSize);
        const MutableByteSpan map_page = MutableByteSpan(pages).subspan(jet4::kPageSize, jet4::kPageSize);
        format_data_page(map_page, jet4::kGlobalMapPage);
        ByteVector map_row(jet4::usage::kDefaultRow, 0xFF);
        std::fill(map_row.begin(), map_row.begin() + jet4::usage::kBitmap, std::uint8_t{0});
        map_row[jet4::usage::kBitmap] = 0x80;  // pages 0..6 are in use
        add_row(map_page, jet4::kGlobalMapPage, map_row);
        file->write(0, pages);
        pager_ = std::make_unique<Pager>(os::file_system(), std::move(file), path);
        allocator_ = std::make_unique<PageAllocator>(*pager_);
        Transaction transaction(*pager_);
        const MutablePage root = allocator_->allocate();
        root_ = root.number();
        Index::format_root(root, kTable);
        PageNumber map_page_no = 0;
        map_ = allocator_->create_map(&map_page_no, root_);
        index_ = std::make_unique<Index>(*pager_, *allocator_, kTable, root_, map_);
        transaction.commit();
        other_pages_.insert(map_page_no);
    }
    void TearDown() override {
        pager_.reset();
        std::filesystem::remove_all(folder_);
    }

    // In the tree and in the set; the tree's answer must be the set's.
    void insert(const ByteVector& key, RowId row) {
        const auto before = expected_.lower_bound(key);
        const bool is_new = before == expected_.end() || before->first != key;
        ASSERT_EQ(index_->insert(key, row), is_new);
        expected_[key].insert(row.pack());
        ++count_;
    }
    void erase(const ByteVector& key, RowId row) {
        index_->erase(key, row);
        const auto found = expected_.find(key);
        found->second.erase(row.pack());
        if (found->second.empty()) expected_.erase(found);
        --count_;
    }
    std::vector<std::pair<ByteVector, RowId>> all() const {
        std::vector<std::pair<ByteVector, RowId>> entries;
        for (const auto& [key, rows] : expected_) {
            for (const std::uint32_t row : rows) entries.emplace_back(key, RowId::unpack(row));
        }
        return entries;
    }

    // What the walk over the pages finds.
    struct Walk {
        std::set<PageNumber> pages;
        std::vector<PageNumber> leaves;
        std::vector<ByteVector> entries;
        int height = 0;
    };

    // Checks the pages below `page_no`; returns the last leaf entry.
    ByteVector walk(Walk& found, PageNumber page_no, int level) {
        const ByteVector bytes = bytes_of(pager_->read(page_no).bytes());
        const IndexPage page = IndexPage::parse(bytes, page_no, kTable);
        EXPECT_TRUE(found.pages.insert(page_no).second) << page_no;
        EXPECT_TRUE(page.is_sorted()) << page_no;
        EXPECT_EQ(page.level(), level) << page_no;
        EXPECT_EQ(page.is_leaf(), level == 0) << page_no;
        EXPECT_EQ(page.stored_bytes + load_u16(bytes, format::kFree), format::kEntryBytes) << page_no;
        EXPECT_EQ(bytes[jet4::kPageKindMark], 1);
        if (page.is_leaf()) {
            EXPECT_TRUE(page.size() > 0 || page_no == root_) << page_no;
            found.leaves.push_back(page_no);
            for (std::size_t i = 0; i < page.size(); ++i) found.entries.push_back(bytes_of(page.entry(i)));
            return page.size() == 0 ? ByteVector{} : bytes_of(page.last_entry());
        }
        EXPECT_EQ(page.size() == 1 && page.tail == 0, page.child_count() == 1) << page_no;
        EXPECT_TRUE(page.tail != 0 || page.size() == 1) << page_no;
        EXPECT_TRUE(page.child_count() > 1 || page_no != root_) << page_no;
        ByteVector last;
        for (std::size_t i = 0; i < page.child_count(); ++i) {
            last = walk(found, page.child(i), level - 1);
            if (i < page.size()) {
                EXPECT_EQ(last, bytes_of(page.entry(i))) << page_no;
            }
            if (level == 1) continue;
            const IndexPage child = IndexPage::parse(pager_->read(page.child(i)).bytes(), page.child(i), kTable);
            EXPECT_EQ(child.previous, i == 0 ? 0 : page.child(i - 1)) << page_no;
            EXPECT_EQ(child.next, i + 1 == page.child_count() ? 0 : page.child(i + 1)) << page_no;
        }
        return last;
    }

    Walk verify() {
        Walk found;
        const IndexPage root = IndexPage::parse(pager_->read(root_).bytes(), root_, kTable);
        found.height = root.level();
        EXPECT_EQ(root.previous, 0u);
        EXPECT_EQ(root.next, 0u);
        walk(found, root_, root.level());

        std::size_t at = 0;
        EXPECT_EQ(found.entries.size(), count_);
        for (const auto& [key, row] : all()) {
            if (at >= found.entries.size()) break;
            if (found.entries[at] != entry_of(key, row)) {
                ADD_FAILURE() << "entry " << at << " is another one";
                break;
            }
            ++at;
        }
        for (std::size_t i = 0; i < found.leaves.size(); ++i) {
            const IndexPage leaf = IndexPage::parse(pager_->read(found.leaves[i]).bytes(), found.leaves[i], kTable);
            EXPECT_EQ(leaf.previous, i == 0 ? 0 : found.leaves[i - 1]);
            EXPECT_EQ(leaf.next, i + 1 == found.leaves.size() ? 0 : found.leaves[i + 1]);
        }

        std::set<PageNumber> mapped;
        const UsageMap map(*pager_, *allocator_, map_);
        for (auto page_no = map.next(0); page_no; page_no = map.next(*page_no + 1)) mapped.insert(*page_no);
        EXPECT_EQ(mapped, found.pages);
        std::set<PageNumber> used = found.pages;
        used.insert(other_pages_.begin(), other_pages_.end());
        for (const PageNumber page_no : map.bitmap_pages()) used.insert(page_no);
        for (const PageNumber page_no : allocator_->bitmap_pages()) used.insert(page_no);
        for (PageNumber page_no = 7; page_no < pager_->page_count(); ++page_no) {
            EXPECT_EQ(allocator_->is_free(page_no), used.count(page_no) == 0) << page_no;
        }
        return found;
    }

    std::filesystem::path folder_;
    std::unique_ptr<Pager> pager_;
    std::unique_ptr<PageAllocator> allocator_;
    std::unique_ptr<Index> index_;
    PageNumber root_ = 0;
    RowId map_;
    std::set<PageNumber> other_pages_;
    std::map<ByteVector, std::set<std::uint32_t>> expected_;
    std::size_t count_ = 0;
};

TEST_F(IndexTree, empty_index_finds_nothing) {
    EXPECT_EQ(index_->find(long_key(1)), std::nullopt);
    int visited = 0;
    index_->visit([&](ByteSpan, RowId) { return ++visited > 0; });
    EXPECT_EQ(visited, 0);
    verify();
}

TEST_F(IndexTree, insert_and_erase_keep_order_and_answers) {
    Transaction transaction(*pager_);
    insert(long_key(5), {60, 1});
    insert(long_key(3), {60, 2});
    insert(long_key(5), {60, 0});
    insert(long_key(5), {61, 9});
    EXPECT_EQ(index_->find(long_key(5)), (RowId{60, 0}));
    EXPECT_EQ(index_->find(long_key(4)), std::nullopt);
    std::vector<RowId> rows;
    index_->visit([&](ByteSpan, RowId row) {
        rows.push_back(row);
        return rows.size() < 3;
    });
    EXPECT_EQ(rows, (std::vector<RowId>{{60, 2}, {60, 0}, {60, 1}}));
    erase(long_key(5), {60, 0});
    EXPECT_EQ(index_->find(long_key(5)), (RowId{60, 1}));
    verify();
    transaction.commit();
}

TEST_F(IndexTree, find_with_key_that_begins_another_finds_its_own) {
    Transaction transaction(*pager_);
    const ByteVector shorter{0x7F, 0x10};
    const ByteVector longer{0x7F, 0x10, 0x00, 0x00};
    insert(longer, {1, 1});
    EXPECT_EQ(index_->find(shorter), std::nullopt);
    insert(shorter, {9, 9});  // sorts behind the longer one
    EXPECT_EQ(index_->find(shorter), (RowId{9, 9}));
    EXPECT_EQ(index_->find(longer), (RowId{1, 1}));
}

TEST_F(IndexTree, erase_of_missing_entry_is_damage) {
    Transaction transaction(*pager_);
    insert(long_key(5), {60, 1});
    for (const auto& [key, row] : {std::pair{long_key(5), RowId{60, 2}}, std::pair{long_key(6), RowId{60, 1}}}) {
        try {
            index_->erase(key, row);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.number(), errors::kDamaged);
        }
    }
    verify();
}

TEST_F(IndexTree, insert_of_present_entry_is_damage) {
    Transaction transaction(*pager_);
    insert(long_key(5), {60, 1});
    EXPECT_THROW(index_->insert(long_key(5), {60, 1}), Error);
    verify();
}

TEST_F(IndexTree, insert_of_longest_key_splits_and_of_longer_key_fails) {
    Transaction transaction(*pager_);
    const std::size_t longest = IndexPage::max_entry(kJet4) - 4;
    for (int i = 0; i < 250; ++i) {
        ByteVector key(longest, 0x55);
        key[0] = static_cast<std::uint8_t>(i * 7);
        key[1] = static_cast<std::uint8_t>(i);
        insert(key, {60, 1});
    }
    const Walk found = verify();
    EXPECT_GE(found.height, 5);
    try {
        index_->insert(ByteVector(longest + 1, 0x55), {60, 1});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.number(), errors::kCannotMaintainIndex);
    }
    while (count_ > 0) erase(all().front().first, all().front().second);
    EXPECT_EQ(verify().height, 0);
}

TEST_F(IndexTree, ascending_load_fills_pages) {
    {
        Transaction transaction(*pager_);
        for (std::uint32_t i = 0; i < kManyKeys; ++i) insert(long_key(i), row_number(i));
        transaction.commit();
    }
    const Walk found = verify();
    EXPECT_GE(found.height, 1);
    for (std::size_t i = 0; i + 1 < found.leaves.size(); ++i) {
        EXPECT_LT(load_u16(pager_->read(found.leaves[i]).bytes(), format::kFree), 9) << i;
    }
    EXPECT_EQ(index_->find(long_key(0)), row_number(0));
    EXPECT_EQ(index_->find(long_key(kManyKeys - 1)), row_number(kManyKeys - 1));
    EXPECT_EQ(index_->find(long_key(kManyKeys)), std::nullopt);
    // And a third of it away again from the front.
    Transaction transaction(*pager_);
    for (std::uint32_t i = 0; i < kManyKeys / 3; ++i) erase(long_key(i), row_number(i));
    verify();
    transaction.commit();
}

TEST_F(IndexTree, descending_load_and_erase_from_the_end_stay_sound) {
    Transaction transaction(*pager_);
    for (std::uint32_t i = kManyKeys / 4; i-- > 0;) insert(long_key(i), row_number(i));
    verify();
    for (std::uint32_t i = kManyKeys / 4; i-- > 0;) {
        erase(long_key(i), row_number(i));
        if (i == kManyKeys / 8 || i == 300) verify();
    }
    EXPECT_EQ(verify().pages.size(), 1u);
    transaction.commit();
}

TEST_F(IndexTree, random_load_and_random_erasing_stay_sound) {
    std::mt19937 random(4);
    Transaction transaction(*pager_);
    std::vector<std::uint32_t> keys(kManyKeys / 2);
    for (std::uint32_t i = 0; i < keys.size(); ++i) keys[i] = i * 17;
    std::shuffle(keys.begin(), keys.end(), random);
    for (const std::uint32_t key : keys) insert(long_key(key), {100 + key, 1});
    verify();
    std::shuffle(keys.begin(), keys.end(), random);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        erase(long_key(keys[i]), {100 + keys[i], 1});
        if (i % 5000 == 4999) verify();
    }
    EXPECT_EQ(verify().pages.size(), 1u);
    transaction.commit();
}

TEST_F(IndexTree, few_keys_of_many_rows_stay_sound) {
    std::mt19937 random(5);
    Transaction transaction(*pager_);
    std::vector<std::pair<ByteVector, RowId>> entries;
    for (std::uint32_t i = 0; i < 6000; ++i) entries.emplace_back(long_key(i % 3), row_number(i));
    std::shuffle(entries.begin(), entries.end(), random);
    for (const auto& [key, row] : entries) insert(key, row);
    verify();
    EXPECT_EQ(index_->find(long_key(1)), row_number(1));
    std::shuffle(entries.begin(), entries.end(), random);
    entries.resize(4500);
    for (const auto& [key, row] : entries) erase(key, row);
    verify();
    transaction.commit();
}

// A text key's shape: a flag, many bytes, an end; keys with much, little or nothing in common.
ByteVector text_like_key(std::mt19937& random, std::size_t longest) {
    ByteVector key{0x7F};
    const std::size_t shared = random() % 3 == 0 ? 0 : random() % (longest / 2);
    key.insert(key.end(), shared, 0x60);
    const std::size_t own = 1 + random() % (longest - shared);
    for (std::size_t i = 0; i < own; ++i) key.push_back(static_cast<std::uint8_t>(0x4A + random() % 40));
    key.push_back(0x01);
    key.push_back(0x00);
    return key;
}

void random_mix(std::mt19937& random, std::size_t longest, int rounds, auto&& insert, auto&& erase, auto&& verify) {
    std::vector<std::pair<ByteVector, RowId>> present;
    std::uint32_t next_row = 300;
    for (int phase = 0; phase < 8; ++phase) {
        const std::uint32_t insert_share = phase % 2 == 0 ? 85 : 20;
        for (int i = 0; i < rounds; ++i) {
            if (present.empty() || random() % 100 < insert_share) {
                const bool again = !present.empty() && random() % 10 == 0;
                const ByteVector key =
                    again ? present[random() % present.size()].first : text_like_key(random, longest);
                next_row += 1 + static_cast<std::uint32_t>(random() % 300);
                const RowId row = RowId::unpack(next_row);
                insert(key, row);
                present.emplace_back(key, row);
            } else {
                std::swap(present[random() % present.size()], present.back());
                erase(present.back().first, present.back().second);
                present.pop_back();
            }
        }
        verify();
    }
    while (!present.empty()) {
        std::swap(present[random() % present.size()], present.back());
        erase(present.back().first, present.back().second);
        present.pop_back();
        if (present.size() % 500 == 3) verify();
    }
    verify();
}

TEST_F(IndexTree, random_changes_with_short_keys_stay_sound) {
    std::mt19937 random(6);
    Transaction transaction(*pager_);
    random_mix(
        random, 12, 3000, [&](const ByteVector& key, RowId row) { insert(key, row); },
        [&](const ByteVector& key, RowId row) { erase(key, row); }, [&] { verify(); });
    transaction.commit();
}

TEST_F(IndexTree, random_changes_with_long_keys_stay_sound) {
    std::mt19937 random(7);
    Transaction transaction(*pager_);
    int highest = 0;
    random_mix(
        random, 770, 1500, [&](const ByteVector& key, RowId row) { insert(key, row); },
        [&](const ByteVector& key, RowId row) { erase(key, row); },
        [&] { highest = std::max(highest, verify().height); });
    EXPECT_GE(highest, 3);
    transaction.commit();
}

TEST_F(IndexTree, random_changes_with_longest_keys_stay_sound) {
    std::mt19937 random(8);
    Transaction transaction(*pager_);
    int highest = 0;
    random_mix(
        random, IndexPage::max_entry(kJet4) - 8, 400, [&](const ByteVector& key, RowId row) { insert(key, row); },
        [&](const ByteVector& key, RowId row) { erase(key, row); },
        [&] { highest = std::max(highest, verify().height); });
    EXPECT_GE(highest, 4);
    transaction.commit();
}

TEST_F(IndexTree, changes_taken_back_leave_the_tree_as_it_was) {
    {
        Transaction transaction(*pager_);
        for (std::uint32_t i = 0; i < 5000; ++i) insert(long_key(i * 2), {100, 1});
        transaction.commit();
    }
    const auto saved = expected_;
    {
        Transaction transaction(*pager_);
        for (std::uint32_t i = 0; i < 5000; ++i) insert(long_key(i * 2 + 1), {100, 1});
        for (std::uint32_t i = 0; i < 2000; ++i) erase(long_key(i * 2), {100, 1});
        verify();
    }
    allocator_->forget();
    expected_ = saved;
    count_ = 5000;
    verify();
}

TEST_F(IndexTree, damaged_pages_never_do_worse_than_fail) {
    {
        Transaction transaction(*pager_);
        for (std::uint32_t i = 0; i < 3000; ++i) insert(long_key(i * 7919), {100, 1});
        transaction.commit();
    }
    const Walk found = verify();
    const std::vector<PageNumber> pages(found.pages.begin(), found.pages.end());
    std::mt19937 random(9);
    int failures = 0;
    for (int round = 0; round < 400; ++round) {
        Transaction transaction(*pager_);  // taken back at the end of the round
        {
            const MutablePage page = pager_->modify(pages[random() % pages.size()]);
            const std::size_t at = round % 3 == 0 ? random() % 32 : random() % jet4::kPageSize;
            page.bytes()[at] = static_cast<std::uint8_t>(random());
            if (round % 5 == 0) {  // a link to another page of the index
                const std::size_t links[] = {format::kPrevious, format::kNext, format::kTail};
                store_u32(page.bytes(), links[random() % 3], pages[random() % pages.size()]);
            }
        }
        try {
            std::size_t visited = 0;
            index_->visit([&](ByteSpan, RowId) { return ++visited < 1000000; });
            for (std::uint32_t i = 0; i < 20; ++i) {
                const auto key = static_cast<std::uint32_t>(random() % 3000 * 7919);
                index_->find(long_key(key));
                index_->insert(long_key(key + 1), {100, 1});
                index_->erase(long_key(key), {100, 1});
            }
        } catch (const Error&) {
            ++failures;
        }
    }
    EXPECT_GT(failures, 30);
    allocator_->forget();
    verify();
}

}  // namespace

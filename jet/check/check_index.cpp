// Rules about index trees: their shape, their order, and an entry for every row.
#include <algorithm>

#include "jet/check/check_parts.h"
#include "jet/indexes/index_key.h"
#include "jet/indexes/index_page.h"

namespace jet::check {

namespace {

constexpr std::size_t kMaxDepth = 32;

class IndexChecker {
public:
    IndexChecker(Context& context, const TableDef& def, const RealIndex& index, const Table& table,
                 const TableRows& rows)
        : context_(context), def_(def), index_(index), table_(table), rows_(rows) {
        has_keys_ = !why_not_maintainable(index, def);
        for (const KeyColumn& key : index.columns) key_positions_.push_back(*def.column_by_number(key.column_number));
        values_.resize(def.columns.size());
    }

    void run() {
        const auto mapped = context_.read_map(index_.map, "an index of table page " + std::to_string(def_.page));
        const PageNumber root = index_.root;
        if (!context_.guard(root, "index-page", [&] { walk(root, 0, 0); })) complete_ = false;
        if (mapped) compare_with_map(*mapped);
        if (!complete_) {
            context_.mark_incomplete();
            return;
        }
        check_leaf_chain();
        check_rows_without_entry();
    }

private:
    void compare_with_map(const std::vector<PageNumber>& mapped) {
        for (const PageNumber page_no : pages_) {
            if (has_page(mapped, page_no)) continue;
            context_.report(page_no, -1, "index-map", "The page is in the tree of an index and not in its map.");
        }
        for (const PageNumber page_no : mapped) {
            if (!complete_ || pages_.count(page_no) != 0) continue;
            context_.report(page_no, -1, "index-map", "The page is in the map of an index and not in its tree.");
            context_.claim(page_no, Use::kIndex);
        }
    }

    // Checks the page and what is below it; returns the last leaf entry. `level` is what the parent calls
    // for, -1 where it does not say; the root's own is taken as it is.
    ByteVector walk(PageNumber page_no, std::size_t depth, int level) {
        if (depth == kMaxDepth) corrupt(page_no, "the index is too deep");
        if (!context_.claim(page_no, Use::kIndex)) {
            complete_ = false;
            return {};
        }
        pages_.insert(page_no);
        const Page held = context_.pager.read(page_no);
        const IndexPage page = IndexPage::parse(held.bytes(), page_no, def_.page);
        if (load_u16(held.bytes(), jet4::index::kFree) + page.stored_bytes != format_of(held.bytes()).entry_bytes()) {
            context_.report(page_no, -1, "index-free-count", "The page's free count is not what its entries leave.");
        }
        // Some programs leave the level of every node 0, and find their way without it.
        const bool is_unset = !page.is_leaf() && page.level() == 0;
        if (is_unset) {
            context_.report(page_no, -1, "index-level-unset", "The node's level is not set.");
        } else {
            if (depth > 0 && level >= 0 && page.level() != level) {
                context_.report(page_no, -1, "index-level", "The page's level does not fit its parent's.");
            }
            if (page.is_leaf() != (page.level() == 0)) {
                context_.report(page_no, -1, "index-level", "The page's level does not fit its kind.");
            }
        }
        if (page.is_leaf()) return check_leaf(page_no, page, depth);

        const bool one_child = page.child_count() == 1;
        if (page.child_count() == 0 || one_child != (page.tail == 0)) {
            context_.report(page_no, -1, "index-shape", "The node's tail does not fit its number of children.");
        }
        ByteVector last;
        for (std::size_t i = 0; i < page.child_count(); ++i) {
            last = walk(page.child(i), depth + 1, page.level() - 1);
            if (i < page.size() && complete_ && compare_entries(last, page.entry(i)) != 0) {
                context_.report(page_no, -1, "index-separator",
                                "Entry " + std::to_string(i) + " is not the last one below its child.");
            }
            if (page.level() > 1 && complete_) check_node_links(page, i);
        }
        return last;
    }

    // Nodes are linked with their neighbours below the same parent.
    void check_node_links(const IndexPage& parent, std::size_t i) {
        const PageNumber previous = i == 0 ? 0 : parent.child(i - 1);
        const PageNumber next = i + 1 == parent.child_count() ? 0 : parent.child(i + 1);
        check_links(parent.child(i), previous, next);
    }

    void check_links(PageNumber page_no, PageNumber previous, PageNumber next) {
        const Page held = context_.pager.read(page_no);
        const Format::IndexPage& at = format_of(held.bytes()).index;
        const bool linked = load_u32(held.bytes(), at.previous) == previous && load_u32(held.bytes(), at.next) == next;
        if (!linked) context_.report(page_no, -1, "index-chain", "The page is not linked with its neighbours.");
    }

    ByteVector check_leaf(PageNumber page_no, const IndexPage& page, std::size_t depth) {
        leaves_.push_back(page_no);
        if (page.size() == 0) {
            if (depth > 0) context_.report(page_no, -1, "index-shape", "A leaf below a node is empty.");
            return last_;
        }
        for (std::size_t i = 0; i < page.size(); ++i) {
            const ByteSpan entry = page.entry(i);
            if (!last_.empty() && compare_entries(last_, entry) >= 0) {
                context_.report(page_no, -1, "index-order",
                                "Entry " + std::to_string(i) + " does not come after the one before it.");
            }
            check_entry(page_no, i, entry);
            last_.assign(entry.begin(), entry.end());
        }
        return last_;
    }

    void check_entry(PageNumber page_no, std::size_t i, ByteSpan entry) {
        const ByteSpan key = entry.first(entry.size() - jet4::index::kRowPointer);
        const RowId row = RowId::unpack(load_be32(entry, key.size()));
        const std::string which = "Entry " + std::to_string(i);
        if (!rows_.complete) return;
        if (!rows_.rows.contains(row)) {
            context_.report(page_no, -1, "index-entry", which + " leads to no row.");
            return;
        }
        if (!seen_.insert(row)) {
            context_.report(page_no, -1, "index-entry", which + " leads to a row that has an entry already.");
        }
        if (!has_keys_) return;
        context_.guard(row.page, "row-value", [&] {
            read_keys(row);
            const bool is_other =
                is_key_known(index_, def_, values_) && compare_entries(make_index_key(index_, def_, values_), key) != 0;
            if (is_other) report_other_key(page_no, which, key);
            if (!index_.unique() || last_.size() != entry.size()) return;
            if (compare_entries(ByteSpan(last_).first(key.size()), key) == 0 && !all_null_key(index_, def_, values_)) {
                context_.report(page_no, -1, "index-unique", which + " repeats a key of a unique index.");
            }
        });
    }

    // In an order that is no more than likely the same as a known one, other keys are those of another order.
    bool is_in_likely_order() const {
        return std::any_of(key_positions_.begin(), key_positions_.end(), [&](std::size_t position) {
            return text_order(def_.columns[position]) == TextOrder::kLatin97;
        });
    }

    void report_other_key(PageNumber page_no, const std::string& which, ByteSpan key) {
        if (is_in_likely_order()) {
            context_.report(page_no, -1, "index-key-order", which + " is sorted by an order that is not known.");
            return;
        }
        for (const ByteVector& former : former_index_keys(index_, def_, values_)) {
            if (compare_entries(former, key) != 0) continue;
            context_.report(page_no, -1, "index-key-former", which + " was made by a former rule of its text order.");
            return;
        }
        context_.report(page_no, -1, "index-key", which + " is not what its row's values give.");
    }

    void read_keys(RowId row) {
        RowView view;
        if (!table_.read(row, view)) corrupt(row.page, "a row cannot be read");
        for (const std::size_t position : key_positions_) values_[position] = view.value(position);
    }

    void check_leaf_chain() {
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
            check_links(leaves_[i], i == 0 ? 0 : leaves_[i - 1], i + 1 == leaves_.size() ? 0 : leaves_[i + 1]);
        }
    }

    void check_rows_without_entry() {
        if (!rows_.complete || seen_.size() == rows_.rows.size()) return;
        rows_.rows.for_each([&](RowId row) {
            if (seen_.contains(row)) return;
            context_.guard(row.page, "row-value", [&] {
                if (index_.ignore_nulls()) {
                    read_keys(row);
                    if (all_null_key(index_, def_, values_)) return;
                }
                context_.report(row.page, row.slot, "index-missing",
                                "The row has no entry in the index with root " + std::to_string(index_.root) + ".");
            });
        });
    }

    Context& context_;
    const TableDef& def_;
    const RealIndex& index_;
    const Table& table_;
    const TableRows& rows_;
    bool has_keys_ = false;  // whether this engine knows how to make them
    std::vector<std::size_t> key_positions_;
    std::vector<Value> values_;
    std::set<PageNumber> pages_;  // of the tree
    std::vector<PageNumber> leaves_;
    ByteVector last_;  // leaf entry
    RowSet seen_;
    bool complete_ = true;
};

}  // namespace

void check_indexes(Context& context, const TableDef& def, const Table& table, const TableRows& rows) {
    for (const RealIndex& index : def.real_indexes) IndexChecker(context, def, index, table, rows).run();
}

}  // namespace jet::check

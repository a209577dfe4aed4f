// Maintenance of an index tree.
//
// Invariants, of every tree this engine has built; what others have built is read as long as it is safe
//  1. The root keeps its page: when it overflows, its content moves below it; when one child is left,
//     that child's content moves up.
//  2. A node of several children has an entry for each but the last, which is the tail; a node of one
//     child has one entry and no tail. Each entry equals the last leaf entry below its child.
//  3. A page that overflows gives its lower entries to a new page on its left, so that its own entry in
//     the parent stays right.
//  4. All leaves are chained; nodes are chained within one parent.
//  5. No leaf but the root is empty.
//  6. The index's map holds exactly the pages of the tree.
#include "jet/indexes/index.h"

#include "jet/indexes/index_page.h"

namespace jet {

namespace {

constexpr std::size_t kMaxDepth = 32;  // far above what the largest file can need

ByteVector make_entry(ByteSpan key, RowId row) {
    ByteVector entry(key.begin(), key.end());
    append_be(entry, row.pack(), jet4::index::kRowPointer);
    return entry;
}

RowId row_of(ByteSpan entry) { return RowId::unpack(load_be32(entry, entry.size() - jet4::index::kRowPointer)); }
ByteSpan key_of(ByteSpan entry) { return entry.first(entry.size() - jet4::index::kRowPointer); }
bool has_key(ByteSpan entry, ByteSpan key) { return compare_entries(key_of(entry), key) == 0; }

// A page on the way down, and the child taken there (page.size(): the tail).
struct Step {
    PageNumber page_no = 0;
    IndexPage page;
    std::size_t position = 0;
};
using Path = std::vector<Step>;

class Tree {
public:
    Tree(Pager& pager, PageAllocator& allocator, PageNumber table_page, PageNumber root, UsageMap map)
        : pager_(pager), allocator_(allocator), map_(map), table_page_(table_page), root_(root) {}

    IndexPage load(PageNumber page_no) const {
        IndexPage page = IndexPage::parse(pager_.read(page_no).bytes(), page_no, table_page_);
        if (!page.is_sorted()) corrupt(page_no, "the index entries are out of order");
        return page;
    }

    // From the root to the leaf where `target` is or belongs.
    Path descend(ByteSpan target) const {
        Path path;
        for (PageNumber page_no = root_;;) {
            if (path.size() == kMaxDepth) corrupt(root_, "the index is too deep");
            Step step{page_no, load(page_no), 0};
            step.page.normalize_tail();
            step.position = step.page.lower_bound(target);
            if (!step.page.is_leaf()) {
                if (step.page.child_count() == 0) corrupt(page_no, "an index node has no children");
                if (step.position == step.page.child_count()) --step.position;
            }
            path.push_back(std::move(step));
            if (path.back().page.is_leaf()) return path;
            page_no = path.back().page.child(path.back().position);
        }
    }

    // Calls `visitor` with the entries from `target` on, until it returns false.
    void visit_from(ByteSpan target, const std::function<bool(ByteSpan)>& visitor) const {
        Path path = descend(target);
        IndexPage& leaf = path.back().page;
        std::size_t position = path.back().position;
        ByteVector last;  // of the leaves so far: what follows comes after it, so no leaf comes twice
        for (std::uint32_t pages = 0; pages <= pager_.page_count(); ++pages) {
            for (; position < leaf.size(); ++position) {
                if (!visitor(leaf.entry(position))) return;
            }
            if (leaf.next == 0) return;
            if (leaf.size() > 0) last.assign(leaf.last_entry().begin(), leaf.last_entry().end());
            const PageNumber next = leaf.next;
            leaf = load_leaf(next);
            position = 0;
            if (!last.empty() && leaf.size() > 0 && compare_entries(last, leaf.entry(0)) >= 0) {
                corrupt(next, "the index entries are out of order");
            }
        }
        corrupt(root_, "the chain of index leaves has no end");
    }

    bool insert(ByteSpan key, RowId row) {
        const ByteVector entry = make_entry(key, row);
        if (entry.size() > IndexPage::max_entry(pager_.format())) {
            fail(errors::kCannotMaintainIndex, "The values are too long for an index of the table.");
        }
        Path path = descend_for_insert(entry);
        IndexPage& leaf = path.back().page;
        const std::size_t position = path.back().position;
        if (position < leaf.size() && compare_entries(leaf.entry(position), entry) == 0) {
            corrupt(path.back().page_no, "the index has an entry for the row already");
        }
        const bool is_new = !has_neighbour(leaf, position, key);
        const bool append = position == leaf.size() && leaf.next == 0;
        leaf.insert(position, entry);
        store(path, path.size() - 1, append);
        return is_new;
    }

    void erase(ByteSpan key, RowId row) {
        const ByteVector entry = make_entry(key, row);
        Path path = descend(entry);
        const std::size_t depth = path.size() - 1;
        IndexPage& leaf = path[depth].page;
        const std::size_t position = path[depth].position;
        if (position == leaf.size() || compare_entries(leaf.entry(position), entry) != 0) {
            corrupt(path[depth].page_no, "the index lacks the entry of a row");
        }
        leaf.erase(position);
        if (leaf.size() == 0 && depth > 0) {
            remove_page(path, depth);
            return;
        }
        write(path[depth].page_no, leaf);
        if (position == leaf.size() && depth > 0) {
            const ByteSpan last = leaf.last_entry();
            update_separator(path, depth, ByteVector(last.begin(), last.end()));
        }
    }

private:
    IndexPage load_leaf(PageNumber page_no) const {
        IndexPage page = load(page_no);
        if (!page.is_leaf()) corrupt(page_no, "the chain of index leaves leads to a node");
        return page;
    }

    void write(PageNumber page_no, const IndexPage& page) { page.write(pager_.modify(page_no).bytes()); }

    void set_previous(PageNumber page_no, PageNumber previous) {
        store_u32(pager_.modify(page_no).bytes(), pager_.format().index.previous, previous);
    }
    void set_next(PageNumber page_no, PageNumber next) {
        store_u32(pager_.modify(page_no).bytes(), pager_.format().index.next, next);
    }

    PageNumber new_page() {
        const PageNumber page_no = allocator_.allocate().number();
        map_.add(page_no);
        return page_no;
    }
    void free_page(PageNumber page_no) {
        if (!map_.contains(page_no)) corrupt(page_no, "a page of an index is not in the index's map");
        map_.remove(page_no);
        allocator_.free(page_no);
    }

    // As descend, for an entry to come. A node of a single child has an entry that the new one may
    // exceed; those entries are raised first, so that nothing above the leaf is left to correct.
    Path descend_for_insert(ByteSpan entry) {
        for (std::size_t tries = 0; tries <= kMaxDepth; ++tries) {
            Path path = descend(entry);
            std::size_t depth = 0;
            for (; depth + 1 < path.size(); ++depth) {
                const IndexPage& node = path[depth].page;
                if (node.tail == 0 && compare_entries(node.last_entry(), entry) < 0) break;
            }
            if (depth + 1 == path.size()) return path;
            path[depth].page.replace(path[depth].page.size() - 1, entry);
            store(path, depth, false);
        }
        corrupt(root_, "the index is too deep");
    }

    // Whether an entry next to `position` of the leaf has this key.
    bool has_neighbour(const IndexPage& leaf, std::size_t position, ByteSpan key) const {
        if (position > 0) {
            if (has_key(leaf.entry(position - 1), key)) return true;
        } else if (leaf.previous != 0) {
            const IndexPage before = load_leaf(leaf.previous);
            if (before.size() > 0 && has_key(before.last_entry(), key)) return true;
        }
        if (position < leaf.size()) return has_key(leaf.entry(position), key);
        if (leaf.next == 0) return false;
        const IndexPage after = load_leaf(leaf.next);
        return after.size() > 0 && has_key(after.entry(0), key);
    }

    // Writes the changed page at `depth` of the path, split where it has become too large. The path is
    // of no use afterwards.
    void store(Path& path, std::size_t depth, bool append) {
        path[depth].page.normalize_tail();
        if (path[depth].page.fits()) {
            write(path[depth].page_no, path[depth].page);
            return;
        }
        if (depth == 0) {
            push_root_down(path);
            depth = 1;
        }
        split(path, depth, append);
    }

    // Gives the root's content to a new page, its only child for the moment.
    void push_root_down(Path& path) {
        const std::uint8_t level = path[0].page.level();
        if (level == 0xFF) corrupt(root_, "the index is too deep");
        path.insert(
            path.begin(),
            Step{root_, IndexPage(false, static_cast<std::uint8_t>(level + 1), table_page_, pager_.format()), 0});
        path[1].page_no = new_page();
        path[1].page.previous = 0;
        path[1].page.next = 0;
        path[0].page.tail = path[1].page_no;
    }

    void split(Path& path, std::size_t depth, bool append) {
        Step& right = path[depth];
        Step& parent = path[depth - 1];
        ByteVector separator;
        const std::size_t cut = right.page.choose_cut(append, right.page_no);
        IndexPage left = right.page.split_front(cut, separator);
        const PageNumber left_no = new_page();
        left.previous = right.page.previous;
        left.next = right.page_no;
        right.page.previous = left_no;
        if (left.previous != 0) set_next(left.previous, left_no);
        write(left_no, left);
        write(right.page_no, right.page);
        if (!left.is_leaf() && pager_.read(left.tail).bytes()[0] == jet4::kIndexNodePage) {
            set_next(left.tail, 0);
            set_previous(right.page.child(0), 0);
        }
        parent.page.insert(parent.position, separator, left_no);
        store(path, depth - 1, false);
    }

    // The last leaf entry below the page at `depth` has become `last`; sets the entry that names it.
    void update_separator(Path& path, std::size_t depth, ByteSpan last) {
        while (depth-- > 0) {
            IndexPage& node = path[depth].page;
            const std::size_t position = path[depth].position;
            if (position == node.size()) continue;  // the tail has no entry here
            node.replace(position, last);
            const bool only_child = node.child_count() == 1;
            store(path, depth, false);  // a node of one child is never split
            if (!only_child) return;
        }
    }

    // Takes the empty page at `depth`, not the root, out of the tree.
    void remove_page(Path& path, std::size_t depth) {
        const IndexPage& page = path[depth].page;
        if (page.previous != 0) set_next(page.previous, page.next);
        if (page.next != 0) set_previous(page.next, page.previous);
        free_page(path[depth].page_no);

        Step& parent = path[depth - 1];
        if (parent.page.child_count() == 1) {
            parent.page.clear();
            if (depth > 1) {
                remove_page(path, depth - 1);
            } else {
                write(root_, IndexPage(true, 0, table_page_, pager_.format()));
            }
            return;
        }
        ByteVector last;  // below the parent, where that has changed
        if (parent.position < parent.page.size()) {
            parent.page.erase(parent.position);
        } else {
            const ByteSpan now_last = parent.page.last_entry();
            last.assign(now_last.begin(), now_last.end());
            parent.page.tail = parent.page.child(parent.page.size() - 1);
            parent.page.erase(parent.page.size() - 1);
        }
        if (parent.page.child_count() == 1) {
            const PageNumber child = parent.page.tail;
            if (depth == 1) {
                pull_up(child);
                return;
            }
            const ByteVector only = last.empty() ? last_entry_below(child) : last;
            parent.page.tail = 0;
            parent.page.insert(0, only, child);
        }
        write(parent.page_no, parent.page);
        if (!last.empty()) update_separator(path, depth - 1, last);
    }

    // The root is left with one child: its content becomes the root's.
    void pull_up(PageNumber child) {
        IndexPage page = load(child);
        free_page(child);
        while (!page.is_leaf() && page.child_count() == 1) {
            child = page.child(0);
            page = load(child);
            free_page(child);
        }
        page.previous = 0;
        page.next = 0;
        write(root_, page);
    }

    ByteVector last_entry_below(PageNumber page_no) const {
        for (std::size_t depth = 0; depth < kMaxDepth; ++depth) {
            const IndexPage page = load(page_no);
            if (page.is_leaf()) {
                if (page.size() == 0) corrupt(page_no, "an index leaf below a node is empty");
                const ByteSpan last = page.last_entry();
                return ByteVector(last.begin(), last.end());
            }
            if (page.child_count() == 0) corrupt(page_no, "an index node has no children");
            page_no = page.child(page.child_count() - 1);
        }
        corrupt(root_, "the index is too deep");
    }

    Pager& pager_;
    PageAllocator& allocator_;
    UsageMap map_;
    PageNumber table_page_;
    PageNumber root_;
};

}  // namespace

Index::Index(Pager& pager, PageAllocator& allocator, PageNumber table_page, PageNumber root, RowId map)
    : pager_(pager), allocator_(allocator), table_page_(table_page), root_(root), map_(pager, allocator, map) {}

bool Index::insert(ByteSpan key, RowId row) {
    return Tree(pager_, allocator_, table_page_, root_, map_).insert(key, row);
}

void Index::erase(ByteSpan key, RowId row) { Tree(pager_, allocator_, table_page_, root_, map_).erase(key, row); }

void Index::erase_by_row(RowId row) {
    std::vector<ByteVector> keys;
    visit([&](ByteSpan key, RowId entry_row) {
        if (entry_row == row) keys.emplace_back(key.begin(), key.end());
        return keys.size() < 2;
    });
    if (keys.size() != 1) corrupt(root_, "a row has no entry in an index, or more than one");
    erase(keys.front(), row);
}

bool Index::contains(ByteSpan key, RowId row) const {
    const ByteVector wanted = make_entry(key, row);
    bool found = false;
    Tree(pager_, allocator_, table_page_, root_, map_).visit_from(wanted, [&](ByteSpan entry) {
        found = compare_entries(entry, wanted) == 0;
        return false;
    });
    return found;
}

std::optional<RowId> Index::find(ByteSpan key) const {
    std::optional<RowId> found;
    Tree(pager_, allocator_, table_page_, root_, map_).visit_from(key, [&](ByteSpan entry) {
        // An entry of a longer key that begins like this one may come first.
        if (has_key(entry, key)) found = row_of(entry);
        return !found && entry.size() >= key.size() && compare_entries(entry.first(key.size()), key) == 0;
    });
    return found;
}

void Index::visit(const std::function<bool(ByteSpan key, RowId row)>& visitor) const {
    Tree(pager_, allocator_, table_page_, root_, map_).visit_from({}, [&](ByteSpan entry) {
        return visitor(key_of(entry), row_of(entry));
    });
}

void Index::format_root(const MutablePage& page, PageNumber table_page) {
    IndexPage(true, 0, table_page, format_of(page.bytes())).write(page.bytes());
}

}  // namespace jet

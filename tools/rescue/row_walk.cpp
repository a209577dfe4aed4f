#include "tools/rescue/row_walk.h"

#include <algorithm>
#include <unordered_set>

#include "jet/base/jet4.h"

namespace tools {
namespace {

using jet::ByteSpan;
using jet::ByteVector;
using jet::PageNumber;
using jet::RowId;

class Walk {
public:
    Walk(const PageSource& pages, const SurveyedTable& table, const FoundRowVisitor& visit)
        : pages_(pages), table_(table), visit_(visit), page_(pages.page_size()), other_(pages.page_size()) {}

    WalkCounts run() {
        for (const PageNumber page_no : table_.row_pages) walk_page(page_no);
        for (const RowId body : bodies_) {
            if (!given_.contains(body.pack())) give_body(body, kNoPointer);
        }
        return counts_;
    }

private:
    unsigned page_doubts(PageNumber page_no) const {
        const auto& guessed = table_.guessed_pages;
        return std::find(guessed.begin(), guessed.end(), page_no) != guessed.end() ? kGuessedPage : kNoDoubt;
    }

    void give(RowId place, const FoundRow& row, unsigned doubts) {
        visit_(place, row, doubts | page_doubts(place.page) | (row.bad_columns.empty() ? kNoDoubt : kBadValue));
    }

    void walk_page(PageNumber page_no) {
        pages_.read(page_no, page_);
        const FoundPage look = look_at_page(page_, pages_.present(page_no));
        for (std::size_t i = 0; i < look.slots.size(); ++i) {
            const FoundSlot& slot = look.slots[i];
            const RowId place{page_no, slot.number};
            if (slot.is_deleted()) continue;
            if (slot.is_body()) {
                bodies_.push_back(place);
                continue;
            }
            if (slot.is_pointer() && follow(place, slot)) continue;
            const FoundRow row = read(page_, slot);
            const bool is_row = row.fit != Fit::kNone && (!slot.is_pointer() || row.fit == Fit::kExact);
            if (is_row) {
                give(place, row, slot.is_pointer() ? kMended : kNoDoubt);
            } else if (slot.is_pointer()) {
                ++counts_.dangling;
            } else {
                i += mend(page_no, look, i);
            }
        }
    }

    FoundRow read(const ByteVector& page, const FoundSlot& slot) const {
        if (!slot.is_placed) return {};
        return take_apart(ByteSpan(page).subspan(slot.begin, slot.end - slot.begin), table_.def);
    }

    // Gives the row that the pointer leads to; false when there is none.
    bool follow(RowId pointer, const FoundSlot& slot) {
        if (!slot.is_placed || slot.end - slot.begin < 4) return false;
        RowId body = RowId::unpack(jet::load_u32(page_, slot.begin));
        const bool is_own = std::binary_search(table_.row_pages.begin(), table_.row_pages.end(), body.page);
        if (!is_own || given_.contains(body.pack())) return false;
        pages_.read(body.page, other_);
        for (const FoundSlot& target : look_at_page(other_, pages_.present(body.page)).slots) {
            if (target.number != body.slot || !target.is_body()) continue;
            const FoundRow row = read(other_, target);
            if (row.fit == Fit::kNone) return false;
            given_.insert(body.pack());
            give(pointer, row, kNoDoubt);
            return true;
        }
        return false;
    }

    void give_body(RowId body, unsigned doubts) {
        pages_.read(body.page, other_);
        for (const FoundSlot& slot : look_at_page(other_, pages_.present(body.page)).slots) {
            if (slot.number != body.slot) continue;
            const FoundRow row = read(other_, slot);
            if (row.fit != Fit::kNone) return give(body, row, doubts);
            ++counts_.unreadable;
        }
    }

    // A slot whose row is none may have a wrong offset; then it and the next one share what lies between. Returns how
    // many slots beyond this one are done with.
    std::size_t mend(PageNumber page_no, const FoundPage& look, std::size_t i) {
        const FoundSlot& slot = look.slots[i];
        const RowId place{page_no, slot.number};
        const bool has_next = i + 1 < look.slots.size() && look.slots[i + 1].number == slot.number + 1;
        if (!has_next) {
            give_upper(place, look.slots_end, slot.end, true);
            return 0;
        }
        const FoundSlot& next = look.slots[i + 1];
        const bool is_alone = next.flags != 0 || (next.is_placed && read(page_, next).fit != Fit::kNone);
        if (is_alone || next.begin >= slot.end) {
            ++counts_.unreadable;
            return 0;
        }
        const auto border = give_upper(place, next.begin, slot.end, false);
        if (!border) return 0;
        const FoundRow lower = take_apart(ByteSpan(page_).subspan(next.begin, *border - next.begin), table_.def);
        if (lower.fit != Fit::kNone) give({page_no, next.number}, lower, kMended);
        return 1;
    }

    // The row that ends at `end`, wherever it begins.
    std::optional<std::size_t> give_upper(RowId place, std::size_t begin, std::size_t end, bool one_row) {
        const auto border = find_row_border(page_, begin, end, table_.def, one_row);
        if (!border) {
            ++counts_.unreadable;
            return std::nullopt;
        }
        give(place, take_apart(ByteSpan(page_).subspan(*border, end - *border), table_.def), kMended);
        return border;
    }

    const PageSource& pages_;
    const SurveyedTable& table_;
    const FoundRowVisitor& visit_;
    ByteVector page_;
    ByteVector other_;
    WalkCounts counts_;
    std::vector<RowId> bodies_;
    std::unordered_set<std::uint32_t> given_;  // bodies
};

}  // namespace

WalkCounts walk_rows(const PageSource& pages, const SurveyedTable& table, const FoundRowVisitor& visit) {
    return Walk(pages, table, visit).run();
}

}  // namespace tools

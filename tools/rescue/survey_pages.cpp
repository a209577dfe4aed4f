// Which table each page of rows belongs to.
#include <algorithm>

#include "tools/rescue/found_row.h"
#include "tools/rescue/page_maps.h"
#include "tools/rescue/survey.h"

namespace tools {
namespace {

using jet::ByteSpan;
using jet::ByteVector;
using jet::PageNumber;
using jet::TableDef;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// What a page's live rows say of a table: how many there are, how many can be its rows, how many are so exactly.
struct PageFit {
    std::size_t live = 0;
    std::size_t possible = 0;
    std::size_t exact = 0;
    std::size_t full = 0;  // of these, with every column that the table has had
};

PageFit fit_of(const ByteVector& page, const FoundPage& look, const TableDef& def) {
    PageFit fit;
    for (const FoundSlot& slot : look.slots) {
        if (slot.is_deleted() || slot.is_pointer() || !slot.is_placed || slot.begin == slot.end) continue;
        ++fit.live;
        const ByteSpan bytes = ByteSpan(page).subspan(slot.begin, slot.end - slot.begin);
        const Fit row = take_apart(bytes, def).fit;
        if (row != Fit::kNone) ++fit.possible;
        if (row == Fit::kExact) ++fit.exact;
        if (row == Fit::kExact && columns_of_row(bytes, def) == def.max_columns) ++fit.full;
    }
    return fit;
}

std::size_t count_pages(const std::vector<bool>& map) {
    return static_cast<std::size_t>(std::count(map.begin(), map.end(), true));
}

}  // namespace

std::size_t FileSurvey::index_of(PageNumber owner) const {
    const auto at = std::lower_bound(tables_.begin(), tables_.end(), owner,
                                     [](const SurveyedTable& t, PageNumber page) { return t.page < page; });
    return at != tables_.end() && at->page == owner ? static_cast<std::size_t>(at - tables_.begin()) : kNone;
}

// Whether a page that the table's map lists is not there, or names another table.
bool FileSurvey::misses_pages(const SurveyedTable& table) const {
    for (PageNumber page_no = 0; page_no < notes_.size(); ++page_no) {
        const PageNote& note = notes_[page_no];
        if ((*table.owned)[page_no] && (note.kind != Kind::kRows || note.owner != table.page)) return true;
    }
    return false;
}

// Another table whose map lists the page, and whose rows those on it are with every column: one of the system's, too.
std::optional<PageNumber> FileSurvey::listed_owner(PageNumber page_no, PageNumber but) const {
    const ByteVector page = pages_.page(page_no);
    const FoundPage look = look_at_page(page, pages_.present(page_no));
    for (const auto& [owner, def] : definitions_) {
        if (owner == but) continue;
        const PageFit fit = fit_of(page, look, def);
        if (fit.live == 0 || 10 * fit.full < 8 * fit.live) continue;
        const auto map = read_page_map(pages_, def.owned_map);
        if (map && (*map)[page_no]) return owner;
    }
    return std::nullopt;
}

// The table that a page of rows with a wrong head belongs to: the one whose map lists it, or the only one whose rows
// these can be.
std::optional<std::size_t> FileSurvey::best_table(PageNumber page_no) const {
    const ByteVector page = pages_.page(page_no);
    const FoundPage look = look_at_page(page, pages_.present(page_no));
    if (const auto owner = listed_owner(page_no, notes_[page_no].owner)) {
        const std::size_t table = index_of(*owner);
        return table == kNone ? std::nullopt : std::optional(table);
    }
    std::vector<std::size_t> fitting;
    std::vector<std::size_t> full;
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        const PageFit fit = fit_of(page, look, tables_[i].def);
        if (fit.live == 0 || 10 * fit.exact < 8 * fit.live) continue;
        if (tables_[i].owned && (*tables_[i].owned)[page_no]) return i;
        fitting.push_back(i);
        if (10 * fit.full >= 8 * fit.live) full.push_back(i);
    }
    // Rows of before a column was added fit many; those of today fit best.
    if (!full.empty()) fitting = full;
    // Rows of one or two columns fit too much.
    if (fitting.size() != 1 || tables_[fitting.front()].def.columns.size() < 3) return std::nullopt;
    return fitting.front();
}

void FileSurvey::assign_pages() {
    for (PageNumber page_no = 0; page_no < notes_.size(); ++page_no) {
        const PageNote& note = notes_[page_no];
        if (note.kind != Kind::kRows) continue;
        std::size_t table = index_of(note.owner);
        bool is_guess = false;
        if (table != kNone) {
            const ByteVector page = pages_.page(page_no);
            const PageFit fit = fit_of(page, look_at_page(page, pages_.present(page_no)), tables_[table].def);
            if (2 * fit.possible < fit.live) {
                if (const auto other = best_table(page_no)) {
                    is_guess = *other != table;
                    table = *other;
                }
            } else if (const auto& map = tables_[table].owned;
                       map && !(*map)[page_no] && (10 * fit.full < 8 * fit.live || !misses_pages(tables_[table]))) {
                // The table has no place where the page could have come from: the damage is in what the head says.
                if (const auto owner = listed_owner(page_no, note.owner)) {
                    is_guess = true;
                    table = index_of(*owner);
                }
            }
        } else {
            const bool is_map = note.owner == jet::jet4::data::kUsageMapOwner || page_no == jet::jet4::kGlobalMapPage;
            const bool is_other = note.owner > 0 && definitions_.contains(note.owner);
            const auto orphan = std::find_if(orphans_.begin(), orphans_.end(),
                                             [&](const OrphanedRows& o) { return o.owner == note.owner; });
            if (orphan != orphans_.end()) {
                const ByteVector page = pages_.page(page_no);
                ++orphan->pages;
                orphan->rows += fit_of(page, look_at_page(page, pages_.present(page_no)), {}).live;
            } else if (!is_map && !is_other && !(note.owner > 0 && note.owner <= jet::jet4::kRelationshipsPage)) {
                if (const auto other = best_table(page_no)) table = *other;
                is_guess = table != kNone;
            }
        }
        if (table == kNone) continue;
        tables_[table].row_pages.push_back(page_no);
        if (is_guess) tables_[table].guessed_pages.push_back(page_no);
    }
    for (SurveyedTable& table : tables_) {
        if (!table.owned) continue;
        std::size_t held = 0;
        for (const PageNumber page : table.row_pages) held += (*table.owned)[page] ? 1 : 0;
        // A map that has little to do with the pages is damaged itself.
        if (2 * held < table.row_pages.size()) {
            table.owned.reset();
        } else {
            table.lost_pages = count_pages(*table.owned) - held;
        }
    }
}

// Pages that a table has given back keep their rows until they are used again. Both maps have to say so: one alone may
// be damaged. Where pages of the table are missing, they may have come to lie on a free one.
void FileSurvey::drop_given_up_pages() {
    auto free_pages = read_page_map(pages_, {jet::jet4::kGlobalMapPage, 0});
    std::size_t owned = 0;
    std::size_t owned_and_free = 0;
    for (const SurveyedTable& table : tables_) {
        for (const PageNumber page : table.row_pages) {
            if (!table.owned || !(*table.owned)[page]) continue;
            ++owned;
            if (free_pages && (*free_pages)[page]) ++owned_and_free;
        }
    }
    if (!free_pages || 20 * owned_and_free > owned) return;
    for (SurveyedTable& table : tables_) {
        std::size_t missing = table.lost_pages;
        std::erase_if(table.row_pages, [&](PageNumber page) {
            if (!(*free_pages)[page] || (table.owned && (*table.owned)[page])) return false;
            if (table.owned && missing > 0) {
                --missing;
                table.guessed_pages.push_back(page);
                return false;
            }
            ++table.given_up_pages;
            return true;
        });
    }
}

}  // namespace tools

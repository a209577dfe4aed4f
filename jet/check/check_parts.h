// What the parts of the structural check share: the list of violations, which page belongs to what, and
// sets of rows. The parts read pages on their own rather than through the code that maintains them, so
// that a mistake there does not hide itself.
//
// Memory grows with the pages of the file, 32 bytes for a page that holds rows, never with its rows.
#pragma once

#include <bitset>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/check/violation.h"
#include "jet/schema/table_def.h"
#include "jet/tables/database.h"

namespace jet::check {

// What a page is used for.
enum class Use : std::uint8_t { kNone, kFixed, kTableDef, kMapRows, kBitmap, kRows, kIndex, kLongValue };

class RowSet {
public:
    // False when it was there already.
    bool insert(RowId row);
    bool contains(RowId row) const;
    std::size_t size() const { return size_; }
    // In order.
    void for_each(const std::function<void(RowId)>& visitor) const;

private:
    std::map<PageNumber, std::bitset<256>> pages_;
    std::size_t size_ = 0;
};

struct CheckedSlot {
    std::uint16_t flags = 0;
    std::uint16_t offset = 0;
    std::uint16_t length = 0;
};

// Ends the check: there is more damage than is worth listing, and than finding it may cost.
struct Enough {};

class Context {
public:
    Context(Database& checked, std::vector<Violation>& into, const std::function<void()>& on_page);

    // Throws Enough when there are too many altogether.
    void report(PageNumber page, int row, std::string rule, std::string detail);
    // Runs `part`; damage that it meets on its way is reported under `rule`. Returns whether it finished.
    bool guard(PageNumber page, const char* rule, const std::function<void()>& part);

    // Takes the page for one use; false, reported, when it lies behind the end or is taken already.
    bool claim(PageNumber page, Use use);
    Use use_of(PageNumber page) const { return uses_[page]; }

    // Takes the row for one map, and the page it stands on for map rows.
    // False, reported, when another map stands there.
    bool claim_map_row(RowId row, std::string_view whose);
    // The members of a map, in order; its row and its bitmap pages are claimed. None, reported, when the
    // map is damaged. A null row is an empty map.
    std::optional<std::vector<PageNumber>> read_map(RowId row, std::string_view whose);
    // Members of a free-space map have to be owned pages.
    void check_free_map(RowId row, const std::vector<PageNumber>& owned, const std::string& whose);

    // The slots of a data page, checked; none, reported, when they cannot be followed.
    std::optional<std::vector<CheckedSlot>> read_slots(PageNumber page_no, ByteSpan bytes);

    // Rules about a whole: pages that hold map rows, and every page free or used but not both.
    void finish_map_pages();
    void finish_pages();
    // Lists what was only counted, as one for each rule.
    void finish_counts();

    // Something could not be followed: what it would have led to is unknown, so nothing is called lost.
    void mark_incomplete() { incomplete_ = true; }

    Database& database;
    Pager& pager;

private:
    std::vector<Violation>& violations_;
    const std::function<void()>& on_page_;
    std::map<std::string, std::size_t> counts_;  // findings by rule
    std::size_t count_ = 0;
    std::vector<Use> uses_;  // by page
    std::map<PageNumber, RowSet> map_rows_;
    bool incomplete_ = false;
};

// Whether a sorted list of pages holds the page.
bool has_page(const std::vector<PageNumber>& pages, PageNumber page);

// One table's rows, collected on the way through its pages.
struct TableRows {
    RowSet rows;           // live and moved ones, by their own address
    bool complete = true;  // every page and row could be read
};

// The definition's pages, joined and parsed; none, reported, when they are damaged.
std::optional<TableDef> check_definition(Context& context, PageNumber page);
TableRows check_rows(Context& context, const TableDef& def);
// `table` gives the values of the rows.
void check_indexes(Context& context, const TableDef& def, const Table& table, const TableRows& rows);

}  // namespace jet::check

// Where a table's rows stand, as bytes under addresses that stay theirs.
//
// Invariants
//  1. A row's address is that of its first slot and never changes. A row that outgrows its page leaves a pointer there.
//  2. Rows stand only on pages of the table's map of owned pages that say they are the table's.
//  3. A page in the map of free pages may take a row; one that could not is not offered again until something on it
//     shrinks or goes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/page_scan.h"
#include "jet/schema/table_def.h"
#include "jet/storage/data_page.h"
#include "jet/storage/row_view.h"
#include "jet/storage/storage.h"
#include "jet/storage/usage_map.h"

namespace jet {

class RowStore {
public:
    // Where a row address leads: the slot it names and the slot that holds the row (the same, unless the row
    // has moved); `pointer` is the slot whose pointer leads to the body.
    struct Place {
        RowId home;
        RowId pointer;
        RowId body;
    };

    // Both are kept: `def` may change its content, not its identity and maps.
    RowStore(Storage& storage, const TableDef& def);

    // First live row after `after` in the order of (page, slot); a null RowId: the first of all.
    std::optional<RowId> next(RowId after) const { return next(after, nullptr); }
    // As above, with the row's content where it stands at its address: `is_read` tells.
    std::optional<RowId> next(RowId after, RowView& into, bool& is_read) const {
        Reading reading{into, is_read = false};
        return next(after, &reading);
    }
    // None when there is no such live row. 3049 where its pointers lead nowhere.
    std::optional<Place> locate(RowId row) const {
        Page body;
        return locate(row, body);
    }
    // As above, with the row's bytes.
    std::optional<Place> locate(RowId row, RowView& into) const;
    // Whether there is the row, and its bytes; where damage is passed over, false for one that cannot be read.
    bool read(RowId row, RowView& into) const;
    bool exists(RowId row) const;
    // Visits the rows of the first page at or after `from`, and gives the page; none after the last one. `pages` is of
    // one going through the table.
    using Visit = std::function<void(RowId, const RowReader&)>;
    std::optional<PageNumber> visit_page(PageNumber from, PageScan& pages, const Visit& visit) const;

    // Inside a transaction, with at most as many bytes as the format allows.
    RowId add(ByteSpan row) { return place(row, 0); }
    void replace(const Place& place, ByteSpan row);
    // The row with every slot that its pointers lead through.
    void remove(const Place& place);

    const UsageMap& pages() const { return owned_; }

private:
    bool is_own_page(ByteSpan page, PageNumber page_no) const;
    void visit_rows(const DataPage& page, PageNumber page_no, const Visit& visit) const;
    // As above, with the page that the row stands on.
    std::optional<Place> locate(RowId row, Page& body) const;
    std::optional<PageNumber> next_page(PageNumber from) const;
    struct Reading {
        RowView& into;
        bool& is_done;
    };
    std::optional<RowId> next(RowId after, Reading* reading) const;
    void read_here(RowId row, ByteSpan bytes, const Reading& reading) const;
    std::optional<std::uint8_t> next_slot(PageNumber page_no, std::size_t from, Reading* reading) const;
    void require_inside_file(PageNumber page_no) const;
    bool fits(PageNumber page_no, std::size_t length) const;
    PageNumber page_with_room(std::size_t length);
    RowId place(ByteSpan row, std::uint16_t flags);
    bool replace_in_place(RowId body, ByteSpan row);
    RowId pointed_at(RowId slot) const;
    void remove_slot(RowId slot);

    Storage* storage_;
    const TableDef* def_;
    UsageMap owned_;
    UsageMap free_;
    PageNumber insert_hint_ = 0;     // page that took the last new row; 0: none
    mutable bool map_lost_ = false;  // damage is passed over, and the map of the table's pages is damaged
};

}  // namespace jet

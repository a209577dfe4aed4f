// A B-tree of (key, row) entries on index pages. The root never moves; every node entry equals the last
// leaf entry below its child; leaves form one chain; only an empty root is an empty leaf.
#pragma once

#include <functional>
#include <optional>

#include "jet/base/bytes.h"
#include "jet/pages/pager.h"
#include "jet/storage/usage_map.h"

namespace jet {

class Index {
public:
    // `table_page` owns the pages; `root` and `map` are those of the real index.
    Index(Pager& pager, PageAllocator& allocator, PageNumber table_page, PageNumber root, RowId map);

    // Adds the entry; true when no entry had this key before. Inside a transaction.
    bool insert(ByteSpan key, RowId row);
    // Removes the entry; 3049 when it is not there. Inside a transaction.
    void erase(ByteSpan key, RowId row);
    // Removes the only entry of the row, whatever its key; 3049 unless there is exactly one. Reads the whole tree.
    // Inside a transaction.
    void erase_by_row(RowId row);
    bool contains(ByteSpan key, RowId row) const;
    // First row with exactly this key, if any.
    std::optional<RowId> find(ByteSpan key) const;
    // All entries in order; the visitor returns false to stop.
    void visit(const std::function<bool(ByteSpan key, RowId row)>& visitor) const;

    // Writes an empty root leaf onto `page`. Inside a transaction.
    static void format_root(const MutablePage& page, PageNumber table_page);

private:
    Pager& pager_;
    PageAllocator& allocator_;
    PageNumber table_page_;
    PageNumber root_;
    UsageMap map_;
};

}  // namespace jet

// An ordered map from the values of one column to its rows, kept in memory: what lets a statement find
// rows by a number or a span of dates without reading the table. Built at first use, kept current by the
// table. 16 bytes an entry; every operation is logarithmic.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

#include "jet/types.h"

namespace jet {

class ColumnMap {
public:
    struct Entry {
        std::uint64_t key = 0;
        std::uint32_t row = 0;  // packed RowId
        friend auto operator<=>(const Entry&, const Entry&) = default;
    };

    // Keys keep the order of the values. None for Null and for types without such a map.
    static std::optional<std::uint64_t> key_of(const Value& value);
    static std::uint64_t key_of_long(std::int32_t value);
    static std::uint64_t key_of_date(double days);

    // Replaces the content; `entries` in any order.
    void build(std::vector<Entry> entries);
    void insert(Entry entry);
    // Nothing happens when it is not there.
    void erase(Entry entry);
    // First entry >= `from`, if any.
    std::optional<Entry> lower_bound(Entry from) const;
    std::size_t size() const { return size_; }

private:
    static constexpr std::size_t kBlock = 512;
    using Block = std::vector<Entry>;

    std::size_t block_of(const Entry& entry) const;
    void split(std::size_t at);

    std::vector<Block> blocks_;  // each non-empty and sorted; blocks in order
    std::vector<Entry> lasts_;   // the last entry of each block, close together for the search
    std::size_t size_ = 0;
};

}  // namespace jet

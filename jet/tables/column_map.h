// An ordered map from the values of one column to its rows, kept in memory: what lets a statement find
// rows by a number or a span of dates without reading the table. Built at first use, kept current by the
// table. 4 bytes an entry where neighbours have the same key or the keys follow one on another, 12 elsewhere (up to
// twice that where they came in no order); every operation is logarithmic.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

#include "jet/base/types.h"

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

    // Nothing happens when it is there already.
    void insert(Entry entry);
    // Nothing happens when it is not there.
    void erase(Entry entry);
    // First entry >= `from`, if any.
    std::optional<Entry> lower_bound(Entry from) const;
    std::size_t size() const { return size_; }

private:
    // Some entries in order.
    class Block {
    public:
        std::size_t size() const { return rows_.size(); }
        Entry entry(std::size_t at) const {
            return {keys_.empty() ? first_key_ + at * key_step_ : keys_[at], rows_[at]};
        }
        void insert(std::size_t at, const Entry& entry);
        void erase(std::size_t at);
        // Takes the entries from `at` on away, into a block of their own.
        Block cut(std::size_t at);

    private:
        void spell_out_keys();
        void tidy();

        std::vector<std::uint32_t> rows_;
        std::vector<std::uint64_t> keys_;  // none: each is first_key_, or one more than the one before
        std::uint64_t first_key_ = 0;
        std::uint64_t key_step_ = 0;  // 0 or 1
    };

    std::size_t block_of(const Entry& entry) const;
    std::size_t place_in(std::size_t at, const Entry& entry) const;
    void halve(std::size_t at) noexcept;

    std::vector<Block> blocks_;  // none empty, in order
    std::vector<Entry> lasts_;   // the last entry of each block, close together for the search
    std::size_t size_ = 0;
};

}  // namespace jet

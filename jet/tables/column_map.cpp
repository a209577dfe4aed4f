#include "jet/tables/column_map.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <utility>

namespace jet {

namespace {

constexpr std::uint64_t kTopBit = 0x8000000000000000u;

constexpr std::size_t kBlockEntries = 512;  // entries

// How many of `size` entries in order, entry_at(0) and on, stand before `wanted`; their keys are not below `first`, and
// the last of them is `last`. Keys given out in order lie evenly: the place is where the key says, and nothing else is
// read.
template <class EntryAt>
std::size_t place_of(const ColumnMap::Entry& wanted, std::size_t size, const EntryAt& entry_at, std::uint64_t first,
                     const ColumnMap::Entry& last) {
    const std::uint64_t span = last.key - first;
    if (wanted.key > first && span <= UINT32_MAX && wanted <= last) {
        const auto guess = static_cast<std::size_t>((wanted.key - first) * size / span);
        for (std::size_t place = guess > 0 ? guess - 1 : 0; place < std::min(guess + 1, size); ++place) {
            if (entry_at(place) >= wanted && (place == 0 || entry_at(place - 1) < wanted)) return place;
        }
    }
    std::size_t low = 0;
    for (std::size_t high = size; low < high;) {
        const std::size_t middle = low + (high - low) / 2;
        if (entry_at(middle) < wanted) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

// For one more: adding it then needs no memory.
template <class Item>
void make_room(std::vector<Item>& items) {
    if (items.size() == items.capacity()) items.reserve(items.empty() ? 4 : 2 * items.size());
}

}  // namespace

std::optional<std::uint64_t> ColumnMap::key_of(const Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return key_of_long(*number);
    if (const auto* date = std::get_if<Date>(&value)) return key_of_date(date->days);
    return std::nullopt;
}

std::uint64_t ColumnMap::key_of_long(std::int32_t value) { return static_cast<std::uint32_t>(value) ^ 0x80000000u; }

// A stored date before day 0 has its time of day as a positive fraction, so -1.25 is later than -1.0. The
// sum of day and time is linear, and exact: its magnitude is never above that of the stored number.
std::uint64_t ColumnMap::key_of_date(double days) {
    if (days < 0) {
        const double day = std::trunc(days);
        days = day + std::fabs(days - day);
    }
    if (days == 0) days = 0;  // no negative zero
    const auto bits = std::bit_cast<std::uint64_t>(days);
    return (bits & kTopBit) != 0 ? ~bits : bits | kTopBit;
}

void ColumnMap::Block::spell_out_keys() {
    if (!keys_.empty()) return;
    keys_.reserve(rows_.size() + 1);
    for (std::size_t at = 0; at < rows_.size(); ++at) keys_.push_back(first_key_ + at * key_step_);
}

// Without memory the block stays as it is.
void ColumnMap::Block::insert(std::size_t at, const Entry& entry) {
    make_room(rows_);
    if (!keys_.empty()) make_room(keys_);
    if (rows_.empty()) first_key_ = entry.key;
    if (rows_.size() == 1 && at == 1) key_step_ = entry.key == first_key_ ? 0 : 1;
    const bool fits =
        keys_.empty() && entry.key == first_key_ + at * key_step_ && (key_step_ == 0 || at == rows_.size());
    if (!fits) {
        spell_out_keys();
        keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(at), entry.key);
    }
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(at), entry.row);
}

void ColumnMap::Block::erase(std::size_t at) {
    if (!keys_.empty() || (key_step_ != 0 && at + 1 < rows_.size())) {
        spell_out_keys();
        keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(at));
    }
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at));
}

// Without memory it throws and the block stays as it is.
ColumnMap::Block ColumnMap::Block::cut(std::size_t at) {
    spell_out_keys();
    Block upper;
    upper.rows_.assign(rows_.begin() + static_cast<std::ptrdiff_t>(at), rows_.end());
    upper.keys_.assign(keys_.begin() + static_cast<std::ptrdiff_t>(at), keys_.end());
    rows_.resize(at);
    keys_.resize(at);
    tidy();
    upper.tidy();
    return upper;
}

// Blocks are cut where keys come in no order: most of them then stay as long as they are for ever.
void ColumnMap::Block::tidy() {
    if (keys_.front() == keys_.back()) {
        first_key_ = keys_.front();
        key_step_ = 0;
        keys_.clear();
    }
    rows_.shrink_to_fit();
    keys_.shrink_to_fit();
}

// The block that holds the first entry >= `entry`; one past the last block when there is none.
std::size_t ColumnMap::block_of(const Entry& entry) const {
    if (blocks_.empty()) return 0;
    const auto last_of = [this](std::size_t at) -> const Entry& { return lasts_[at]; };
    return place_of(entry, lasts_.size(), last_of, blocks_.front().entry(0).key, lasts_.back());
}

// Where the first entry >= `entry` stands in its block.
std::size_t ColumnMap::place_in(std::size_t at, const Entry& entry) const {
    const Block& block = blocks_[at];
    const auto entry_at = [&block](std::size_t place) { return block.entry(place); };
    return place_of(entry, block.size(), entry_at, at == 0 ? block.entry(0).key : lasts_[at - 1].key, lasts_[at]);
}

void ColumnMap::insert(Entry entry) {
    std::size_t at = block_of(entry);
    if (at == blocks_.size()) {
        // Keys mostly grow: a full last block stays full instead of being halved.
        if (blocks_.empty() || blocks_.back().size() >= kBlockEntries) {
            Block block;
            block.insert(0, entry);
            make_room(blocks_);
            make_room(lasts_);
            blocks_.push_back(std::move(block));
            lasts_.push_back(entry);
        } else {
            blocks_.back().insert(blocks_.back().size(), entry);
            lasts_.back() = entry;
        }
        ++size_;
        return;
    }
    Block& block = blocks_[at];
    const std::size_t place = place_in(at, entry);
    if (block.entry(place) == entry) return;
    block.insert(place, entry);
    ++size_;
    if (block.size() > kBlockEntries) halve(at);
}

// Without memory the block stays whole: the next insertion tries again.
void ColumnMap::halve(std::size_t at) noexcept {
    try {
        make_room(blocks_);
        make_room(lasts_);
        Block& block = blocks_[at];
        Block upper = block.cut(block.size() / 2);
        lasts_.insert(lasts_.begin() + static_cast<std::ptrdiff_t>(at), block.entry(block.size() - 1));
        blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(at) + 1, std::move(upper));
    } catch (const std::bad_alloc&) {
    }
}

void ColumnMap::erase(Entry entry) {
    const std::size_t at = block_of(entry);
    if (at == blocks_.size()) return;
    Block& block = blocks_[at];
    const std::size_t place = place_in(at, entry);
    if (block.entry(place) != entry) return;
    block.erase(place);
    --size_;
    if (block.size() > 0) {
        lasts_[at] = block.entry(block.size() - 1);
        return;
    }
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(at));
    lasts_.erase(lasts_.begin() + static_cast<std::ptrdiff_t>(at));
}

std::optional<ColumnMap::Entry> ColumnMap::lower_bound(Entry from) const {
    const std::size_t at = block_of(from);
    if (at == blocks_.size()) return std::nullopt;
    return blocks_[at].entry(place_in(at, from));
}

}  // namespace jet

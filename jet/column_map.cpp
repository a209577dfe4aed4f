#include "jet/column_map.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace jet {

namespace {

constexpr std::uint64_t kTopBit = 0x8000000000000000u;

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

void ColumnMap::build(std::vector<Entry> entries) {
    std::sort(entries.begin(), entries.end());
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    size_ = entries.size();
    blocks_.clear();
    lasts_.clear();
    blocks_.reserve(size_ / kBlock + 1);
    for (std::size_t at = 0; at < size_; at += kBlock) {
        const auto first = entries.begin() + static_cast<std::ptrdiff_t>(at);
        const auto last = entries.begin() + static_cast<std::ptrdiff_t>(std::min(at + kBlock, size_));
        blocks_.emplace_back(first, last);
        lasts_.push_back(blocks_.back().back());
    }
}

// The block that holds the first entry >= `entry`; one past the last block when there is none.
std::size_t ColumnMap::block_of(const Entry& entry) const {
    return static_cast<std::size_t>(std::lower_bound(lasts_.begin(), lasts_.end(), entry) - lasts_.begin());
}

void ColumnMap::insert(Entry entry) {
    std::size_t at = block_of(entry);
    if (at == blocks_.size()) {
        // Keys mostly grow: a full last block stays full instead of being halved.
        if (blocks_.empty() || blocks_.back().size() >= kBlock) {
            blocks_.emplace_back();
            lasts_.emplace_back();
        }
        blocks_.back().push_back(entry);
        lasts_.back() = entry;
        ++size_;
        return;
    }
    const auto place = std::lower_bound(blocks_[at].begin(), blocks_[at].end(), entry);
    if (*place == entry) return;
    blocks_[at].insert(place, entry);
    ++size_;
    if (blocks_[at].size() > kBlock) split(at);
}

void ColumnMap::split(std::size_t at) {
    const auto middle = blocks_[at].begin() + static_cast<std::ptrdiff_t>(blocks_[at].size() / 2);
    Block upper(middle, blocks_[at].end());
    Block lower(blocks_[at].begin(), middle);
    lasts_.insert(lasts_.begin() + static_cast<std::ptrdiff_t>(at), lower.back());
    blocks_[at] = std::move(lower);
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(at) + 1, std::move(upper));
}

void ColumnMap::erase(Entry entry) {
    const std::size_t at = block_of(entry);
    if (at == blocks_.size()) return;
    const auto place = std::lower_bound(blocks_[at].begin(), blocks_[at].end(), entry);
    if (*place != entry) return;
    blocks_[at].erase(place);
    --size_;
    if (!blocks_[at].empty()) {
        lasts_[at] = blocks_[at].back();
        return;
    }
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(at));
    lasts_.erase(lasts_.begin() + static_cast<std::ptrdiff_t>(at));
}

std::optional<ColumnMap::Entry> ColumnMap::lower_bound(Entry from) const {
    const std::size_t at = block_of(from);
    if (at == blocks_.size()) return std::nullopt;
    const Block& block = blocks_[at];
    // Keys given out in order lie evenly: the entry is where its key says, and nothing else of the block is read.
    const std::uint64_t first = at == 0 ? block.front().key : lasts_[at - 1].key;
    const std::uint64_t span = lasts_[at].key - first;
    if (from.key > first && span <= UINT32_MAX) {
        const std::size_t guess = static_cast<std::size_t>((from.key - first) * block.size() / span);
        for (std::size_t place = guess > 0 ? guess - 1 : 0; place < std::min(guess + 1, block.size()); ++place) {
            if (block[place] >= from && (place == 0 || block[place - 1] < from)) return block[place];
        }
    }
    return *std::lower_bound(block.begin(), block.end(), from);
}

}  // namespace jet

#include "tools/row_scan.h"

#include <algorithm>
#include <compare>
#include <cstring>

#include "tools/order_key.h"
#include "tools/progress.h"

namespace tools {
namespace {

// A key, and the row that has it.
struct RowKey {
    jet::ByteSpan key;
    std::uint32_t row = 0;  // packed

    friend std::strong_ordering operator<=>(const RowKey& a, const RowKey& b) {
        const std::size_t common = std::min(a.key.size(), b.key.size());
        const int compared = common == 0 ? 0 : std::memcmp(a.key.data(), b.key.data(), common);
        if (compared != 0) return compared <=> 0;
        const auto by_length = a.key.size() <=> b.key.size();
        return by_length != 0 ? by_length : a.row <=> b.row;
    }
};

// A copy of one.
class KeptKey {
public:
    void set(const RowKey& from) {
        bytes_.assign(from.key.begin(), from.key.end());
        row_ = from.row;
        is_set_ = true;
    }
    bool is_set() const { return is_set_; }
    RowKey key() const { return {bytes_, row_}; }

private:
    jet::ByteVector bytes_;
    std::uint32_t row_ = 0;
    bool is_set_ = false;
};

// The smallest of the keys that are added, as many as there is room for.
class SmallestKeys {
public:
    SmallestKeys(std::size_t room_bytes, std::size_t most)
        : most_(std::clamp<std::size_t>(room_bytes / kBytesOfOne, 2, std::max<std::size_t>(most, 2))),
          most_bytes_(room_bytes - std::min(room_bytes, most_ * sizeof(Entry))) {
        entries_.reserve(most_);
        bytes_.reserve(most_bytes_);
    }

    void clear() {
        bytes_.clear();
        entries_.clear();
        first_refused_ = {};
    }

    void add(const RowKey& key) {
        while (!entries_.empty() && !has_room(key)) {
            if (is_refused(key)) return;
            if (entries_.size() == 1 && key_of(entries_[0]) < key) return first_refused_.set(key);
            halve();
        }
        if (is_refused(key)) return;
        entries_.push_back(
            {static_cast<std::uint32_t>(bytes_.size()), static_cast<std::uint32_t>(key.key.size()), key.row});
        jet::append_bytes(bytes_, key.key);
    }

    void sort() {
        std::sort(entries_.begin(), entries_.end(),
                  [this](const Entry& a, const Entry& b) { return key_of(a) < key_of(b); });
    }
    std::size_t size() const { return entries_.size(); }
    RowKey operator[](std::size_t i) const { return key_of(entries_[i]); }
    // Whether all that were added are here.
    bool are_all() const { return !first_refused_.is_set(); }

private:
    static constexpr std::size_t kBytesOfOne = 32;  // of an entry and a key of the usual length

    struct Entry {
        std::uint32_t at = 0;
        std::uint32_t length = 0;
        std::uint32_t row = 0;
    };

    RowKey key_of(const Entry& entry) const {
        return {jet::ByteSpan(bytes_).subspan(entry.at, entry.length), entry.row};
    }
    bool has_room(const RowKey& key) const {
        return entries_.size() < most_ && bytes_.size() + key.key.size() <= most_bytes_;
    }
    bool is_refused(const RowKey& key) const { return first_refused_.is_set() && key >= first_refused_.key(); }

    // Drops the larger half, or the only one.
    void halve() {
        const std::size_t kept = entries_.size() / 2;
        const auto middle = entries_.begin() + static_cast<std::ptrdiff_t>(kept);
        std::nth_element(entries_.begin(), middle, entries_.end(),
                         [this](const Entry& a, const Entry& b) { return key_of(a) < key_of(b); });
        first_refused_.set(key_of(*middle));
        entries_.erase(middle, entries_.end());
        // Close the gaps, from the front.
        std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return a.at < b.at; });
        std::uint32_t end = 0;
        for (Entry& entry : entries_) {
            std::memmove(bytes_.data() + end, bytes_.data() + entry.at, entry.length);
            entry.at = end;
            end += entry.length;
        }
        bytes_.resize(end);
    }

    std::size_t most_;
    std::size_t most_bytes_;  // of keys; one that is longer is kept alone
    jet::ByteVector bytes_;
    std::vector<Entry> entries_;
    KeptKey first_refused_;
};

// Rows in the order of the file.
template <class Visit>
void scan(const RowScan& wanted, Progress& progress, Visit&& visit) {
    jet::RowView row;
    bool is_read = false;
    for (auto id = wanted.table.next_row({}, row, is_read); id; id = wanted.table.next_row(*id, row, is_read)) {
        progress.step();
        if (!is_read && !wanted.table.read(*id, row)) continue;
        if (wanted.matches(row) && !visit(*id, row)) return;
    }
}

// How many rows are still to be read, where `waiting` wait and a reading serves `served` of them.
std::uint64_t rows_to_read(const RowScan& wanted, std::size_t waiting, std::size_t served) {
    if (served == 0) return 0;
    return (waiting + served - 1) / served * std::uint64_t{wanted.table.def().row_count};
}

void for_each_in_order(const RowScan& wanted, const std::function<bool(const jet::RowView&)>& visit) {
    constexpr std::size_t kFew = 64;
    const std::size_t limit = wanted.limit.value_or(SIZE_MAX);
    SmallestKeys keys(wanted.room_bytes, limit > SIZE_MAX / 2 ? SIZE_MAX : std::max(2 * limit, kFew));
    Progress progress("rows read", wanted.table.def().row_count);
    KeptKey last_given;
    jet::ByteVector key;
    jet::RowView view;
    for (std::size_t given = 0; given < limit;) {
        keys.clear();
        std::size_t waiting = 0;
        scan(wanted, progress, [&](jet::RowId id, const jet::RowView& row) {
            key.clear();
            for (const jet::sql::OrderKey& column : wanted.order) {
                append_order_key(key, row.value(column.position), column.descending);
            }
            const RowKey candidate{key, id.pack()};
            if (last_given.is_set() && candidate <= last_given.key()) return true;
            ++waiting;
            keys.add(candidate);
            return true;
        });
        keys.sort();
        if (keys.size() > 0) last_given.set(keys[keys.size() - 1]);
        const std::size_t wanted_yet = std::min(waiting, limit - given);
        progress.set_total(progress.done() +
                           rows_to_read(wanted, wanted_yet - std::min(wanted_yet, keys.size()), keys.size()));
        for (std::size_t i = 0; i < keys.size() && given < limit; ++i) {
            if (!wanted.table.read(jet::RowId::unpack(keys[i].row), view)) continue;
            ++given;
            if (!visit(view)) return;
        }
        if (keys.are_all()) return;
    }
}

}  // namespace

void RowScan::for_each(const std::function<bool(const jet::RowView& row)>& visit) const {
    if (limit && *limit == 0) return;
    if (!order.empty()) return for_each_in_order(*this, visit);
    Progress progress("rows", table.def().row_count);
    std::size_t given = 0;
    scan(*this, progress, [&](jet::RowId, const jet::RowView& row) {
        ++given;
        return visit(row) && (!limit || given < *limit);
    });
}

}  // namespace tools

#include "jet/pages/undo_log.h"

#include <cstring>
#include <utility>

namespace jet {
namespace {

constexpr std::size_t kSpareBuffers = 64;
constexpr std::size_t kKeptEntries = 4096;

}  // namespace

UndoLog::UndoLog() { spare_buffers_.reserve(kSpareBuffers); }

void UndoLog::keep_buffer(std::unique_ptr<std::uint8_t[]> buffer) noexcept {
    if (buffer && spare_buffers_.size() < kSpareBuffers) spare_buffers_.push_back(std::move(buffer));
}

void UndoLog::save(FrameRef place) {
    if (place.frame->saved_level == depth()) return;
    std::unique_ptr<std::uint8_t[]> image;
    if (spare_buffers_.empty()) {
        image = std::make_unique_for_overwrite<std::uint8_t[]>(jet4::kPageSize);
    } else {
        image = std::move(spare_buffers_.back());
        spare_buffers_.pop_back();
    }
    std::memcpy(image.get(), place.bytes, place.page().size());
    entries_.push_back({place, place.frame->saved_level, std::move(image)});
    place.frame->saved_level = depth();
}

void UndoLog::make_room_for_new() {
    if (entries_.size() == entries_.capacity()) entries_.reserve(2 * entries_.size() + 8);
}

void UndoLog::add_new(FrameRef place) {
    entries_.push_back({place, 0, nullptr});
    place.frame->saved_level = depth();
}

std::span<UndoLog::Entry> UndoLog::entries() { return std::span(entries_).subspan(levels_.back().first_entry); }

bool UndoLog::find_changes() {
    bool any = false;
    for (Entry& entry : entries()) {
        entry.changed =
            !entry.image || std::memcmp(entry.image.get(), entry.place.bytes, entry.place.page().size()) != 0;
        any = any || entry.changed;
    }
    return any;
}

void UndoLog::end_level(std::size_t entries_left) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(entries_left), entries_.end());
    levels_.pop_back();
    if (entries_.empty() && entries_.capacity() > kKeptEntries) std::vector<Entry>().swap(entries_);
}

// The outer level takes over the images that it lacks.
void UndoLog::merge() {
    const int outer = depth() - 1;
    std::size_t kept = levels_.back().first_entry;
    for (std::size_t i = kept; i < entries_.size(); ++i) {
        Entry& entry = entries_[i];
        entry.place.frame->saved_level = outer;
        if (entry.saved_level_before == outer) {
            keep_buffer(std::move(entry.image));
        } else {
            if (kept != i) entries_[kept] = std::move(entry);
            ++kept;
        }
    }
    end_level(kept);
}

void UndoLog::accept() {
    for (Entry& entry : entries()) {
        entry.place.frame->saved_level = 0;
        keep_buffer(std::move(entry.image));
    }
    end_level(levels_.back().first_entry);
}

void UndoLog::roll_back(PageCache& cache) {
    const std::span<Entry> changed = entries();
    for (auto entry = changed.rbegin(); entry != changed.rend(); ++entry) {
        if (entry->image) {
            std::memcpy(entry->place.bytes, entry->image.get(), entry->place.page().size());
            entry->place.frame->saved_level = entry->saved_level_before;
            keep_buffer(std::move(entry->image));
        } else {
            cache.remove(*entry->place.frame);
        }
    }
    end_level(levels_.back().first_entry);
}

}  // namespace jet

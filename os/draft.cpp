#include "os/draft.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "os/file.h"

namespace os {
namespace {

constexpr std::string_view kMark = "-new-";
constexpr std::size_t kDigits = 16;

bool is_digit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

// Whether `rest`, the part of a name after the target's name, is the suffix of a draft.
bool is_draft_suffix(std::string_view rest) {
    constexpr std::size_t kSuffix = kMark.size() + kDigits;
    if (rest.empty()) return false;
    for (; !rest.empty(); rest.remove_prefix(kSuffix)) {
        if (rest.size() < kSuffix || !rest.starts_with(kMark)) return false;
        const std::string_view digits = rest.substr(kMark.size(), kDigits);
        if (!std::all_of(digits.begin(), digits.end(), is_digit)) return false;
    }
    return true;
}

// Differs in every call of every running process: mixes two clocks, an address and a counter.
std::uint64_t chance() {
    static std::atomic<std::uint64_t> calls{0};
    const auto ticks = [](auto now) { return static_cast<std::uint64_t>(now.time_since_epoch().count()); };
    std::uint64_t word = ticks(std::chrono::steady_clock::now());
    for (const std::uint64_t next : {ticks(std::chrono::system_clock::now()),
                                     static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&word)), ++calls}) {
        word = (word ^ next) * 0x9E3779B97F4A7C15;
        word ^= word >> 29;
    }
    return word;
}

}  // namespace

std::string draft_name(const std::string& path) {
    char digits[kDigits + 1];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(chance()));
    return path + std::string(kMark) + digits;
}

void remove_unless_in_use(const std::string& path) {
    try {
        const std::unique_ptr<File> held = file_system().open(path, OpenMode::kExclusive);
        file_system().remove(path);
    } catch (const FileError&) {
        // Then it stays; it is a complete file.
    }
}

void clear_drafts(const std::string& path, FileSystem& files) {
    try {
        for (const std::string& name : files.longer_names(path)) {
            if (!is_draft_suffix(std::string_view(name).substr(path.size()))) continue;
            try {
                files.open(name, OpenMode::kExclusive);
                for (const std::string& beside : files.longer_names(name)) files.remove(beside);
                files.remove(name);
            } catch (const FileError&) {
                // In use, or it cannot be removed.
            }
        }
    } catch (const FileError&) {
        // The folder cannot be listed.
    }
}

}  // namespace os

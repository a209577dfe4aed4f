#include "afx/field_names.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "jet/base/types.h"
#include "jet/indexes/collation.h"
#include "os/system.h"

namespace afx {
namespace {

char folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::uint32_t hash_of(std::string_view name) {
    std::uint32_t hash = 2166136261u;
    for (const char c : name) hash = (hash ^ static_cast<std::uint8_t>(folded(c))) * 16777619u;
    return hash ^ hash >> 15;
}

bool same_ascii(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return folded(x) == folded(y); });
}

bool is_ascii(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
}

}  // namespace

FieldNames::FieldNames(std::vector<std::u16string> names) : wide_(std::move(names)) {
    slots_.resize(std::bit_ceil(2 * wide_.size() + 1));
    for (std::size_t i = 0; i < wide_.size(); ++i) {
        names_.push_back(os::narrow(wide_[i]));
        std::size_t slot = hash_of(names_[i]) & (slots_.size() - 1);
        while (slots_[slot] != 0) slot = (slot + 1) & (slots_.size() - 1);
        slots_[slot] = static_cast<std::uint16_t>(i + 1);
    }
}

std::optional<std::size_t> FieldNames::find(const char* name) const {
    // Callers name their columns by the same few texts again and again: the one found last time at this
    // address is right when it still reads the same.
    std::uint16_t& recent = recent_[reinterpret_cast<std::uintptr_t>(name) / 2 % recent_.size()];
    if (recent < names_.size() && std::strcmp(names_[recent].c_str(), name) == 0) return recent;
    const std::optional<std::size_t> found = look_up(name);
    if (found) recent = static_cast<std::uint16_t>(*found);
    return found;
}

std::optional<std::size_t> FieldNames::look_up(std::string_view name) const {
    for (std::size_t slot = hash_of(name) & (slots_.size() - 1); slots_[slot] != 0;
         slot = (slot + 1) & (slots_.size() - 1)) {
        const std::size_t position = slots_[slot] - 1u;
        if (same_ascii(names_[position], name)) return position;
    }
    if (is_ascii(name)) return std::nullopt;
    // Letters beyond ASCII have cases too; the engine knows them.
    const std::u16string wide = os::widen(name);
    for (std::size_t i = 0; i < wide_.size(); ++i) {
        if (jet::same_name(wide_[i], wide)) return i;
    }
    return std::nullopt;
}

}  // namespace afx

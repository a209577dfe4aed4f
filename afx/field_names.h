// Finds fields by their narrow names, without regard to case. A single lookup allocates nothing and takes one
// hash and one comparison; the lists of names that record mappings read and write are looked up once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace afx {

class FieldNames {
public:
    explicit FieldNames(std::vector<std::u16string> names);

    // 0-based position in the names given.
    std::optional<std::size_t> find(const char* name) const;
    // Positions of the names in a list, in its order; -1 for a name that is not here. The list's address stands
    // for it: what is found there must stay the same. `known` is empty for a list not met before.
    std::span<const int> known(const void* list) const;
    std::span<const int> learn(const void* list, std::span<const char* const> names) const;
    std::size_t size() const { return names_.size(); }
    const std::u16string& name(std::size_t position) const { return wide_[position]; }

private:
    std::optional<std::size_t> look_up(std::string_view name) const;

    mutable std::array<std::uint16_t, 256> recent_{};  // positions found last, by the address of the name
    mutable std::unordered_map<const void*, std::vector<int>> lists_;
    std::vector<std::string> names_;  // narrow
    std::vector<std::u16string> wide_;
    std::vector<std::uint16_t> slots_;  // position + 1, 0 is free; a power of two of them
};

}  // namespace afx

// Finds fields by their narrow names, without regard to case. A single lookup allocates nothing and takes one
// hash and one comparison.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace afx {

class FieldNames {
public:
    explicit FieldNames(std::vector<std::u16string> names);

    // 0-based position in the names given.
    std::optional<std::size_t> find(const char* name) const;
    std::size_t size() const { return names_.size(); }
    const std::u16string& name(std::size_t position) const { return wide_[position]; }

private:
    std::optional<std::size_t> look_up(std::string_view name) const;

    mutable std::array<std::uint16_t, 256> recent_{};  // positions found last, by the address of the name
    std::vector<std::string> names_;                   // narrow
    std::vector<std::u16string> wide_;
    std::vector<std::uint16_t> slots_;  // position + 1, 0 is free; a power of two of them
};

}  // namespace afx

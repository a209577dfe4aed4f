// The stored forms of one row's values, by position in its shape's columns, in one piece of memory that is used again.
// A boolean is one byte, 0 or 1. A long value is its 12-byte reference with what follows it in the row.
#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "jet/base/bytes.h"

namespace jet {

class StoredValues {
public:
    // All Null.
    void clear(std::size_t columns) {
        bytes_.clear();
        values_.assign(columns, {});
    }
    std::size_t size() const { return values_.size(); }

    // None for Null; good until another value is set.
    std::optional<ByteSpan> operator[](std::size_t position) const {
        const Place& place = values_[position];
        if (place.is_null) return std::nullopt;
        if (place.elsewhere != nullptr) return ByteSpan(place.elsewhere, place.size);
        return ByteSpan(bytes_).subspan(place.at, place.size);
    }

    // What `append(bytes)` appends becomes the value.
    template <class Append>
    void set(std::size_t position, Append&& append) {
        const std::size_t at = bytes_.size();
        append(bytes_);
        values_[position] = {.is_null = false, .at = at, .size = bytes_.size() - at};
    }
    // Bytes that stay where they are as long as they are used here.
    void refer(std::size_t position, ByteSpan bytes) {
        static constexpr std::uint8_t kNothing = 0;
        values_[position] = {
            .is_null = false, .size = bytes.size(), .elsewhere = bytes.data() != nullptr ? bytes.data() : &kNothing};
    }
    void set_null(std::size_t position) { values_[position] = {}; }

private:
    struct Place {
        bool is_null = true;
        std::size_t at = 0;  // in bytes_, where `elsewhere` is null
        std::size_t size = 0;
        const std::uint8_t* elsewhere = nullptr;
    };

    ByteVector bytes_;
    std::vector<Place> values_;
};

}  // namespace jet

// A page of rows, looked at on its own: where its rows lie, though its head or some of its slots may be damaged.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace tools {

struct FoundSlot {
    std::uint8_t number = 0;
    std::uint16_t flags = 0;  // as jet4::data has them
    std::size_t begin = 0;    // bytes from the start of the page
    std::size_t end = 0;
    bool is_placed = true;  // false: the slot, or the one before it, cannot be right

    bool is_deleted() const;
    bool is_body() const;
    bool is_pointer() const;
};

struct FoundPage {
    bool holds_rows = false;  // as far as its head and its slots can tell
    bool is_sound = false;    // head and slots agree with each other
    std::uint32_t owner = 0;
    std::uint32_t stamp = 0;
    std::size_t slots_end = 0;
    std::vector<FoundSlot> slots;
};

// `bytes` is a page, of which the first `present` bytes are in the file. Its size tells the version of the format.
FoundPage look_at_page(jet::ByteSpan bytes, std::size_t present);
// Whether it is a page of rows or of a definition without doubt.
bool is_sound_page(jet::ByteSpan bytes);
// What stands on every page of a definition, in Jet 4 on its first one, and on no page of rows.
bool has_definition_mark(jet::ByteSpan bytes);

}  // namespace tools

#include "tests/jet/damage.h"

#include <algorithm>
#include <iterator>

#include "jet/base/format.h"
#include "tests/jet/exercise.h"

namespace jet {
namespace {

std::uint32_t interesting(Random& random) {
    constexpr std::uint32_t kValues[] = {0,      1,      2,      0x7F,   0x80,   0xFF,       0x100,      0x0FFF,
                                         0x1000, 0x7FFF, 0x8000, 0xC000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    switch (random.below(3)) {
        case 0: return kValues[random.below(std::size(kValues))];
        case 1: return random.below(64);
        default: return random.below(64) << 8 | random.below(4);  // a row's address
    }
}

void damage_plain(ByteVector& file, const Format& format, Random& random) {
    const std::size_t page_bytes = format.page_size;
    if (file.size() < page_bytes) return;
    const std::size_t pages = file.size() / page_bytes;
    const std::size_t page_at = random.below(pages) * page_bytes;
    const std::size_t anywhere = page_at + random.below(page_bytes - 4);
    const std::size_t in_head = page_at + random.below(64);
    const MutableByteSpan bytes(file);
    switch (random.below(10)) {
        case 0:
        case 1: bytes[anywhere] = random.byte(); break;
        case 2: bytes[in_head] = random.byte(); break;
        case 3: store_u16(bytes, in_head, static_cast<std::uint16_t>(interesting(random))); break;
        case 4: store_u32(bytes, in_head, interesting(random)); break;
        case 5: store_u32(bytes, anywhere, interesting(random)); break;
        case 6: {
            const std::size_t count = std::min<std::size_t>(random.below(400), file.size() - anywhere);
            const std::uint8_t fill = random.below(2) ? random.byte() : std::uint8_t{0};
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(anywhere), count, fill);
            break;
        }
        case 7: {
            const std::size_t from = random.below(pages) * page_bytes;
            const ByteVector copy(file.begin() + static_cast<std::ptrdiff_t>(from),
                                  file.begin() + static_cast<std::ptrdiff_t>(from + page_bytes));
            store_bytes(bytes, page_at, copy);
            break;
        }
        case 8:
            if (random.below(4) == 0)
                file.resize(random.below(2) ? page_at : anywhere);
            else
                bytes[in_head] ^= static_cast<std::uint8_t>(1u << random.below(8));
            break;
        default: {
            // The variable part of a row, or a slot.
            const std::size_t slots = load_u16(bytes, page_at + format.data.slot_count) % 256;
            const std::size_t slot_at = page_at + format.slot_at(random.below(slots + 1));
            store_u16(bytes, slot_at, static_cast<std::uint16_t>(random.below(2) ? random() : interesting(random)));
            break;
        }
    }
}

}  // namespace

void damage_once(ByteVector& file, const FileKind& kind, Random& random) {
    code_pages(file, kind);
    damage_plain(file, *kind.format, random);
    code_pages(file, kind);
}

}  // namespace jet

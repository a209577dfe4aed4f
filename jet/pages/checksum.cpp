#include "jet/pages/checksum.h"

namespace jet {

std::uint64_t checksum64(ByteSpan bytes, std::uint64_t seed) {
    constexpr std::uint64_t kMultiplier = 0x9FB21C651E98DF25;
    std::uint64_t lanes[4] = {seed ^ 0x243F6A8885A308D3, seed ^ 0x13198A2E03707344, seed + 0xA4093822299F31D0,
                              seed + bytes.size()};
    const auto mix = [](std::uint64_t lane, std::uint64_t word) {
        lane = (lane ^ word) * kMultiplier;
        return lane ^ lane >> 29;
    };
    std::size_t at = 0;
    for (; at + 32 <= bytes.size(); at += 32) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data() + at + 8 * i, 8);
            if constexpr (std::endian::native == std::endian::big) word = load_u64(bytes, at + 8 * i);
            lanes[i] = mix(lanes[i], word);
        }
    }
    for (; at < bytes.size(); ++at) lanes[at % 4] = mix(lanes[at % 4], bytes[at] + 1u);
    return mix(mix(mix(lanes[0], lanes[1]), lanes[2]), lanes[3]);
}

}  // namespace jet

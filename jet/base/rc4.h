// RC4, which the format uses to mask the file header and the owners' identifiers. No protection.
#pragma once

#include <array>
#include <cstdint>
#include <numeric>
#include <utility>

#include "jet/base/bytes.h"

namespace jet {

class Rc4 {
public:
    explicit Rc4(ByteSpan key) {
        std::iota(state_.begin(), state_.end(), std::uint8_t{0});
        std::uint8_t j = 0;
        for (std::size_t i = 0; i < state_.size(); ++i) {
            j = static_cast<std::uint8_t>(j + state_[i] + key[i % key.size()]);
            std::swap(state_[i], state_[j]);
        }
    }
    // Encodes or decodes, in place, from where the key stream stands.
    void apply(MutableByteSpan bytes) {
        for (std::uint8_t& byte : bytes) {
            ++i_;
            j_ = static_cast<std::uint8_t>(j_ + state_[i_]);
            std::swap(state_[i_], state_[j_]);
            byte ^= state_[static_cast<std::uint8_t>(state_[i_] + state_[j_])];
        }
    }

private:
    std::array<std::uint8_t, 256> state_{};
    std::uint8_t i_ = 0;
    std::uint8_t j_ = 0;
};

}  // namespace jet

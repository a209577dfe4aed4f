#include "jet/storage/text_codec.h"

#include <algorithm>

#include "jet/base/jet4.h"

namespace jet {
namespace {

constexpr auto& kMark = jet4::text::kCompressedMark;

bool compressible(std::u16string_view text) {
    return text.size() > 2 && std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 1 && c <= 0xFF; });
}

bool is_marked(ByteSpan bytes) { return bytes.size() >= 2 && bytes[0] == kMark[0] && bytes[1] == kMark[1]; }

// Eight bytes at once, the first one lowest.
std::uint64_t load_eight(const std::uint8_t* bytes) { return load_u64(ByteSpan(bytes, 8), 0); }

// `kBeyond` marks the bits that no character up to 0x7F has; taking 1 from each lane reaches its highest bit only
// where the lane, or one below it, was zero.
template <std::uint64_t kBeyond, std::uint64_t kOnes, std::uint64_t kHighest>
bool has_other_than_ascii(std::uint64_t word) {
    return (word & kBeyond) != 0 || ((word - kOnes) & kHighest) != 0;
}
bool has_other_byte(std::uint64_t word) {
    return has_other_than_ascii<0x8080808080808080, 0x0101010101010101, 0x8080808080808080>(word);
}
bool has_other_unit(std::uint64_t word) {
    return has_other_than_ascii<0xFF80FF80FF80FF80, 0x0001000100010001, 0x8000800080008000>(word);
}
bool is_ascii_unit(const std::uint8_t* unit) { return unit[1] == 0 && unit[0] != 0 && unit[0] < 0x80; }

}  // namespace

ByteVector encode_text(std::u16string_view text, bool compress) {
    ByteVector bytes;
    if (compress && compressible(text)) {
        bytes.reserve(text.size() + 2);
        append_bytes(bytes, kMark);
        for (char16_t c : text) bytes.push_back(static_cast<std::uint8_t>(c));
        return bytes;
    }
    bytes.resize(2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes[2 * i] = static_cast<std::uint8_t>(text[i]);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(text[i] >> 8);
    }
    return bytes;
}

std::u16string decode_text(ByteSpan bytes) {
    std::u16string text;
    decode_text(bytes, text);
    return text;
}

void decode_text(ByteSpan bytes, std::u16string& text) {
    text.clear();
    if (!is_marked(bytes)) {
        text.resize(bytes.size() / 2);
        for (std::size_t i = 0; i < text.size(); ++i) {
            text[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
        }
        return;
    }
    text.reserve(bytes.size());
    bool one_byte = true;  // a zero byte toggles between one and two bytes a character
    for (std::size_t i = 2; i < bytes.size();) {
        if (bytes[i] == 0) {
            one_byte = !one_byte;
            ++i;
        } else if (one_byte) {
            text.push_back(bytes[i++]);
        } else {
            if (i + 1 >= bytes.size()) break;
            text.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
            i += 2;
        }
    }
}

std::optional<std::size_t> ascii_length(ByteSpan bytes) {
    const std::uint8_t* at = bytes.data();
    const std::uint8_t* const end = at + bytes.size();
    if (is_marked(bytes)) {
        for (at += 2; end - at >= 8; at += 8) {
            if (has_other_byte(load_eight(at))) return std::nullopt;
        }
        for (; at != end; ++at) {
            if (*at == 0 || *at >= 0x80) return std::nullopt;
        }
        return bytes.size() - 2;
    }
    for (; end - at >= 8; at += 8) {
        if (has_other_unit(load_eight(at))) return std::nullopt;
    }
    for (; end - at >= 2; at += 2) {
        if (!is_ascii_unit(at)) return std::nullopt;
    }
    return bytes.size() / 2;
}

void copy_ascii(ByteSpan bytes, char* to) {
    const std::uint8_t* at = bytes.data();
    if (is_marked(bytes)) {
        std::copy(at + 2, at + bytes.size(), to);
        return;
    }
    const std::uint8_t* const end = at + bytes.size();
    for (; end - at >= 8; at += 8, to += 4) {
        std::uint64_t word = load_eight(at);
        word = (word | word >> 8) & 0x0000FFFF0000FFFF;
        word |= word >> 16;
        for (int i = 0; i < 4; ++i) to[i] = static_cast<char>(word >> (8 * i));
    }
    for (; end - at >= 2; at += 2) *to++ = static_cast<char>(*at);
}

}  // namespace jet

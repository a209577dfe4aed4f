#include "jet/text_codec.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint8_t kMark[] = {0xFF, 0xFE};

bool compressible(std::u16string_view text) {
    return text.size() > 2 && std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 1 && c <= 0xFF; });
}

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
    if (bytes.size() < 2 || bytes[0] != kMark[0] || bytes[1] != kMark[1]) {
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

}  // namespace jet

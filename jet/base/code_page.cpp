#include "jet/base/code_page.h"

#include <algorithm>
#include <array>
#include <vector>

namespace jet {
namespace {

constexpr char16_t kFirstUpper = 0x80;

const CodePage& known_code_page(std::uint16_t number) {
    const CodePage* page = find_code_page(number);
    if (!page) fail(errors::kReserved, "Code page " + std::to_string(number) + " is not known.");
    return *page;
}

// 0 where the bytes are no pair.
char16_t unit_of_pair(const BytePairs& pairs, std::uint8_t lead, std::uint8_t trail) {
    if (lead < pairs.first_lead || lead > pairs.last_lead) return 0;
    if (trail < BytePairs::kFirstTrail || trail > BytePairs::kLastTrail) return 0;
    return pairs.units[(lead - pairs.first_lead) * BytePairs::kTrails + (trail - BytePairs::kFirstTrail)];
}

void decode_pairs(ByteSpan bytes, const CodePage& page, std::u16string& into) {
    into.clear();
    into.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] < kFirstUpper) {
            into += bytes[i];
        } else if (const char16_t unit = i + 1 < bytes.size() ? unit_of_pair(*page.pairs, bytes[i], bytes[i + 1]) : 0) {
            into += unit;
            ++i;
        } else {
            into += page.upper[bytes[i] - kFirstUpper];
        }
    }
}

// The bytes of every unit: one, or lead byte times 256 and trail byte; 0: the code page lacks it.
using Encoding = std::vector<std::uint16_t>;

Encoding encoding_of(const CodePage& page) {
    Encoding bytes(0x10000);
    const BytePairs& pairs = *page.pairs;
    const auto add_pairs = [&](bool late) {
        for (int lead = pairs.first_lead; lead <= pairs.last_lead; ++lead) {
            if (late != (lead >= pairs.first_late_lead && lead <= pairs.last_late_lead)) continue;
            for (int trail = BytePairs::kFirstTrail; trail <= BytePairs::kLastTrail; ++trail) {
                const char16_t unit =
                    unit_of_pair(pairs, static_cast<std::uint8_t>(lead), static_cast<std::uint8_t>(trail));
                if (unit != 0 && bytes[unit] == 0) bytes[unit] = static_cast<std::uint16_t>(lead << 8 | trail);
            }
        }
    };
    for (char16_t c = 0; c < kFirstUpper; ++c) bytes[c] = c;
    for (std::uint16_t byte = kFirstUpper; byte < 0x100; ++byte) bytes[page.upper[byte - kFirstUpper]] = byte;
    add_pairs(false);
    add_pairs(true);
    return bytes;
}

template <std::size_t Index>
const Encoding& encoding_at() {
    static const Encoding encoding = encoding_of(kCodePages[Index]);
    return encoding;
}

// Made when a code page is first written.
const Encoding& encoding_for(const CodePage& page) {
    constexpr std::size_t kFirstDouble = kCodePageCount - 4;
    constexpr std::array kEncodings{encoding_at<kFirstDouble>, encoding_at<kFirstDouble + 1>,
                                    encoding_at<kFirstDouble + 2>, encoding_at<kFirstDouble + 3>};
    return kEncodings[static_cast<std::size_t>(&page - kCodePages) - kFirstDouble]();
}

ByteVector encode_pairs(std::u16string_view text, const CodePage& page) {
    const Encoding& encoding = encoding_for(page);
    ByteVector bytes;
    bytes.reserve(2 * text.size());
    for (const char16_t c : text) {
        const std::uint16_t found = encoding[c] == 0 && c != 0 ? std::uint16_t{'?'} : encoding[c];
        if (found > 0xFF) bytes.push_back(static_cast<std::uint8_t>(found >> 8));
        bytes.push_back(static_cast<std::uint8_t>(found));
    }
    return bytes;
}

}  // namespace

const CodePage* find_code_page(std::uint16_t number) {
    const auto* found = std::find_if(std::begin(kCodePages), std::end(kCodePages),
                                     [number](const CodePage& page) { return page.number == number; });
    return found == std::end(kCodePages) ? nullptr : found;
}

int byte_of(char16_t c, const CodePage& page) {
    if (c < kFirstUpper) return c;
    const auto* found = std::find(std::begin(page.upper), std::end(page.upper), c);
    return found == std::end(page.upper) ? -1 : static_cast<int>(kFirstUpper + (found - page.upper));
}

void decode_narrow(ByteSpan bytes, std::uint16_t code_page, std::u16string& into) {
    const CodePage& page = known_code_page(code_page);
    if (page.pairs != nullptr) return decode_pairs(bytes, page, into);
    into.resize(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        into[i] = bytes[i] < kFirstUpper ? bytes[i] : page.upper[bytes[i] - kFirstUpper];
    }
}

ByteVector encode_narrow(std::u16string_view text, std::uint16_t code_page) {
    const CodePage& page = known_code_page(code_page);
    if (page.pairs != nullptr) return encode_pairs(text, page);
    ByteVector bytes;
    bytes.reserve(text.size());
    for (const char16_t c : text) {
        const int byte = byte_of(c, page);
        bytes.push_back(static_cast<std::uint8_t>(byte < 0 ? '?' : byte));
    }
    return bytes;
}

bool is_in_code_page(std::u16string_view text, std::uint16_t code_page) {
    std::u16string again;
    decode_narrow(encode_narrow(text, code_page), code_page, again);
    return again == text;
}

}  // namespace jet

#include "jet/storage/text_codec.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "jet/base/error.h"
#include "jet/base/types.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace jet {
namespace {

constexpr auto& kMark = jet4::text::kCompressedMark;

bool is_narrow(char16_t c) { return c >= 1 && c <= 0xFF; }

// The compressed form is for texts longer than this.
constexpr std::size_t kShortest = 2;

bool compressible(std::u16string_view text) {
    return text.size() > kShortest && std::all_of(text.begin(), text.end(), is_narrow);
}

MutableByteSpan append_room(ByteVector& to, std::size_t bytes) {
    to.resize(to.size() + bytes);
    return MutableByteSpan(to).last(bytes);
}

template <class Text>
void append_units(ByteVector& to, const Text& text) {
    std::uint8_t* at = append_room(to, 2 * text.size()).data();
    for (const auto c : text) {
        const auto unit = static_cast<std::make_unsigned_t<decltype(c)>>(c);
        *at++ = static_cast<std::uint8_t>(unit);
        *at++ = static_cast<std::uint8_t>(unit >> 8);
    }
}

// Two bytes a character up to the last one that needs them, then one.
void append_toggling(ByteVector& to, std::u16string_view text) {
    std::size_t wide = text.size();
    while (is_narrow(text[wide - 1])) --wide;
    for (const char16_t c : text.substr(0, wide)) {
        if ((c & 0xFF) == 0) {
            fail(errors::kBadConversion, "A text that begins with U+FEFF and holds '" + to_utf8({&c, 1}) +
                                             "' cannot be kept: the format has no form for both.");
        }
    }
    append_bytes(to, kMark);
    to.push_back(0);
    append_units(to, text.substr(0, wide));
    if (wide == text.size()) return;
    to.push_back(0);
    for (const char16_t c : text.substr(wide)) to.push_back(static_cast<std::uint8_t>(c));
}

#ifdef __SSE2__

// What a text is made of, gathered piece by piece.
class Seen {
public:
    void add_units(__m128i units) {
        any_ = _mm_or_si128(any_, _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80))));
        any_ = _mm_or_si128(any_, _mm_cmpeq_epi16(units, _mm_setzero_si128()));
    }
    void add_bytes(__m128i bytes) {
        any_ = _mm_or_si128(any_, _mm_and_si128(bytes, _mm_set1_epi8(static_cast<char>(0x80))));
        any_ = _mm_or_si128(any_, _mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
    }
    void add_unit(unsigned unit) { other_ |= unit == 0 || unit >= 0x80; }
    bool is_ascii() const { return !other_ && _mm_movemask_epi8(_mm_cmpeq_epi8(any_, _mm_setzero_si128())) == 0xFFFF; }

private:
    __m128i any_ = _mm_setzero_si128();  // bits that no character of ASCII has, and the places of NUL
    bool other_ = false;
};

__m128i load_sixteen(const std::uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

bool copy_units(const std::uint8_t* at, std::size_t count, char* to) {
    Seen seen;
    const auto copy_eight = [&](std::size_t from) {
        const __m128i units = load_sixteen(at + 2 * from);
        seen.add_units(units);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + from), _mm_packus_epi16(units, units));
    };
    std::size_t done = 0;
    for (; done + 8 <= count; done += 8) copy_eight(done);
    if (count >= 8) {
        if (done < count) copy_eight(count - 8);  // some of them twice
        return seen.is_ascii();
    }
    for (; done < count; ++done) {
        seen.add_unit(static_cast<unsigned>(at[2 * done] | at[2 * done + 1] << 8));
        to[done] = static_cast<char>(at[2 * done]);
    }
    return seen.is_ascii();
}

bool copy_bytes(const std::uint8_t* at, std::size_t count, char* to) {
    Seen seen;
    const auto copy_sixteen = [&](std::size_t from) {
        const __m128i bytes = load_sixteen(at + from);
        seen.add_bytes(bytes);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + from), bytes);
    };
    const auto copy_eight = [&](std::size_t from) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at + from));
        seen.add_bytes(_mm_unpacklo_epi64(bytes, bytes));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + from), bytes);
    };
    std::size_t done = 0;
    for (; done + 16 <= count; done += 16) copy_sixteen(done);
    if (count >= 16) {
        if (done < count) copy_sixteen(count - 16);
        return seen.is_ascii();
    }
    if (count >= 8) {
        copy_eight(0);
        copy_eight(count - 8);
        return seen.is_ascii();
    }
    for (; done < count; ++done) {
        seen.add_unit(at[done]);
        to[done] = static_cast<char>(at[done]);
    }
    return seen.is_ascii();
}

#else

// A unit that is no character of ASCII, or NUL, leaves a high bit: taking 1 from NUL borrows from above.
bool copy_units(const std::uint8_t* at, std::size_t count, char* to) {
    unsigned seen = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto unit = static_cast<unsigned>(at[2 * i] | at[2 * i + 1] << 8);
        seen |= unit | (unit - 1);
        to[i] = static_cast<char>(unit);
    }
    return seen < 0x80;
}

bool copy_bytes(const std::uint8_t* at, std::size_t count, char* to) {
    unsigned seen = 0;
    for (std::size_t i = 0; i < count; ++i) {
        seen |= at[i] | (at[i] - 1u);
        to[i] = static_cast<char>(at[i]);
    }
    return seen < 0x80;
}

#endif

}  // namespace

bool begins_like_mark(std::u16string_view text) { return text.starts_with(u'\uFEFF'); }

void append_text(ByteVector& to, std::u16string_view text, bool compress) {
    if (begins_like_mark(text)) return append_toggling(to, text);
    if (!compress || !compressible(text)) return append_units(to, text);
    append_bytes(to, kMark);
    std::transform(text.begin(), text.end(), append_room(to, text.size()).begin(),
                   [](char16_t c) { return static_cast<std::uint8_t>(c); });
}

void append_ascii(ByteVector& to, std::string_view text, bool compress) {
    if (!compress || text.size() <= kShortest) return append_units(to, text);
    append_bytes(to, kMark);
    append_ascii_bytes(to, text);
}

ByteVector encode_text(std::u16string_view text, bool compress) {
    ByteVector bytes;
    append_text(bytes, text, compress);
    return bytes;
}

bool is_ascii(std::string_view text) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    // A byte that is no character of ASCII, or NUL, leaves a high bit: taking 1 from NUL borrows from above.
    std::uint64_t seen = 0;
    std::size_t at = 0;
    for (; at + sizeof seen <= text.size(); at += sizeof seen) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        seen |= word | (word - kOnes);
    }
    for (; at < text.size(); ++at) {
        const auto byte = static_cast<std::uint8_t>(text[at]);
        seen |= byte | (byte - 1u);
    }
    return (seen & kHighBits) == 0;
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
    bytes = bytes.subspan(sizeof kMark);
    if (std::memchr(bytes.data(), 0, bytes.size()) == nullptr) {
        text.resize(bytes.size());
        std::copy(bytes.begin(), bytes.end(), text.begin());
        return;
    }
    text.reserve(bytes.size());
    bool one_byte = true;  // a zero byte toggles between one and two bytes a character
    for (std::size_t i = 0; i < bytes.size();) {
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

bool copy_ascii(ByteSpan bytes, char* to) {
    if (is_marked(bytes)) return copy_bytes(bytes.data() + 2, bytes.size() - 2, to);
    return copy_units(bytes.data(), bytes.size() / 2, to);
}

}  // namespace jet

// A key of the General order is: the inline bytes of all characters, 01, the extra bytes (accents) by position, and,
// where there are any, the flags of kana and the list of characters without a weight of their own; 00 ends it.
// Positions count primary weights: a letter that expands to several takes as many.
#include "jet/indexes/sort_key.h"

#include <array>

#include "jet/base/jet4.h"
#include "jet/indexes/collation_97.h"
#include "jet/indexes/weights.h"
#include "jet/indexes/weights_1.h"

namespace jet {

namespace {

using collation::has_inline_bytes;
using collation::Kind;

using jet4::key::kEndOfSection;
using jet4::key::kEndOfText;
using jet4::key::kNoAccent;

// Inline bytes of version 0 that are a weight of their own; any other begins one of two bytes.
constexpr std::uint8_t kOneByteWeights[] = {
    0x07, 0x09, 0x0A, 0x0C, 0x0E, 0x10, 0x12, 0x14, 0x16, 0x18, 0x1A, 0x1C, 0x1E, 0x20, 0x22,
    0x24, 0x26, 0x27, 0x29, 0x2A, 0x2C, 0x2E, 0x30, 0x32, 0x36, 0x38, 0x3A, 0x3C, 0x3E, 0x40,
    0x42, 0x44, 0x46, 0x48, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C,
    0x5E, 0x60, 0x62, 0x64, 0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78,
};
constexpr auto kIsOneByteWeight = [] {
    std::array<bool, 256> is_one{};
    for (const std::uint8_t byte : kOneByteWeights) is_one[byte] = true;
    return is_one;
}();

struct Version0 {
    using Weight = collation::Weight;
    static Weight weight_of(char16_t c) { return collation::weight_of(c); }
    static std::size_t positions(const Weight& weight) {
        std::size_t count = 0;
        for (int left = weight.inline_length(); left > 0; ++count) {
            left -= kIsOneByteWeight[weight.value >> (8 * (left - 1)) & 0xFF] ? 1 : 2;
        }
        return count;
    }
};

struct Version1 {
    using Weight = collation::Weight1;
    static Weight weight_of(char16_t c) { return collation::weight_1_of(c); }
    static std::size_t positions(const Weight& weight) {
        const int length = weight.inline_length();
        const bool is_ideograph = length == 4 && weight.value >> 16 == 0xFDFF;
        return is_ideograph ? 1 : static_cast<std::size_t>(length + 1) / 2;
    }
};

// The sections after the inline bytes, gathered character by character.
template <class Version>
class Tail {
public:
    using Weight = typename Version::Weight;

    explicit Tail(KeyRule rule) : rule_(rule) {}

    void add(const Weight& weight) {
        switch (weight.kind) {
            case Kind::kIgnored: return;
            case Kind::kUnprintable: add_unprintable(weight); return;
            case Kind::kModifier: add_modifier(weight); return;
            case Kind::kKana:
                kana_flags_.push_back(weight.flag);
                has_kana_ = true;
                break;
            default: break;
        }
        const bool is_counted_once = rule_ != KeyRule::kOwn || weight.inline_length() == 1;
        if (weight.extra_length() > 0) {
            pad_to(position_);
            append_be(extras_, weight.extra, weight.extra_length());
            accounted_ = position_ + (rule_ != KeyRule::kOwn ? 1 : static_cast<std::size_t>(weight.extra_length()));
            touched_ = true;
        }
        position_ += is_counted_once ? 1 : Version::positions(weight);
    }

    void append_to(ByteVector& to) {
        while (!extras_.empty() && extras_.back() <= kNoAccent) extras_.pop_back();
        append_bytes(to, extras_);
        if (!has_kana_ && unprintables_.empty()) return;
        to.insert(to.end(), 2, kEndOfSection);
        if (has_kana_) append_kana_flags(to);
        if (!unprintables_.empty()) {
            // A kana letter leaves its mark here even where its flags have been trimmed to nothing.
            const bool is_marked = rule_ == KeyRule::kOnePositionNoMarks ? !kana_flags_.empty() : has_kana_;
            if (is_marked) to.push_back(0xFF);
            to.push_back(kEndOfSection);
            append_bytes(to, unprintables_);
        }
    }

private:
    void pad_to(std::size_t position) {
        if (position <= accounted_) return;
        extras_.insert(extras_.end(), position - accounted_, kNoAccent);
        accounted_ = position;
    }

    void add_modifier(const Weight& weight) {
        pad_to(position_);
        touched_ = true;
        if (extras_.empty()) {
            extras_.push_back(static_cast<std::uint8_t>(weight.value));
            leading_modifier_ = 1;
        } else {
            extras_.back() = static_cast<std::uint8_t>(extras_.back() + weight.value);
        }
    }

    void add_unprintable(const Weight& weight) {
        const std::size_t place = touched_ ? extras_.size() + position_ - accounted_ - leading_modifier_ : position_;
        append_be(unprintables_, (7 + 4 * place) | 0x8000, 2);
        unprintables_.push_back(0x06);
        unprintables_.push_back(static_cast<std::uint8_t>(weight.value));
    }

    void append_kana_flags(ByteVector& to) {
        static constexpr std::uint8_t kKanaEnd[] = {0xFF, 0x02, 0x80, 0xFF, 0x80};
        while (!kana_flags_.empty() && kana_flags_.back() == 3) kana_flags_.pop_back();
        for (std::size_t i = 0; i < kana_flags_.size(); i += 3) {
            int packed = 0x80;
            for (std::size_t j = 0; j < 3 && i + j < kana_flags_.size(); ++j) {
                packed |= kana_flags_[i + j] << (4 - 2 * j);
            }
            to.push_back(static_cast<std::uint8_t>(packed));
        }
        append_bytes(to, kKanaEnd);
    }

    KeyRule rule_;
    std::size_t position_ = 0;   // weights so far
    std::size_t accounted_ = 0;  // of them, those that extras_ covers
    std::size_t leading_modifier_ = 0;
    bool touched_ = false;
    bool has_kana_ = false;
    ByteVector extras_;
    ByteVector kana_flags_;
    ByteVector unprintables_;
};

// The characters that an index takes into account.
std::u16string_view key_text(std::u16string_view text) {
    text = text.substr(0, jet4::kMaxTextCharacters);
    const std::size_t last = text.find_last_not_of(u' ');
    return last == std::u16string_view::npos ? std::u16string_view() : text.substr(0, last + 1);
}

// Everything but the 00 at the end.
template <class Version>
void append_sections_of(ByteVector& to, std::u16string_view text, KeyRule rule) {
    Tail<Version> tail(rule);
    for (const char16_t c : text) {
        const auto weight = Version::weight_of(c);
        if (has_inline_bytes(weight.kind)) append_be(to, weight.value, weight.inline_length());
        tail.add(weight);
    }
    to.push_back(kEndOfSection);
    tail.append_to(to);
}

void append_whole_key(ByteVector& to, std::u16string_view text, TextOrder order, KeyRule rule) {
    switch (order) {
        case TextOrder::kGeneral97:
        case TextOrder::kLatin97: append_key_97(to, text, rule); return;
        case TextOrder::kGeneral: append_sections_of<Version0>(to, text, rule); break;
        case TextOrder::kGeneral1: append_sections_of<Version1>(to, text, rule); break;
    }
    to.push_back(kEndOfText);
}

}  // namespace

void append_sections(ByteVector& to, std::u16string_view text) {
    append_sections_of<Version0>(to, text, KeyRule::kOwn);
}

void append_sort_key(ByteVector& to, std::u16string_view text, TextOrder order, KeyRule rule) {
    append_whole_key(to, key_text(text), order, rule);
}

void append_descending_sort_key(ByteVector& to, std::u16string_view text, TextOrder order, KeyRule rule) {
    const std::size_t start = to.size();
    append_whole_key(to, key_text(text), order, rule);
    for (std::size_t i = start; i < to.size(); ++i) to[i] = static_cast<std::uint8_t>(~to[i]);
    if (order != TextOrder::kGeneral97 && order != TextOrder::kLatin97) to.push_back(kEndOfText);
}

}  // namespace jet

// Sort keys, comparison and case folding in the General text order.
//
// A key is: the inline bytes of all characters, 01, the extra bytes (accents) by position, and, where there
// are any, the flags of kana and the list of characters without a weight of their own; 00 ends it. Two texts
// of up to 255 characters are equal exactly when their keys are.
#include "jet/indexes/collation.h"

#include <algorithm>

#include "jet/base/jet4.h"
#include "jet/indexes/collation_table.h"

namespace jet {

namespace {

using collation::Kind;
using collation::Weight;

constexpr std::uint8_t kEndOfSection = 0x01;
constexpr std::uint8_t kEndOfKey = 0x00;
constexpr std::uint8_t kNoExtra = 0x02;
constexpr std::uint8_t kFirstLetter = 0x4A;  // inline bytes from here on belong to letters

bool is_surrogate(char16_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// Surrogates have no rows in the table: their weights follow from the code unit.
Weight surrogate_weight(char16_t c) {
    Weight weight;
    weight.kind = Kind::kAccented;
    weight.lengths = 0x12;
    weight.extra = 0x3F;
    if (c < 0xDC00) {
        weight.value = c - 10238u;
        return weight;
    }
    const unsigned offset = c - 0xDC00u;
    const unsigned less = offset < 8 ? 9992 : offset < 262 ? 9990 : offset < 516 ? 9988 : offset < 770 ? 9986 : 9984;
    weight.value = c - less;
    return weight;
}

Weight wide_weight(char16_t c) {
    if (is_surrogate(c)) return surrogate_weight(c);
    const auto* first = collation::kRanges + collation::kFirstRange[c >> 8];
    const auto* last =
        collation::kRanges + std::min<std::size_t>(collation::kFirstRange[(c >> 8) + 1] + 1u, collation::kRangeCount);
    const auto* next = std::upper_bound(
        first, last, c, [](char16_t unit, const collation::Range& range) { return unit < range.first; });
    const collation::Range& range = *(next - 1);
    Weight weight = range.weight;
    if (weight.kind == Kind::kSimple) weight.value += static_cast<std::uint32_t>(c - range.first);
    return weight;
}

Weight weight_of(char16_t c) { return c < 256 ? collation::kLatin[c] : wide_weight(c); }

bool has_inline_bytes(Kind kind) { return kind == Kind::kSimple || kind == Kind::kAccented || kind == Kind::kKana; }

void append_value(ByteVector& to, std::uint32_t value, int bytes) { append_be(to, value, bytes); }

// The sections after the inline bytes, gathered character by character.
class Tail {
public:
    void add(const Weight& weight) {
        switch (weight.kind) {
            case Kind::kIgnored: return;
            case Kind::kUnprintable: add_unprintable(weight); return;
            case Kind::kModifier: add_modifier(weight); return;
            case Kind::kKana: kana_flags_.push_back(weight.flag); break;
            default: break;
        }
        if (weight.extra_length() > 0) {
            pad_to(position_);
            append_value(extras_, weight.extra, weight.extra_length());
            accounted_ = position_ + 1;
            touched_ = true;
        }
        ++position_;
    }

    void append_to(ByteVector& to) {
        while (!extras_.empty() && extras_.back() <= kNoExtra) extras_.pop_back();
        append_bytes(to, extras_);
        if (kana_flags_.empty() && unprintables_.empty()) return;
        to.insert(to.end(), 2, kEndOfSection);
        if (!kana_flags_.empty()) append_kana_flags(to);
        if (!unprintables_.empty()) {
            if (!kana_flags_.empty()) to.push_back(0xFF);
            to.push_back(kEndOfSection);
            append_bytes(to, unprintables_);
        }
    }

private:
    void pad_to(std::size_t position) {
        if (position > accounted_) extras_.insert(extras_.end(), position - accounted_, kNoExtra);
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
        const std::size_t place = touched_ ? extras_.size() + (position_ - accounted_) - leading_modifier_ : position_;
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

    std::size_t position_ = 0;   // characters with inline bytes so far
    std::size_t accounted_ = 0;  // of them, those that extras_ covers
    std::size_t leading_modifier_ = 0;
    bool touched_ = false;
    ByteVector extras_;
    ByteVector kana_flags_;
    ByteVector unprintables_;
};

std::u16string_view without_trailing_blanks(std::u16string_view text) {
    const std::size_t last = text.find_last_not_of(u' ');
    return last == std::u16string_view::npos ? std::u16string_view() : text.substr(0, last + 1);
}

std::u16string_view key_text(std::u16string_view text) {
    return without_trailing_blanks(text.substr(0, jet4::kMaxTextCharacters));
}

// Everything but the 00 at the end.
void append_sections(ByteVector& to, std::u16string_view text) {
    Tail tail;
    for (const char16_t c : text) {
        const Weight weight = weight_of(c);
        if (has_inline_bytes(weight.kind)) append_value(to, weight.value, weight.inline_length());
        tail.add(weight);
    }
    to.push_back(kEndOfSection);
    tail.append_to(to);
}

// The inline bytes of a text one after the other, without storing them.
class InlineBytes {
public:
    explicit InlineBytes(std::u16string_view text) : text_(text) {}

    // -1 at the end.
    int next() {
        while (left_ == 0) {
            if (at_ == text_.size()) return -1;
            const Weight weight = weight_of(text_[at_++]);
            if (weight.kind != Kind::kSimple && weight.kind != Kind::kIgnored) needs_tail_ = true;
            if (!has_inline_bytes(weight.kind)) continue;
            value_ = weight.value;
            left_ = weight.inline_length();
        }
        --left_;
        return static_cast<std::uint8_t>(value_ >> (8 * left_));
    }

    // Whether a character seen so far has more than inline bytes.
    bool needs_tail() const { return needs_tail_; }

private:
    std::u16string_view text_;
    std::size_t at_ = 0;
    std::uint32_t value_ = 0;
    int left_ = 0;
    bool needs_tail_ = false;
};

// Whether two characters put the same bytes into every section of a key; false where that takes a closer look.
bool same_weight(char16_t a, char16_t b) {
    if (a == b) return true;
    if (a > 0xFF || b > 0xFF) return false;
    const Weight& left = collation::kLatin[a];
    return left.kind == Kind::kSimple && left == collation::kLatin[b];
}

int sign(bool less) { return less ? -1 : 1; }

bool is_letter(const Weight& weight) {
    if (!has_inline_bytes(weight.kind)) return false;
    return weight.value >> (8 * (weight.inline_length() - 1)) >= kFirstLetter;
}

// The bytes of a weight as a number of fixed width, so that numbers compare as the bytes do.
std::uint32_t aligned_value(const Weight& weight) {
    return has_inline_bytes(weight.kind) ? weight.value << (8 * (4 - weight.inline_length())) : 0;
}

std::uint32_t aligned_extra(const Weight& weight) {
    return weight.extra_length() == 1 ? weight.extra * 256u : weight.extra;
}

}  // namespace

void append_sort_key(ByteVector& to, std::u16string_view text) {
    append_sections(to, key_text(text));
    to.push_back(kEndOfKey);
}

void append_descending_sort_key(ByteVector& to, std::u16string_view text) {
    const std::size_t start = to.size();
    append_sections(to, key_text(text));
    to.push_back(kEndOfKey);
    for (std::size_t i = start; i < to.size(); ++i) to[i] = static_cast<std::uint8_t>(~to[i]);
    to.push_back(kEndOfKey);
}

bool equal_text(std::u16string_view a, std::u16string_view b) { return compare_text(a, b) == 0; }

int compare_text(std::u16string_view a, std::u16string_view b) {
    a = without_trailing_blanks(a);
    b = without_trailing_blanks(b);
    const auto differing = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same_weight);
    if (differing.first == a.end() && differing.second == b.end()) return 0;
    // The rest is looked at first: the common beginning adds the same to both.
    const std::size_t common = static_cast<std::size_t>(differing.first - a.begin());
    InlineBytes left(a.substr(common));
    InlineBytes right(b.substr(common));
    for (;;) {
        const int x = left.next();
        const int y = right.next();
        if (x != y) return sign(x < y);
        if (x < 0) break;
    }
    if (!left.needs_tail() && !right.needs_tail()) return 0;
    ByteVector left_key;
    ByteVector right_key;
    append_sections(left_key, a);
    append_sections(right_key, b);
    left_key.push_back(kEndOfKey);
    right_key.push_back(kEndOfKey);
    if (left_key == right_key) return 0;
    return sign(left_key < right_key);
}

bool equal_character(char16_t a, char16_t b) {
    if (a == b) return true;
    const Weight left = weight_of(a);
    return is_letter(left) && left == weight_of(b);
}

int compare_character(char16_t a, char16_t b) {
    if (equal_character(a, b)) return 0;
    const Weight left = weight_of(a);
    const Weight right = weight_of(b);
    if (aligned_value(left) != aligned_value(right)) return sign(aligned_value(left) < aligned_value(right));
    if (aligned_extra(left) != aligned_extra(right)) return sign(aligned_extra(left) < aligned_extra(right));
    if (left.flag != right.flag) return sign(left.flag < right.flag);
    return sign(a < b);
}

}  // namespace jet

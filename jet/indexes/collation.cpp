// Comparison and case folding in the General text order. Two texts of up to 255 characters are equal exactly when
// their sort keys are.
#include "jet/indexes/collation.h"

#include <algorithm>

#include "jet/base/jet4.h"
#include "jet/indexes/sort_key.h"
#include "jet/indexes/weights.h"

namespace jet {

namespace {

using collation::has_inline_bytes;
using collation::Kind;
using collation::Weight;
using collation::weight_of;

constexpr std::uint8_t kFirstLetter = 0x4A;  // inline bytes from here on belong to letters

std::u16string_view without_trailing_blanks(std::u16string_view text) {
    const std::size_t last = text.find_last_not_of(u' ');
    return last == std::u16string_view::npos ? std::u16string_view() : text.substr(0, last + 1);
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
    left_key.push_back(jet4::key::kEndOfText);
    right_key.push_back(jet4::key::kEndOfText);
    if (left_key == right_key) return 0;
    return sign(left_key < right_key);
}

std::optional<int> compare_latin(std::span<const std::uint8_t> a, std::u16string_view b) {
    const auto decides = [](char16_t c) { return c != 0 && c <= 0xFF && collation::kLatin[c].kind == Kind::kSimple; };
    const std::size_t both = std::min(a.size(), b.size());
    std::size_t at = 0;
    // A compressed text uses zero bytes to change its form.
    while (at < both && a[at] != 0 && same_weight(a[at], b[at])) ++at;
    if (at < both) {
        if (!decides(a[at]) || !decides(b[at])) return std::nullopt;
        const Weight& left = collation::kLatin[a[at]];
        const Weight& right = collation::kLatin[b[at]];
        if (left.inline_length() != right.inline_length()) return std::nullopt;
        return sign(left.value < right.value);
    }
    if (a.size() == b.size()) return 0;
    const char16_t next = a.size() > both ? a[both] : b[both];
    if (next == u' ' || !decides(next)) return std::nullopt;
    return sign(a.size() == both);
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

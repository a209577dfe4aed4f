#include "jet/sql/like.h"

#include <algorithm>

#include "jet/indexes/collation.h"

namespace jet::sql {

std::optional<LikePattern> LikePattern::compile(std::u16string_view pattern) {
    LikePattern compiled;
    compiled.items_.reserve(pattern.size());
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const char16_t c = pattern[at];
        if (c == u'*') {
            compiled.add(Kind::kAnyRun);
        } else if (c == u'?') {
            compiled.add(Kind::kAnyOne);
        } else if (c == u'#') {
            compiled.add(Kind::kDigit);
        } else if (c == u'[') {
            const std::size_t end = pattern.find(u']', at + 1);
            if (end == std::u16string_view::npos) return std::nullopt;
            if (!compiled.add_list(pattern.substr(at + 1, end - at - 1))) return std::nullopt;
            at = end;
        } else {
            compiled.add(Kind::kCharacter, c);
        }
    }
    return compiled;
}

void LikePattern::add(Kind kind, char16_t character) {
    // Runs of * mean the same as one.
    if (kind == Kind::kAnyRun && !items_.empty() && items_.back().kind == Kind::kAnyRun) return;
    Item item;
    item.kind = kind;
    item.character = character;
    items_.push_back(item);
}

// The characters between [ and ]. False for a range that descends.
bool LikePattern::add_list(std::u16string_view list) {
    if (list.empty()) return true;  // [] stands for no character at all
    if (list == u"!") {
        add(Kind::kCharacter, u'!');
        return true;
    }
    const bool negated = list.front() == u'!';
    if (negated) list.remove_prefix(1);
    add(negated ? Kind::kNotInList : Kind::kInList);
    items_.back().first_range = static_cast<std::uint32_t>(ranges_.size());
    for (std::size_t at = 0; at < list.size();) {
        CharacterRange range{list[at], list[at]};
        if (at + 2 < list.size() && list[at + 1] == u'-') {
            range.last = list[at + 2];
            if (compare_character(range.first, range.last) > 0) return false;
            at += 3;
        } else {
            ++at;
        }
        ranges_.push_back(range);
        ++items_.back().range_count;
    }
    return true;
}

bool LikePattern::in_list(const Item& item, char16_t c) const {
    const auto first = ranges_.begin() + item.first_range;
    return std::any_of(first, first + item.range_count, [c](const CharacterRange& range) {
        if (range.first == range.last) return equal_character(range.first, c);
        return compare_character(range.first, c) <= 0 && compare_character(c, range.last) <= 0;
    });
}

bool LikePattern::accepts(const Item& item, char16_t c) const {
    switch (item.kind) {
        case Kind::kAnyOne: return true;
        case Kind::kDigit: return c >= u'0' && c <= u'9';
        case Kind::kCharacter: return equal_character(item.character, c);
        case Kind::kInList: return in_list(item, c);
        case Kind::kNotInList: return !in_list(item, c);
        case Kind::kAnyRun: break;
    }
    return false;
}

// Every item but * takes exactly one character, so after a failure only the latest * need take one more.
bool LikePattern::matches(std::u16string_view value) const {
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t item = 0;
    std::size_t at = 0;
    std::size_t run_item = kNone;
    std::size_t run_at = 0;
    while (at < value.size()) {
        if (item < items_.size() && items_[item].kind == Kind::kAnyRun) {
            run_item = item++;
            run_at = at;
            if (item == items_.size()) return true;
        } else if (item < items_.size() && accepts(items_[item], value[at])) {
            ++item;
            ++at;
        } else if (run_item != kNone) {
            item = run_item + 1;
            at = ++run_at;
        } else {
            return false;
        }
    }
    while (item < items_.size() && items_[item].kind == Kind::kAnyRun) ++item;
    return item == items_.size();
}

}  // namespace jet::sql

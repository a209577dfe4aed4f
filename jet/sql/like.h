// Patterns of LIKE: * ? # [list] [!list], matched against the whole value without regard to case.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet::sql {

class LikePattern {
public:
    // None for an invalid pattern: a list without its end, or a range that descends.
    static std::optional<LikePattern> compile(std::u16string_view pattern);

    // At most (characters of the pattern) x (characters of the value) steps, whatever the pattern.
    bool matches(std::u16string_view value) const;

private:
    enum class Kind : std::uint8_t { kAnyRun, kAnyOne, kDigit, kCharacter, kInList, kNotInList };
    struct Item {
        Kind kind = Kind::kCharacter;
        char16_t character = 0;
        std::uint32_t first_range = 0;
        std::uint32_t range_count = 0;
    };
    struct CharacterRange {
        char16_t first = 0;
        char16_t last = 0;
    };

    bool add_list(std::u16string_view list);
    void add(Kind kind, char16_t character = 0);
    bool in_list(const Item& item, char16_t c) const;
    bool accepts(const Item& item, char16_t c) const;

    std::vector<Item> items_;
    std::vector<CharacterRange> ranges_;
};

}  // namespace jet::sql

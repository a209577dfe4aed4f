// Owns the environment's locale: date format and narrow code page, each read once. Invariant: the process's locale is
// neither read nor set, because it belongs to the host.
#include "os/locale_posix.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "os/code_page.h"

namespace os::detail {
namespace {

struct FreeLocale {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

// The environment's locale for one category; null where that locale is not installed.
Locale environment_locale(int category_mask) { return Locale(::newlocale(category_mask, "", nullptr)); }

enum class Field { kDay, kMonth, kYear };

std::optional<Field> field_of(char conversion) {
    switch (conversion) {
        case 'd':
        case 'e': return Field::kDay;
        case 'm':
        case 'b':
        case 'B':
        case 'h': return Field::kMonth;
        case 'y':
        case 'Y':
        case 'C':
        case 'g':
        case 'G': return Field::kYear;
        default: return std::nullopt;
    }
}

DateOrder order_that_begins_with(Field field) {
    switch (field) {
        case Field::kDay: return DateOrder::kDayMonthYear;
        case Field::kMonth: return DateOrder::kMonthDayYear;
        case Field::kYear: return DateOrder::kYearMonthDay;
    }
    return DateOrder::kMonthDayYear;
}

// Letters and digits would merge with the numbers; "#" and quotes end a date in a statement.
bool is_separator_char(char c) { return std::string_view("/.-,:;_ ").find(c) != std::string_view::npos; }

std::string usable_separator(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    constexpr std::size_t kMostCharacters = 3;
    const bool usable =
        !text.empty() && text.size() <= kMostCharacters && std::all_of(text.begin(), text.end(), is_separator_char);
    return usable ? std::string(text) : "/";
}

std::string_view environment_locale_name() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

bool environment_is_utf8() {
    static const bool answer = [] {
        const Locale locale = environment_locale(LC_CTYPE_MASK);
        if (!locale) return locale_name_says_utf8(environment_locale_name());
        return std::string_view(::nl_langinfo_l(CODESET, locale.get())) == "UTF-8";
    }();
    return answer;
}

}  // namespace

DateFormat date_format_of_pattern(std::string_view pattern) {
    std::optional<Field> first;
    std::string between;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%' || i + 1 == pattern.size()) {
            if (first) between.push_back(pattern[i]);
            continue;
        }
        // Flags, width and the modifiers for alternative digits do not affect the order.
        i = std::min(pattern.find_first_not_of("_-0^#123456789EO", i + 1), pattern.size() - 1);
        if (pattern[i] == 'D') return {"/", DateOrder::kMonthDayYear};
        if (pattern[i] == 'F') return {"-", DateOrder::kYearMonthDay};
        const std::optional<Field> field = field_of(pattern[i]);
        if (!field) {
            between.clear();
        } else if (first) {
            return {usable_separator(between), order_that_begins_with(*first)};
        } else {
            first = field;
        }
    }
    return {"/", first ? order_that_begins_with(*first) : DateOrder::kMonthDayYear};
}

bool locale_name_says_utf8(std::string_view name) {
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) return false;
    std::string codeset;
    for (const char c : name.substr(dot + 1, name.find('@', dot) - dot - 1)) {
        if (c >= 'A' && c <= 'Z')
            codeset.push_back(static_cast<char>(c - 'A' + 'a'));
        else if (c != '-' && c != '_')
            codeset.push_back(c);
    }
    return codeset == "utf8";
}

DateFormat system_date_format() {
    static const DateFormat answer = [] {
        const Locale locale = environment_locale(LC_TIME_MASK);
        return locale ? date_format_of_pattern(::nl_langinfo_l(D_FMT, locale.get())) : DateFormat{"/", {}};
    }();
    return answer;
}

std::u16string system_widen(std::string_view narrow) {
    return environment_is_utf8() ? utf8_to_utf16(narrow) : windows_1252_to_utf16(narrow);
}

std::string system_narrow(std::u16string_view wide) {
    return environment_is_utf8() ? utf16_to_utf8(wide) : utf16_to_windows_1252(wide);
}

}  // namespace os::detail

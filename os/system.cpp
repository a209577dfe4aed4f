// Owns the overrides for tests and the platform-independent parts: joining and splitting of paths, and the arithmetic
// of OLE dates.
#include "os/system.h"

#include <algorithm>
#include <chrono>

#include "os/code_page.h"
#include "os/system_parts.h"

namespace os {
namespace {

detail::DateFormat date_format_override;
CodePage code_page = CodePage::kSystem;

}  // namespace

std::string folder_of(std::string_view path) {
    std::size_t end = detail::find_last_separator(path);
    if (end == std::string_view::npos) return {};
    const std::size_t last = end;
    while (end > 0 && detail::find_last_separator(path.substr(0, end)) == end - 1) --end;
    // A root needs its separator.
    const bool is_root = end == 0 || (detail::kPathSeparator == '\\' && end == 2 && path[1] == ':');
    return std::string(path.substr(0, is_root ? last + 1 : end));
}

std::string join_path(std::string_view folder, std::string_view name) {
    while (!name.empty() && !folder.empty() && detail::is_path_separator(name.front())) name.remove_prefix(1);
    if (folder.empty()) return std::string(name);
    std::string path(folder);
    while (!path.empty() && detail::find_last_separator(path) == path.size() - 1) path.pop_back();
    path.push_back(detail::kPathSeparator);
    path.append(name);
    return path;
}

std::string date_separator() {
    return date_format_override.separator.empty() ? detail::system_date_format().separator
                                                  : date_format_override.separator;
}

DateOrder date_order() {
    return date_format_override.separator.empty() ? detail::system_date_format().order : date_format_override.order;
}

void set_date_format_for_test(std::string_view separator, DateOrder order) {
    date_format_override = {std::string(separator), order};
}

std::u16string widen(std::string_view narrow) {
    switch (code_page) {
        case CodePage::kUtf8: return detail::utf8_to_utf16(narrow);
        case CodePage::kWindows1252: return detail::windows_1252_to_utf16(narrow);
        case CodePage::kSystem: break;
    }
    return detail::system_widen(narrow);
}

bool narrow_ascii(std::u16string_view wide, char* to) {
    unsigned bits = 0;
    for (const char16_t unit : wide) {
        bits |= unit;
        *to++ = static_cast<char>(unit);
    }
    return bits < 0x80;
}

std::string narrow(std::u16string_view wide) {
    switch (code_page) {
        case CodePage::kUtf8: return detail::utf16_to_utf8(wide);
        case CodePage::kWindows1252: return detail::utf16_to_windows_1252(wide);
        case CodePage::kSystem: break;
    }
    return detail::system_narrow(wide);
}

void set_code_page(CodePage page) { code_page = page; }

double detail::ole_date_of(const LocalTime& time) {
    constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
    constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
    const std::chrono::year_month_day date(std::chrono::year(time.year),
                                           std::chrono::month(static_cast<unsigned>(time.month)),
                                           std::chrono::day(static_cast<unsigned>(time.day)));
    const std::int64_t days = (std::chrono::sys_days(date) - kDayZero).count();
    // A day of fixed length has no room for a leap second.
    const std::int64_t seconds = time.hour * 3600 + time.minute * 60 + std::min(time.second, 59);
    const std::int64_t milliseconds = seconds * 1000 + time.millisecond;
    return static_cast<double>(days * kMillisecondsPerDay + milliseconds) / static_cast<double>(kMillisecondsPerDay);
}

double local_time_as_ole_date() { return detail::ole_date_of(detail::system_local_time()); }

}  // namespace os

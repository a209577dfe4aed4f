// Owns what the component asks of Windows besides files: the module path, the system locale's date format, the ANSI
// code page and the local time.

#include <algorithm>
#include <array>
#include <cwchar>

#include "os/code_page.h"
#include "os/module_win32.h"
#include "os/path_text.h"
#include "os/system_parts.h"
#include "os/windows_api_win32.h"

namespace os {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "Windows text is UTF-16");

constexpr UINT kUtf8 = 65001;
constexpr UINT kWindows1252 = 1252;

// An item of the system default locale; "" when unavailable.
std::string system_locale_item(LCTYPE item) {
    constexpr LCID kSystemDefault = 0x800;
    std::array<wchar_t, 100> text{};
    const int size = ::GetLocaleInfoW(kSystemDefault, item, text.data(), static_cast<int>(text.size()) - 1);
    if (size <= 0) return {};
    // Not the system's narrow function: it replaces a character that the code page lacks by a similar one.
    return detail::system_narrow(std::u16string(text.data(), text.data() + std::wcslen(text.data())));
}

}  // namespace

HMODULE module_of(const void* address) {
    HMODULE module = nullptr;
    if (address == nullptr) return module;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    ::GetModuleHandleExW(flags, static_cast<LPCWSTR>(address), &module);
    return module;
}

HMODULE own_module() { return module_of(reinterpret_cast<const void*>(&own_module)); }

std::string module_path() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(own_module(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path_of_units({reinterpret_cast<const char16_t*>(path.data()), length});
        // The path was truncated.
        path.resize(path.size() * 2);
    }
}

bool detail::is_path_separator(char c) { return c == '\\' || c == '/'; }

std::size_t detail::find_last_separator(std::string_view path) { return path.find_last_of("\\/"); }

detail::DateFormat detail::system_date_format() {
    constexpr LCTYPE kDateSeparator = 29;
    constexpr LCTYPE kDateOrder = 33;
    DateFormat format;
    format.separator = system_locale_item(kDateSeparator);
    if (format.separator.empty()) format.separator = "/";
    const std::string order = system_locale_item(kDateOrder);
    if (order == "1") format.order = DateOrder::kDayMonthYear;
    if (order == "2") format.order = DateOrder::kYearMonthDay;
    return format;
}

std::u16string detail::widen_from(unsigned code_page, std::string_view narrow) {
    if (narrow.empty()) return {};
    const auto convert = [code_page](std::string_view from, wchar_t* to, int room) {
        return ::MultiByteToWideChar(code_page, MB_ERR_INVALID_CHARS, from.data(), static_cast<int>(from.size()), to,
                                     room);
    };
    std::u16string wide;
    if (const int units = convert(narrow, nullptr, 0); units > 0) {
        wide.resize(static_cast<std::size_t>(units));
        convert(narrow, reinterpret_cast<wchar_t*>(wide.data()), units);
        return wide;
    }
    // Character by character, for the system would hide an unknown byte behind one that stands for something.
    constexpr int kMostUnits = 4;
    while (!narrow.empty()) {
        const bool is_lead = ::IsDBCSLeadByteEx(code_page, static_cast<BYTE>(narrow.front())) != 0;
        const std::size_t length = is_lead && narrow.size() > 1 ? 2 : 1;
        std::array<wchar_t, kMostUnits> character{};
        const int units = is_lead && length == 1 ? 0 : convert(narrow.substr(0, length), character.data(), kMostUnits);
        if (units > 0) {
            wide.append(character.begin(), character.begin() + units);
            narrow.remove_prefix(length);
        } else {
            wide.push_back(kUnknownCharacter);
            narrow.remove_prefix(1);
        }
    }
    return wide;
}

std::u16string detail::system_widen(std::string_view narrow) {
    const UINT code_page = ::GetACP();
    if (code_page == kUtf8) return utf8_to_utf16(narrow);
    if (code_page == kWindows1252) return windows_1252_to_utf16(narrow);
    return widen_from(code_page, narrow);
}

std::string detail::system_narrow(std::u16string_view wide) {
    const UINT code_page = ::GetACP();
    if (code_page == kUtf8) return utf16_to_utf8(wide);
    if (code_page == kWindows1252) return utf16_to_windows_1252(wide);
    return narrow_to(code_page, wide);
}

std::string detail::narrow_to(unsigned code_page, std::u16string_view wide) {
    if (wide.empty()) return {};
    // Replacing a lost letter by a lookalike would be a silent change.
    constexpr DWORD kFlags = WC_NO_BEST_FIT_CHARS;
    const auto* text = reinterpret_cast<const wchar_t*>(wide.data());
    const int units = static_cast<int>(wide.size());
    const int size = ::WideCharToMultiByte(code_page, kFlags, text, units, nullptr, 0, "?", nullptr);
    std::string narrow(static_cast<std::size_t>(std::max(size, 0)), '\0');
    ::WideCharToMultiByte(code_page, kFlags, text, units, narrow.data(), size, "?", nullptr);
    return narrow;
}

detail::LocalTime detail::system_local_time() {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {.year = now.wYear,
            .month = now.wMonth,
            .day = now.wDay,
            .hour = now.wHour,
            .minute = now.wMinute,
            .second = now.wSecond,
            .millisecond = now.wMilliseconds};
}

}  // namespace os

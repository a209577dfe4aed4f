#include "tools/words.h"

#ifdef _WIN32

#include <kvdb/com.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>

#include "jet/types.h"
#include "os/system.h"

namespace tools {

std::vector<std::string> command_line_words(int, char**) {
    constexpr UINT kUtf8 = 65001;
    SetConsoleOutputCP(kUtf8);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> words;
    int count = 0;
    LPWSTR* const list = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) words.push_back(jet::to_utf8(reinterpret_cast<const char16_t*>(list[i])));
    LocalFree(list);
    return words;
}

std::string to_system_path(const std::string& word) { return os::narrow(jet::from_utf8(word)); }

std::string from_system_path(const std::string& path) { return jet::to_utf8(os::widen(path)); }

}  // namespace tools

#else

namespace tools {

std::vector<std::string> command_line_words(int argc, char** argv) { return {argv + 1, argv + argc}; }

std::string to_system_path(const std::string& word) { return word; }

std::string from_system_path(const std::string& path) { return path; }

}  // namespace tools

#endif

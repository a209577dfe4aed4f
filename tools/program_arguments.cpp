#include "tools/program_arguments.h"

#ifdef _WIN32

#include <kvdb/com.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>

#include "jet/base/types.h"

namespace tools {

std::vector<std::string> program_arguments(int, char**) {
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

}  // namespace tools

#else

namespace tools {

std::vector<std::string> program_arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

}  // namespace tools

#endif

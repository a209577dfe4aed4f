#include "tools/terminal.h"

#ifdef _WIN32
#include <kvdb/com.h>

#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace tools {

#ifdef _WIN32

// Only a console has a screen buffer; the null device is a terminal to the C library.
std::size_t terminal_columns() {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen)) return 0;
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

bool errors_go_to_terminal() {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    return GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &screen) != 0;
}

#else

std::size_t terminal_columns() {
    if (::isatty(STDOUT_FILENO) == 0) return 0;
    winsize size{};
    constexpr std::size_t kUsual = 80;
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
    return size.ws_col;
}

bool errors_go_to_terminal() { return ::isatty(STDERR_FILENO) != 0; }

#endif

}  // namespace tools

#include "tools/output.h"

#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#include <csignal>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <vector>

#include "tools/progress.h"

namespace tools {
namespace {

constexpr int kStandardOutput = 1;
constexpr std::size_t kMostWaiting = 1u << 16;

// One share of the bytes; how many were taken, or -1 with errno set.
long write_some(const char* bytes, std::size_t count) {
#ifdef _WIN32
    return ::_write(kStandardOutput, bytes, static_cast<unsigned>(count));
#else
    return static_cast<long>(::write(kStandardOutput, bytes, count));
#endif
}

int close_stream() {
#ifdef _WIN32
    return ::_close(kStandardOutput);
#else
    return ::close(kStandardOutput);
#endif
}

}  // namespace

void Output::write(std::string_view utf8) {
    if (is_lost()) return;
    has_printed_ = has_printed_ || !utf8.empty();
    waiting_ += utf8;
    if (waiting_.size() < kMostWaiting) return;
    // Whole lines, so that a line about the progress finds its place between them.
    const std::size_t end = waiting_.rfind('\n');
    if (end == std::string::npos) return flush();
    send(std::string_view(waiting_).substr(0, end + 1));
    waiting_.erase(0, end + 1);
}

void Output::print(const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, values);
    va_end(values);
    std::vector<char> text(static_cast<std::size_t>(std::max(length, 0)) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    write({text.data(), text.size() - 1});
}

void Output::flush() {
    send(waiting_);
    waiting_.clear();
}

void Output::send(std::string_view text) {
    if (text.empty()) return;
    Progress::make_room();
    is_at_line_begin_ = text.back() == '\n';
    for (std::size_t done = 0; done < text.size() && !is_lost();) {
        errno = 0;
        const long count = write_some(text.data() + done, std::min(text.size() - done, kMostWaiting));
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            error_ = errno != 0 ? errno : ENOSPC;
        }
    }
}

void Output::finish() {
    flush();
    // A stream that was never there is no loss to a command that prints nothing.
    if (close_stream() != 0 && !is_lost() && has_printed_ && errno != EINTR) error_ = errno;
}

bool Output::reader_has_gone() const {
#ifdef _WIN32
    return error_ == EPIPE || error_ == EINVAL;  // the C library's two answers
#else
    return error_ == EPIPE;
#endif
}

std::string Output::reason() const {
    return error_ == EBADF ? "standard output is closed" : std::generic_category().message(error_);
}

Output& output() {
    static Output instance;
    return instance;
}

#ifdef _WIN32

// A file is no descriptor there, and nothing has signals of this kind.
void open_standard_streams() {}

#else

void open_standard_streams() {
    for (int stream = 0; stream <= 2; ++stream) {
        if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
        // Opened the wrong way round: reading and writing fail as they do on a closed one.
        int opened = ::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
        if (opened == -1) opened = ::open("/", O_RDONLY | O_DIRECTORY);
        if (opened != stream) std::_Exit(1);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

#endif

}  // namespace tools

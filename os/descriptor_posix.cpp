#include "os/descriptor_posix.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

namespace os {
namespace {

constexpr int kStandardStreams = 3;

// Occupies those of descriptors 0, 1 and 2 that are closed while a file is being opened, so that another thread's
// output can never go into the file, not even for a moment.
class StandardStreamsHeld {
public:
    StandardStreamsHeld() {
        for (int fd = 0; fd < kStandardStreams; ++fd) {
            if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
            const int held = uninterrupted([] { return ::open("/dev/null", O_RDWR | O_CLOEXEC); });
            if (held < 0) return;
            held_[count_++] = Descriptor(held);
        }
    }

private:
    std::array<Descriptor, kStandardStreams> held_;
    std::size_t count_ = 0;
};

}  // namespace

Descriptor::~Descriptor() {
    // Not repeated when interrupted: the descriptor is free in any case.
    if (fd_ >= 0) ::close(fd_);
}

Descriptor open_descriptor(const std::string& path, int flags, mode_t mode) {
    Descriptor opened;
    int code = 0;
    {
        const StandardStreamsHeld held;
        opened = Descriptor(
            uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode); }));
        code = errno;
        // /dev/null could not be opened to occupy them.
        if (opened && opened.get() < kStandardStreams) {
            opened = Descriptor(::fcntl(opened.get(), F_DUPFD_CLOEXEC, kStandardStreams));
            code = errno;
        }
    }
    errno = code;
    return opened;
}

}  // namespace os

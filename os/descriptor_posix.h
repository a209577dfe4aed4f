// Descriptors of a POSIX system. Invariant: none is 0, 1 or 2, even if the host has closed those; standard input and
// output of the process never touch a file of the component.
#pragma once

#include <sys/types.h>

#include <cerrno>
#include <string>
#include <utility>

namespace os {

// Repeats a system call while signals interrupt it.
template <typename Call>
auto uninterrupted(Call call) {
    for (;;) {
        auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

// Owns a descriptor; -1: none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor();
    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

// As open(), with close-on-exec, and without waiting for the other end of a pipe. On failure empty, and errno has the
// reason.
Descriptor open_descriptor(const std::string& path, int flags, mode_t mode = 0);

}  // namespace os

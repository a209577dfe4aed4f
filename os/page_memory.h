// Memory for many pages of a file, read and written in no order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace os {

// Uninitialized, and freed with the object. A large block lies so that the system may use large pages for it,
// which makes access to it in no order cheaper. Throws std::bad_alloc.
class PageMemory {
public:
    static constexpr std::size_t kLargePage = std::size_t{2} << 20;

    explicit PageMemory(std::size_t bytes);
    ~PageMemory();
    PageMemory(const PageMemory&) = delete;
    PageMemory& operator=(const PageMemory&) = delete;

    std::uint8_t* data() const { return data_; }

private:
    std::size_t alignment_;
    std::uint8_t* data_;
};

}  // namespace os

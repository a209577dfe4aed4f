// Memory for many pages of a file, read and written in no order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace os {

// Freed with the object; what it holds at first is anything. A large block comes from the system and goes back to it,
// and lies so that the system may use large pages for it, which makes access in no order cheaper. Throws
// std::bad_alloc.
class PageMemory {
public:
    static constexpr std::size_t kLargePage = std::size_t{2} << 20;

    explicit PageMemory(std::size_t bytes);
    ~PageMemory();
    PageMemory(const PageMemory&) = delete;
    PageMemory& operator=(const PageMemory&) = delete;

    std::uint8_t* data() const { return data_; }

private:
    std::size_t bytes_;
    std::uint8_t* data_;
};

}  // namespace os

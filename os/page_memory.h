// Memory for many pages of a file, accessed at random.
#pragma once

#include <cstddef>
#include <cstdint>

namespace os {

// Freed with the object; initially uninitialised. Throws std::bad_alloc.
class PageMemory {
public:
    static constexpr std::size_t kLargePage = std::size_t{2} << 20;

    enum class Source : std::uint8_t {
        kHeap,  // quickly reused once freed
        // A multiple of kLargePage. Returned to the system, and aligned so that the system may use large pages, which
        // makes random access cheaper.
        kSystem,
    };

    PageMemory(std::size_t bytes, Source source);
    ~PageMemory();
    PageMemory(const PageMemory&) = delete;
    PageMemory& operator=(const PageMemory&) = delete;

    std::uint8_t* data() const { return data_; }

private:
    std::size_t bytes_;
    Source source_;
    std::uint8_t* data_;
};

}  // namespace os

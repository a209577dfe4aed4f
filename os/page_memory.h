// Memory for many pages of a file, read and written in no order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace os {

// Freed with the object; what it holds at first is anything. Throws std::bad_alloc.
class PageMemory {
public:
    static constexpr std::size_t kLargePage = std::size_t{2} << 20;

    enum class Source : std::uint8_t {
        kHeap,  // soon had again once freed
        // A multiple of kLargePage. Goes back to the system, and lies so that the system may use large pages for it,
        // which makes access in no order cheaper.
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

#include "os/page_memory.h"

#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace os {
namespace {

#ifdef __linux__

// The heap would keep freed blocks of this size and alignment in pieces.
bool is_mapped(std::size_t bytes) { return bytes >= PageMemory::kLargePage; }

std::uint8_t* map(std::size_t bytes) {
    void* const mapping =
        mmap(nullptr, bytes + PageMemory::kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    auto* const first = static_cast<std::uint8_t*>(mapping);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(first) % PageMemory::kLargePage;
    const std::size_t before = past == 0 ? 0 : PageMemory::kLargePage - past;
    // What lies around the block is not needed.
    if (before > 0) (void)munmap(first, before);
    (void)munmap(first + before + bytes, PageMemory::kLargePage - before);
    // Advice: that it is not taken changes nothing but the speed.
    (void)madvise(first + before, bytes, MADV_HUGEPAGE);
    return first + before;
}

void unmap(std::uint8_t* data, std::size_t bytes) { (void)munmap(data, bytes); }

#else

bool is_mapped(std::size_t) { return false; }
std::uint8_t* map(std::size_t) { return nullptr; }
void unmap(std::uint8_t*, std::size_t) {}

#endif

}  // namespace

PageMemory::PageMemory(std::size_t bytes)
    : bytes_(bytes), data_(is_mapped(bytes) ? map(bytes) : static_cast<std::uint8_t*>(::operator new(bytes))) {}

PageMemory::~PageMemory() {
    if (is_mapped(bytes_)) {
        unmap(data_, bytes_);
    } else {
        ::operator delete(data_);
    }
}

}  // namespace os

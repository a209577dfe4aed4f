#include "os/page_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace os {
namespace {

// Keeps one freed large block for the next allocation: closing a database and opening another costs no system call.
// Freed with the library.
class Spare {
public:
    ~Spare() { std::free(kept_.exchange(nullptr)); }
    void* take() { return kept_.exchange(nullptr); }
    void give(void* memory) { std::free(kept_.exchange(memory)); }

private:
    std::atomic<void*> kept_{nullptr};
};

Spare& spare() {
    static Spare instance;
    return instance;
}

std::uint8_t* take(std::size_t bytes) {
    Spare& kept = spare();  // for every size: made before, so destroyed after, whatever closes the last database
    void* memory = bytes == PageMemory::kLargePage ? kept.take() : nullptr;
    if (memory == nullptr) memory = std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return static_cast<std::uint8_t*>(memory);
}

void give(std::uint8_t* data, std::size_t bytes) {
    if (bytes == PageMemory::kLargePage) {
        spare().give(data);
    } else {
        std::free(data);
    }
}

#ifdef __linux__

std::uint8_t* map(std::size_t bytes) {
    void* const mapping =
        mmap(nullptr, bytes + PageMemory::kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    auto* const first = static_cast<std::uint8_t*>(mapping);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(first) % PageMemory::kLargePage;
    const std::size_t before = past == 0 ? 0 : PageMemory::kLargePage - past;
    // Trim the unaligned ends.
    if (before > 0) (void)munmap(first, before);
    (void)munmap(first + before + bytes, PageMemory::kLargePage - before);
    // A hint: failure affects only the speed.
    (void)madvise(first + before, bytes, MADV_HUGEPAGE);
    return first + before;
}

void unmap(std::uint8_t* data, std::size_t bytes) { (void)munmap(data, bytes); }

#else

std::uint8_t* map(std::size_t bytes) { return take(bytes); }
void unmap(std::uint8_t* data, std::size_t) { std::free(data); }

#endif

}  // namespace

PageMemory::PageMemory(std::size_t bytes, Source source)
    : bytes_(bytes), source_(source), data_(source == Source::kSystem ? map(bytes) : take(bytes)) {}

PageMemory::~PageMemory() {
    if (source_ == Source::kSystem) {
        unmap(data_, bytes_);
    } else {
        give(data_, bytes_);
    }
}

}  // namespace os

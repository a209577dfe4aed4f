#include "os/page_memory.h"

#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace os {

PageMemory::PageMemory(std::size_t bytes)
    : alignment_(bytes >= kLargePage ? kLargePage : alignof(std::max_align_t)),
      data_(static_cast<std::uint8_t*>(::operator new (bytes, std::align_val_t{alignment_}))) {
#ifdef __linux__
    // Advice: that it is not taken changes nothing but the speed.
    if (bytes >= kLargePage) (void)madvise(data_, bytes, MADV_HUGEPAGE);
#endif
}

PageMemory::~PageMemory() { ::operator delete (data_, std::align_val_t{alignment_}); }

}  // namespace os

#include "os/page_memory.h"

#include <gtest/gtest.h>

namespace os {
namespace {

TEST(PageMemory, every_byte_can_be_written) {
    for (const std::size_t bytes : {PageMemory::kLargePage, 3 * PageMemory::kLargePage}) {
        for (const auto source : {PageMemory::Source::kHeap, PageMemory::Source::kSystem}) {
            const PageMemory memory(bytes, source);
            for (std::size_t at = 0; at < bytes; at += 509) memory.data()[at] = static_cast<std::uint8_t>(at);
            memory.data()[bytes - 1] = 7;
            for (std::size_t at = 0; at < bytes - 1; at += 509) {
                ASSERT_EQ(memory.data()[at], static_cast<std::uint8_t>(at)) << at;
            }
            EXPECT_EQ(memory.data()[bytes - 1], 7);
        }
    }
}

#ifdef __linux__
TEST(PageMemory, of_the_system_lies_where_large_pages_do) {
    const PageMemory memory(PageMemory::kLargePage, PageMemory::Source::kSystem);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.data()) % PageMemory::kLargePage, 0u);
}
#endif

}  // namespace
TEST(PageMemory, large_page_that_was_given_back_is_had_again) {
    std::uint8_t* before = nullptr;
    {
        const os::PageMemory page(os::PageMemory::kLargePage, os::PageMemory::Source::kHeap);
        before = page.data();
    }
    const os::PageMemory again(os::PageMemory::kLargePage, os::PageMemory::Source::kHeap);
    EXPECT_EQ(again.data(), before);
    const os::PageMemory other(os::PageMemory::kLargePage, os::PageMemory::Source::kHeap);
    EXPECT_NE(other.data(), before);
}

}  // namespace os

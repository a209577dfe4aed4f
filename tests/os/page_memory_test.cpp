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
}  // namespace os

#include "os/page_memory.h"

#include <gtest/gtest.h>

namespace os {
namespace {

TEST(PageMemory, every_byte_of_small_and_large_blocks_can_be_written) {
    for (const std::size_t bytes : {std::size_t{4096}, PageMemory::kLargePage, 3 * PageMemory::kLargePage + 4096}) {
        const PageMemory memory(bytes);
        for (std::size_t at = 0; at < bytes; at += 509) memory.data()[at] = static_cast<std::uint8_t>(at);
        memory.data()[bytes - 1] = 7;
        for (std::size_t at = 0; at < bytes - 1; at += 509) {
            ASSERT_EQ(memory.data()[at], static_cast<std::uint8_t>(at)) << at;
        }
        EXPECT_EQ(memory.data()[bytes - 1], 7);
    }
}

#ifdef __linux__
TEST(PageMemory, large_blocks_lie_where_large_pages_do) {
    const PageMemory memory(PageMemory::kLargePage);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.data()) % PageMemory::kLargePage, 0u);
}
#endif

}  // namespace
}  // namespace os

// What the debugger is asked to print: one value of each kind. The test builds this with full debug information.
#include "jet/base/bytes.h"
#include "jet/pages/page_cache.h"

namespace {

struct PinnedPage : jet::Page {
    using Page::Page;
    explicit PinnedPage(jet::FrameRef place) : Page(place) {}
};

void stop() { asm volatile("" ::: "memory"); }

}  // namespace

int main() {
    const jet::RowId row{1234, 5};
    const jet::Currency amount{-123456};
    const jet::Date day{38416.5};
    jet::Guid guid;
    for (std::uint8_t i = 0; i < 16; ++i) guid.bytes[i] = i;
    jet::Numeric numeric;
    numeric.bytes[13] = 200;
    numeric.scale = 1;
    const jet::Value text{std::u16string(u"Night Trains")};
    static std::uint8_t bytes[4096] = {1, 1, 120, 0, 20, 0, 0, 0, 0, 0, 0, 0, 7, 0};
    jet::Frame frame;
    frame.page_no = 99;
    frame.page_bytes = sizeof bytes;
    const PinnedPage page(jet::FrameRef{&frame, bytes});
    const jet::Page& pinned = page;
    stop();
    return static_cast<int>(row.page + static_cast<unsigned>(amount.ten_thousandths + static_cast<int>(day.days)) +
                            guid.bytes[0] + numeric.scale + text.index() + pinned.number()) == 0;
}

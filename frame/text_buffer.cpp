// A list of the buffers in use, guarded by the component's lock. It needs no memory.
#include "frame/text_buffer.h"

#include <algorithm>

#include "afx/component_lock.h"
#include "studio/lookup_lists.h"

namespace frame {
namespace {

constinit TextBuffer* newest = nullptr;

}  // namespace

void TextBuffer::fill(std::string_view text, std::size_t size) {
    bytes_.assign(size, '\0');
    std::copy(text.begin(), text.end(), bytes_.begin());
    const afx::ComponentLock lock;
    next_ = newest;
    newest = this;
}

TextBuffer::~TextBuffer() {
    if (bytes_.empty()) return;
    const afx::ComponentLock lock;
    TextBuffer** place = &newest;
    while (*place != this) place = &(*place)->next_;
    *place = next_;
}

std::size_t room_for_text(const char* address) noexcept {
    const afx::ComponentLock lock;
    for (const TextBuffer* buffer = newest; buffer != nullptr; buffer = buffer->next_) {
        if (buffer->bytes_.data() == address) return buffer->size();
    }
    return studio::kListNameSize;
}

}  // namespace frame

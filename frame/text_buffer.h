// The buffers in which calls by name hand texts to methods. A method that fills a text gets an address and nothing
// else: where that is one of these buffers, it knows the room; any other is a host's own, which has room for 255 bytes
// and the ending zero.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace frame {

class TextBuffer {
public:
    TextBuffer() = default;
    ~TextBuffer();
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    // Once: `size` bytes, more than `text` has, which begin with it. The buffer is known from now on.
    void fill(std::string_view text, std::size_t size);
    char* data() { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }

private:
    friend std::size_t room_for_text(const char* address) noexcept;

    std::vector<char> bytes_;
    TextBuffer* next_ = nullptr;
};

// Bytes that a method may write at `address`, the ending zero included.
std::size_t room_for_text(const char* address) noexcept;

}  // namespace frame

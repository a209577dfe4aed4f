// Text as rows hold it: UTF-16LE, or compressed to one byte a character after the mark FF FE. In the compressed form a
// zero byte toggles between one byte and two bytes a character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"

namespace jet {

// `compress`: use the short form where the format's own writer would (three characters or more, all of
// them U+0001..U+00FF). Text that begins like the mark takes the toggling form in any case; with a character U+xx00 in
// it, which that form cannot say, 3421.
ByteVector encode_text(std::u16string_view text, bool compress);
// As above, at the end of `to`.
void append_text(ByteVector& to, std::u16string_view text, bool compress);
// The same of a text of nothing but ASCII, which is given in one byte a character.
void append_ascii(ByteVector& to, std::string_view text, bool compress);
// Its bytes as they are, as in every code page.
inline void append_ascii_bytes(ByteVector& to, std::string_view text) {
    append_bytes(to, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}
// Whether the first character is U+FEFF, which as plain text would be taken for the mark.
bool begins_like_mark(std::u16string_view text);
// Accepts every form, the toggling one included; an odd last byte is ignored.
std::u16string decode_text(ByteSpan bytes);
// As above, into a text whose memory is used again.
void decode_text(ByteSpan bytes, std::u16string& into);

// Whether the text is in the compressed form.
inline bool is_marked(ByteSpan bytes) {
    constexpr auto& kMark = jet4::text::kCompressedMark;
    return bytes.size() >= 2 && bytes[0] == kMark[0] && bytes[1] == kMark[1];
}
// Whether the text is nothing but ASCII without NUL. Such a text is the same in every code page.
bool is_ascii(std::string_view text);
// Most texts are that. How many characters a stored text has if it is nothing but that.
inline std::size_t ascii_length(ByteSpan bytes) { return is_marked(bytes) ? bytes.size() - 2 : bytes.size() / 2; }
// Writes its characters, as many as that, to `to`. False, and `to` holds nothing of use, where one is not ASCII, or
// NUL.
bool copy_ascii(ByteSpan bytes, char* to);

}  // namespace jet

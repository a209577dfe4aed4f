// Page 0: what kind of file it is, its password, and the key of the owners' identifiers.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/bytes.h"

namespace jet {

struct FileHeader {
    std::uint32_t build = 9756;  // of the engine that created the file
    double creation_date = 0;    // OLE date, local time; never changes, masks depend on it
    std::u16string password;     // at most 20 characters; empty: none
    std::uint16_t code_page = 1252;
    std::uint32_t encryption_key = 0;  // 0: pages are not encrypted
};

// Reads page 0. 3343 for what is no Jet file, 3041 for another generation's, 3049 for a header that
// contradicts itself. `path` is for the text.
FileHeader parse_header(ByteSpan page, const std::string& path);
// All of page 0 of a new file.
void build_header(MutableByteSpan page, const FileHeader& header);
// Puts another password into an existing page 0. 3421 when it is too long or holds a NUL.
void store_password(MutableByteSpan page, const FileHeader& header, std::u16string_view password);

// Encodes or decodes one owner identifier (SID) with the key that follows from the header.
void mask_sid(MutableByteSpan sid, const FileHeader& header);

}  // namespace jet

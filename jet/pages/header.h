// Page 0: the file's kind, its password, and the key of the owner identifiers.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/bytes.h"

namespace jet {

struct FileHeader {
    std::uint32_t build = 9756;  // of the engine that created the file
    double creation_date = 0;    // OLE date, local time; never changes, because masks depend on it
    std::u16string password;     // at most 20 characters; empty: none
    std::uint16_t code_page = 1252;
    std::uint32_t encryption_key = 0;  // 0: pages are not encrypted
};

// Parses page 0. Raises 3343 for a file that is not a Jet file, 3041 for another version of the format, 3049 for an
// inconsistent header. `path` is for the text.
FileHeader parse_header(ByteSpan page, const std::string& path);
// Builds the whole page 0 of a new file.
void build_header(MutableByteSpan page, const FileHeader& header);
// Replaces the password in an existing page 0. 3421 when it is too long or holds a NUL.
void store_password(MutableByteSpan page, const FileHeader& header, std::u16string_view password);

// Encodes or decodes one owner identifier (SID) with the key derived from the header.
void mask_sid(MutableByteSpan sid, const FileHeader& header);

}  // namespace jet

// Page 0: the file's kind, its password, and the key of the owner identifiers.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/bytes.h"
#include "jet/base/format.h"

namespace jet {

// What must be known of a file before any of its pages can be read.
struct FileKind {
    const Format* format = &kJet4;
    std::uint32_t encryption_key = 0;  // 0: pages are not encoded
};

// Of a file that begins with `head`, 152 bytes or what there is; a Jet 4 file for what is none at all.
FileKind kind_of_file(ByteSpan head);

struct FileHeader {
    const Format* format = &kJet4;
    std::uint32_t build = 9756;  // of the engine that created the file
    double creation_date = 0;    // OLE date, local time; never changes, because masks depend on it; Jet 3: none
    std::u16string password;     // at most 20 characters; empty: none
    std::uint16_t code_page = 1252;
    std::uint32_t encryption_key = 0;          // 0: pages are not encoded
    std::uint16_t lcid = jet4::kGeneralOrder;  // of new columns
    std::uint8_t sort_version = 0;             // the same; Jet 4
    std::uint16_t sort_sub_id = 0;             // Jet 3: repeated by every column

    // Of texts; 0: UTF-16.
    std::uint16_t text_code_page() const { return format->is_jet3() ? code_page : std::uint16_t{0}; }
};

// Parses page 0. Raises 3343 for a file that is not a Jet file of a known version, 3041 for a Jet 3 file in a code page
// of two bytes a character, 3049 for an inconsistent header. `path` is for the text.
FileHeader parse_header(ByteSpan page, const std::string& path);
// Builds the whole page 0 of a new file.
void build_header(MutableByteSpan page, const FileHeader& header);
// Replaces the password in an existing page 0. 3421 when it is too long or holds a NUL.
void store_password(MutableByteSpan page, const FileHeader& header, std::u16string_view password);

// Replaces the key of the pages' encoding in an existing page 0.
void store_encryption_key(MutableByteSpan page, std::uint32_t key);

// Encodes or decodes one owner identifier (SID) with the key derived from the header. Jet 3 keeps them plain.
void mask_sid(MutableByteSpan sid, const FileHeader& header);

}  // namespace jet

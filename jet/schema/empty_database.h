// The content of a new file.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/bytes.h"
#include "jet/base/format.h"
#include "jet/base/jet4.h"

namespace jet {

// Everything a new file takes from the outside, so that tests can fix it.
struct CreateOptions {
    std::u16string password;   // at most 20 characters; empty: none
    double creation_date = 0;  // OLE date, local time; 0: now
    double row_date = 0;       // dates of the catalogue rows; 0: creation_date
    std::uint32_t engine_build = 9756;
    const Format* format = &kJet4;
    std::uint16_t code_page = 1252;            // of texts in Jet 3
    std::uint16_t lcid = jet4::kGeneralOrder;  // of their order, in Jet 3
    std::uint32_t encryption_key = 0;          // 0: pages are not encoded
};

// The pages of a new empty file: 16 of them, in Jet 3 18.
ByteVector build_empty_database(const CreateOptions& options);

}  // namespace jet

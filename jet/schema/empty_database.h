// The content of a new file.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/bytes.h"

namespace jet {

// Everything a new file takes from the outside, so that tests can fix it.
struct CreateOptions {
    std::u16string password;   // at most 20 characters; empty: none
    double creation_date = 0;  // OLE date, local time; 0: now
    double row_date = 0;       // dates of the catalogue rows; 0: creation_date
    std::uint32_t engine_build = 9756;
};

// The pages of a new empty file, 16 of them.
ByteVector build_empty_database(const CreateOptions& options);

}  // namespace jet

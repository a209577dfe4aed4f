// Parses dates that older versions stored as text in the system's short date format.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "afx/ole_date_time.h"
#include "os/system.h"

namespace db {

class DateReader {
public:
    // Reads the system's separator and order once.
    DateReader() : separator_(os::date_separator()), order_(os::date_order()) {}

    // Midnight of the day; none unless the text is three whole numbers between separators, in the system's order, that
    // form a calendar date. Blanks around a number are allowed. Years of one or two digits: 0 to 29 are 2000 to 2029,
    // others 1930 to 1999.
    std::optional<COleDateTime> read(std::string_view text) const;

private:
    std::string separator_;
    os::DateOrder order_;
};

}  // namespace db

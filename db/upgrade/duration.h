// Parses the duration of a session.
#pragma once

#include <string_view>

#include "afx/ole_currency.h"

namespace db {

// "h:mm" or a number of hours with a decimal point, blanks around it allowed; 0 for any other text.
COleCurrency hours_of(std::string_view text);

}  // namespace db

// Which values a column keeps. What it does not keep would fail in the middle of a row, or come back as another value:
// the tool refuses it before the studio is touched.
#pragma once

#include <kvdb/cstring.h>

#include <string>

#include "studio/columns.h"

namespace tools {

// UsageError that names the column and its limit: a text that is too long, or empty where the column takes no empty
// one.
void require_fits(const std::string& table, const std::string& column, const CString& text);

// What comes back of an amount that is stored.
double kept_amount(float amount, studio::Conversion conversion);
// Whether that is the value that was wanted, up to the digits that the record and the column hold.
bool is_kept(double wanted, float amount, studio::Conversion conversion);

}  // namespace tools

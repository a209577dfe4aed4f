// Whether two tables hold the same: what a fresh copy of a file has to prove before it takes the file's place.
#pragma once

#include <string>

#include "jet/tables/database.h"

namespace tools {

// What differs, as one line; "" for nothing. Rows are compared in their order, value by value, with columns, next
// numbers and properties.
std::string difference_of(jet::Database& a, jet::Database& b);

// The property blob of the table; empty where there is none.
jet::ByteVector property_blob(jet::Database& database, std::u16string_view table);
// The same for a file with texts in another code page (0: UTF-16).
jet::ByteVector property_blob(jet::Database& database, std::u16string_view table, std::uint16_t code_page);
void set_property_blob(jet::Database& database, std::u16string_view table, const jet::ByteVector& blob);

}  // namespace tools

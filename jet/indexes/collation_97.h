// The General text order of Jet 3, over the bytes of code page 1252.
#pragma once

#include <string_view>

#include "jet/base/bytes.h"
#include "jet/indexes/text_order.h"

namespace jet {

// Appends the key of all of the text, its end included. Characters that the code page lacks are left out.
void append_key_97(ByteVector& to, std::u16string_view text, KeyRule rule);

}  // namespace jet

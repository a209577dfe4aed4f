// A text in the narrow form that a record holds it in, on its way into a row.
#pragma once

#include <cstddef>
#include <string_view>

namespace jet {

// Stands for the value of a column of texts or memos: a text of nothing but ASCII without NUL (is_ascii).
struct AsciiText {
    std::size_t position = 0;  // in the definition's columns
    std::string_view text;
};

}  // namespace jet

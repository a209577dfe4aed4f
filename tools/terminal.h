// Whether a person looks at what is printed, and how wide that person's terminal is.
#pragma once

#include <cstddef>

namespace tools {

// Characters in a line of the terminal that standard output is; 0 when it is none.
std::size_t terminal_columns();
// Whether standard error is a terminal.
bool errors_go_to_terminal();

}  // namespace tools

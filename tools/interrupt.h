// Ctrl-C and its like during long work: it ends at the next row, and takes back what is half done.
#pragma once

namespace tools {

// From now on the signals that end a program wait for require_uninterrupted.
void catch_interrupts();
// CommandError when one of them has come.
void require_uninterrupted();

}  // namespace tools

// Ctrl-C and its like during long work: it ends at the next row, and takes back what is half done.
#pragma once

namespace tools {

// From now on the signals that end a program wait for require_uninterrupted; `outcome` says what then holds.
void catch_interrupts(const char* outcome = "nothing of it was kept");
// CommandError when one of them has come.
void require_uninterrupted();
// Whether one has come, for whoever has to clean up first.
bool is_interrupted();

}  // namespace tools

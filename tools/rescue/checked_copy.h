// A copy of a closed file, which somebody can rely on.
#pragma once

#include <string>

#include "tools/rescue/page_source.h"

namespace tools {

// Writes the pages to a draft for `target`, with what the journal holds; compares it, checks its structure, and leaves
// it on the disk. Returns the draft's name. CommandError where the disk refuses a page or the file is damaged; then no
// draft is left. `if_damaged`: what follows "FILE is damaged", for the owner.
std::string write_checked_draft(const PageSource& pages, const std::string& target, const std::string& if_damaged);
// The same bytes, checked for nothing: for a file that is kept whatever is in it.
std::string write_plain_draft(const std::string& from, const std::string& target);

void remove_quietly(const std::string& path);

}  // namespace tools

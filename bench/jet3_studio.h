// A studio in Jet 3 files, for the figures of that format. The component makes none itself.
#pragma once

#include <string>

namespace bench {

// Makes the files of a new studio, with its first content, in `folder`.
void make_jet3_studio(const std::string& folder);

}  // namespace bench

// Who may read what is made of a studio's files: nobody who may not read those.
#pragma once

#include <string>
#include <vector>

namespace tools {

// Gives `made`, a file or a folder with all that is in it, the rights and where possible the owner of the first of
// `sources`, less what another of them refuses. Its owner may always write it, and who may read a folder may enter it.
void take_access(const std::vector<std::string>& sources, const std::string& made);

}  // namespace tools

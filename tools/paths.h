// Paths as the tool keeps them (os/file.h), and as the standard library takes them. On Windows a narrow path of the
// library's is of the code page, which does not hold every name.
#pragma once

#include <filesystem>
#include <string>

namespace tools {

std::filesystem::path system_path(const std::string& path);
std::string path_text(const std::filesystem::path& path);
// The last part of a path.
std::string file_name_of(const std::string& path);
// As a word that can be typed: in double quotes where it has blanks.
std::string typed_path(const std::string& path);

}  // namespace tools

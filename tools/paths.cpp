#include "tools/paths.h"

#include "os/path_text.h"

namespace tools {

#ifdef _WIN32

std::filesystem::path system_path(const std::string& path) {
    const std::u16string units = os::units_of_path(path);
    return std::filesystem::path(std::wstring(units.begin(), units.end()));
}

std::string path_text(const std::filesystem::path& path) {
    const std::wstring& units = path.native();
    return os::path_of_units(std::u16string(units.begin(), units.end()));
}

#else

std::filesystem::path system_path(const std::string& path) { return path; }

std::string path_text(const std::filesystem::path& path) { return path.native(); }

#endif

std::string file_name_of(const std::string& path) { return path_text(system_path(path).filename()); }

std::string typed_path(const std::string& path) {
    return path.find(' ') == std::string::npos ? path : "\"" + path + "\"";
}

}  // namespace tools

// Owns the module path and the local time on a POSIX system. Invariant: the path is fixed at its first use; a later
// change of the working folder does not change it.
#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <sstream>

#include "os/system_parts.h"

namespace os {
namespace {

// Absolute path without symbolic links; "" when the file does not exist.
std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&::free)> absolute(::realpath(path.c_str(), nullptr), &::free);
    return absolute ? absolute.get() : std::string();
}

// The file mapped at `address`, as the kernel names it; "" where that list does not exist. Unlike the loader's name it
// stays valid when the loader got it relative to a working folder that has changed since.
std::string mapped_file(std::uintptr_t address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        // Shape of a line: first-last permissions offset device inode path
        std::istringstream fields(line);
        std::uintptr_t first = 0;
        std::uintptr_t last = 0;
        char dash = 0;
        fields >> std::hex >> first >> dash >> last;
        if (!fields || address < first || address >= last) continue;
        const std::size_t path = line.find('/', static_cast<std::size_t>(fields.tellg()));
        return path == std::string::npos ? std::string() : resolved(line.substr(path));
    }
    return {};
}

bool leads_to(const std::string& path, const std::string& file) {
    struct stat one {};
    struct stat other {};
    return ::stat(path.c_str(), &one) == 0 && ::stat(file.c_str(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

// The path that the loader was given, be it relative to the working folder; "" where that has changed since.
std::string loaded_by(std::string_view name, const std::string& file) {
    while (name.starts_with("./")) name.remove_prefix(2);
    const std::unique_ptr<char, decltype(&::free)> folder(::getcwd(nullptr, 0), &::free);
    if (!folder || name.empty()) return {};
    const std::string path = join_path(folder.get(), name);
    return leads_to(path, file) ? path : std::string();
}

std::string find_module() {
    const void* here = reinterpret_cast<const void*>(&module_path);
    Dl_info info{};
    link_map* module = nullptr;
    if (::dladdr1(here, &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) == 0) return {};
    const std::string name = module != nullptr ? module->l_name : "";
    if (name.starts_with('/')) return name;
    // The loader does not name the main program; the kernel does.
    std::string file = name.empty() ? resolved("/proc/self/exe") : std::string();
    if (file.empty()) file = mapped_file(reinterpret_cast<std::uintptr_t>(here));
    if (file.empty() && info.dli_fname != nullptr) file = resolved(info.dli_fname);
    const std::string path = loaded_by(name, file);
    return path.empty() ? file : path;
}

}  // namespace

std::string module_path() {
    static const std::string path = find_module();
    return path;
}

bool detail::is_path_separator(char c) { return c == kPathSeparator; }

std::size_t detail::find_last_separator(std::string_view path) { return path.rfind(kPathSeparator); }

detail::LocalTime detail::system_local_time() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    ::localtime_r(&now.tv_sec, &local);
    return {.year = local.tm_year + 1900,
            .month = local.tm_mon + 1,
            .day = local.tm_mday,
            .hour = local.tm_hour,
            .minute = local.tm_min,
            .second = local.tm_sec,
            .millisecond = static_cast<std::int32_t>(now.tv_nsec / 1'000'000)};
}

}  // namespace os

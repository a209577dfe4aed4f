// Maps the system's error numbers to the faults that the engine distinguishes. One function per platform, declared here
// so that tests can check its table.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "os/file.h"

namespace os::detail {

// `code` is an errno value, on Windows a value of GetLastError. kNotFound stands for "some part of the
// path is missing" where the system does not say which part.
FileFault fault_of_system_error(std::int32_t code);

// One line: operation, file and reason. Control characters of the path become "?".
std::string file_error_text(std::string_view operation, std::string_view path, std::string_view reason);

}  // namespace os::detail

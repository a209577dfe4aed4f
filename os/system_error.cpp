// Owns the wording of file errors. Invariant: one line, for every path.
#include "os/system_error.h"

#include <algorithm>

namespace os::detail {

std::string file_error_text(std::string_view operation, std::string_view path, std::string_view reason) {
    std::string text = "Cannot ";
    text.append(operation).append(" \"").append(path).append("\": ").append(reason);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    return text;
}

}  // namespace os::detail

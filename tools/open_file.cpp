#include "tools/open_file.h"

#include "tools/arguments.h"

namespace tools {

bool is_in_use(int error_number) {
    constexpr int kInUseElsewhere = 3196;
    return error_number == jet::errors::kFileInUse || error_number == jet::errors::kHeldExclusively ||
           error_number == kInUseElsewhere;
}

std::string in_use_text(const std::string& path) {
    return path + " is in use by another program; close that program, or try again later";
}

std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options) {
    options.read_only = true;
    try {
        return jet::Database::open(path, options);
    } catch (const jet::Error& error) {
        if (is_in_use(error.number())) throw CommandError(in_use_text(path));
        throw;
    }
}

std::unique_ptr<jet::Database> open_to_read(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    return open_to_read(path, options);
}

}  // namespace tools

// The whole way of an export: opens the files, reads their tables row by row, writes a draft and names it.
#pragma once

#include <optional>
#include <string>

#include "tools/export/export_writer.h"

namespace tools {

struct ExportJob {
    std::string folder;  // or a file
    std::string out;
    std::optional<std::string> tables;  // "A,B"; all without it
    std::optional<std::string> schema;
    std::optional<std::string> password;
};

// Prints what was written, and gives the exit code. UsageError, CommandError, jet::Error; then nothing is left.
int run_export(const ExportFormat& format, const ExportJob& job);

}  // namespace tools

// Windows brings no SQLite that a program of 32 bits could rely on: there the export is the script.
#include "tools/export/export_writer.h"

namespace tools {

std::unique_ptr<ExportWriter> make_sqlite_writer(const std::string& path, const std::optional<std::string>& schema) {
    return make_sqlite_script_writer(path, schema);
}

}  // namespace tools

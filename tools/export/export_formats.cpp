#include "tools/export/export_writer.h"

namespace tools {

std::span<const ExportFormat> export_formats() {
    static constexpr ExportFormat kFormats[] = {
        {"sqlite", false, make_sqlite_writer},
        {"sqlite-script", false, make_sqlite_script_writer},
        {"csv", true, make_csv_writer},
        {"jsonl", true, make_json_lines_writer},
        {"postgres", false, make_postgres_writer},
        {"html", false, make_html_writer},
    };
    return kFormats;
}

}  // namespace tools

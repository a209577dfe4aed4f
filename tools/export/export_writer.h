// What an export is written in: one class for each form, and the list of them.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/export/export_table.h"

namespace tools {

// Calls come in this order: start; for each table begin, its rows, and end; then finish, once. CommandError where
// something cannot be written.
class ExportWriter {
public:
    virtual ~ExportWriter() = default;
    // `source` is the folder or file that the tables are of, as it was named.
    virtual void start([[maybe_unused]] const std::string& source,
                       [[maybe_unused]] std::span<const ExportTable> tables) {}
    virtual void begin(const ExportTable& table) = 0;
    // Values by column of the table.
    virtual void row(const ExportTable& table, std::span<const jet::Value> values) = 0;
    virtual void end(const ExportTable& table) = 0;
    virtual void finish(std::span<const ExportTable> tables) = 0;
};

struct ExportFormat {
    const char* name;
    bool is_folder;  // several files rather than one
    // `path` is the draft's, a folder or an empty file. `schema` is the name for the tables' schema, where there is
    // one.
    std::unique_ptr<ExportWriter> (*make)(const std::string& path, const std::optional<std::string>& schema);
};

std::span<const ExportFormat> export_formats();

// The writers of the forms.
std::unique_ptr<ExportWriter> make_csv_writer(const std::string& path, const std::optional<std::string>& schema);
std::unique_ptr<ExportWriter> make_json_lines_writer(const std::string& path, const std::optional<std::string>& schema);
std::unique_ptr<ExportWriter> make_postgres_writer(const std::string& path, const std::optional<std::string>& schema);
std::unique_ptr<ExportWriter> make_sqlite_script_writer(const std::string& path,
                                                        const std::optional<std::string>& schema);
std::unique_ptr<ExportWriter> make_html_writer(const std::string& path, const std::optional<std::string>& schema);
// Where there is no library for it: the script.
std::unique_ptr<ExportWriter> make_sqlite_writer(const std::string& path, const std::optional<std::string>& schema);

}  // namespace tools

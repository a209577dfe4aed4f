#include "tools/info_json.h"

#include <filesystem>

#include "tools/damage.h"
#include "tools/open_file.h"
#include "tools/paths.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string member(const char* name, const std::string& json) { return json_string(name) + ": " + json; }
std::string truth(bool value) { return value ? "true" : "false"; }

// What is true of each file, without braces.
std::string format_members(const std::string& path, jet::Database& database) {
    return member("bytes", std::to_string(std::filesystem::file_size(system_path(path)))) + ", " +
           member("format", json_string(format_words(database))) + ", " +
           member("encoded", truth(database.header().encryption_key != 0));
}

using RowCounts = std::vector<std::pair<std::string, std::uint32_t>>;

std::string tables_member(const RowCounts& counts) {
    std::string json;
    for (const auto& [table, rows] : counts) {
        json += std::string(json.empty() ? "" : ", ") + "{" + member("table", json_string(table)) + ", " +
                member("rows", std::to_string(rows)) + "}";
    }
    return member("tables", "[" + json + "]");
}

std::string file_json(const StudioFile& file) {
    if (!file.exists()) return "{" + member("file", json_string(file.path())) + ", " + member("exists", "false") + "}";
    std::string json = "{" + member("file", json_string(file.path())) + ", " + member("exists", "true");
    try {
        json += ", " + format_members(file.path(), *open_to_read(file.path(), damage_teller(file.path())));
    } catch (const DamagedFile&) {
        return json + ", " + member("opens", "false") + "}";  // why is told already
    }
    std::string plan;
    for (const char* const effect : file.upgrade_plan()) plan += (plan.empty() ? "" : ", ") + json_string(effect);
    const auto version = file.version();
    return json + ", " + member("version", version ? std::to_string(*version) : "null") + ", " +
           member("newer", truth(file.is_newer())) + ", " + member("upgrade", "[" + plan + "]") + ", " +
           member("missing", json_string(file.missing_text())) + ", " + tables_member(file.row_counts()) + "}";
}

}  // namespace

const char* format_words(jet::Database& database) {
    return database.pager().format().is_jet3() ? "Jet 3 (Access 97)" : "Jet 4 (Access 2000 to 2003)";
}

std::string studio_json(const StudioFiles& files) {
    const bool has_header = files.studio.version().has_value();
    const std::string colours = has_header ? "[" + std::to_string(files.studio.header("Color1")) + ", " +
                                                 std::to_string(files.studio.header("Color2")) + "]"
                                           : "null";
    return "{" + member("folder", json_string(files.folder())) + ", " + member("colours", colours) +
           ", \"files\": [\n" + file_json(files.studio) + ",\n" + file_json(files.invoices) + "\n]}\n";
}

std::string other_file_json(const OpenedFile& file) {
    RowCounts counts;
    for (const jet::Table* const table : readable_tables(file)) {
        counts.emplace_back(jet::to_utf8(table->def().name), table->def().row_count);
    }
    return "{" + member("file", json_string(file.path)) + ", " + format_members(file.path, *file.database) + ", " +
           member("replica", truth(file.database->is_replica())) + ", " + tables_member(counts) + "}\n";
}

}  // namespace tools

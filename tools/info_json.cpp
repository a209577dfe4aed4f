#include "tools/info_json.h"

#include <filesystem>

#include "tools/open_file.h"
#include "tools/paths.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string member(const char* name, const std::string& json) { return json_string(name) + ": " + json; }
std::string truth(bool value) { return value ? "true" : "false"; }

// What is true of each file, without braces.
std::string file_members(const std::string& path, jet::Database& database) {
    return member("file", json_string(path)) + ", " +
           member("bytes", std::to_string(std::filesystem::file_size(system_path(path)))) + ", " +
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
    std::string plan;
    for (const char* const effect : file.upgrade_plan()) plan += (plan.empty() ? "" : ", ") + json_string(effect);
    const auto version = file.version();
    return "{" + file_members(file.path(), *open_to_read(file.path())) + ", " + member("exists", "true") + ", " +
           member("version", version ? std::to_string(*version) : "null") + ", " +
           member("newer", truth(file.is_newer())) + ", " + member("upgrade", "[" + plan + "]") + ", " +
           member("missing", json_string(file.missing_text())) + ", " + tables_member(file.row_counts()) + "}";
}

}  // namespace

const char* format_words(jet::Database& database) {
    return database.pager().format().is_jet3() ? "Jet 3 (Access 97)" : "Jet 4 (Access 2000 to 2003)";
}

std::string studio_json(const StudioFiles& files) {
    return "{" + member("folder", json_string(files.folder())) + ", \"colours\": [" +
           std::to_string(files.studio.header("Color1")) + ", " + std::to_string(files.studio.header("Color2")) +
           "], \"files\": [\n" + file_json(files.studio) + ",\n" + file_json(files.invoices) + "\n]}\n";
}

std::string other_file_json(const std::string& path, jet::Database& database) {
    RowCounts counts;
    for (const std::u16string& name : database.table_names()) {
        const jet::Table* const table = database.find_table(name);
        if (table != nullptr) counts.emplace_back(jet::to_utf8(name), table->def().row_count);
    }
    return "{" + file_members(path, database) + ", " + member("replica", truth(database.is_replica())) + ", " +
           tables_member(counts) + "}\n";
}

}  // namespace tools

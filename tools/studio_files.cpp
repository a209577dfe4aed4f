#include "tools/studio_files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "db/content.h"
#include "os/file.h"
#include "os/system.h"
#include "tools/damage.h"
#include "tools/errors.h"
#include "tools/names.h"
#include "tools/open_file.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostMissing = 12;

std::int32_t version_number(const jet::Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    const auto* text = std::get_if<std::u16string>(&value);
    return text != nullptr ? std::atoi(jet::to_utf8(*text).c_str()) : 0;
}

// Of the first header row; none where there is no such row.
std::optional<std::int32_t> header_value(const OpenedFile& file, const char* column) {
    const jet::Table* const table = look_at_table(file, u"DBHeader").table;
    if (table == nullptr) return std::nullopt;
    const auto first = table->next_row({});
    jet::RowView row;
    if (!first || !table->read(*first, row)) return std::nullopt;
    const auto position = table->def().find_column(jet::from_utf8(column));
    return position ? version_number(row.value(*position)) : 0;
}

bool is_studio_file(const fs::path& path) {
    const std::string name = path_text(path.filename());
    return is_same_name(name, kStudioFile) || is_same_name(name, kInvoiceFile);
}

// Of a folder, or of one of its two files.
std::string full_path(const std::string& place) {
    std::error_code error;
    const fs::file_status status = fs::status(system_path(place), error);
    fs::path path = fs::absolute(system_path(place)).lexically_normal();
    if (status.type() == fs::file_type::not_found) {
        require_no_dead_link(place);
        throw CommandError("there is no folder " + place + "; wanted is the one that holds sldb.mdb and kvinvdb.mdb");
    }
    if (status.type() == fs::file_type::none) throw CommandError("cannot look at " + place + ": " + error.message());
    if (!fs::is_directory(status)) {
        if (!is_studio_file(path)) {
            throw CommandError(place +
                               " is a file, and none of a studio's two; wanted is the folder that holds "
                               "sldb.mdb and kvinvdb.mdb");
        }
        path = path.parent_path();
    }
    if (!path.has_filename() && path.has_relative_path()) path = path.parent_path();  // a separator at its end
    return path_text(path);
}

// What a damaged file does not tell of its version may be passed over.
void require_current_version(const StudioFile& file, const std::string& folder, bool may_be_damaged) {
    const std::optional<std::int32_t> version = file.version();
    if (version == db::kCurrentVersion) return;
    if (!version && has_damage(file.path())) {
        if (may_be_damaged) return;
        throw CommandError(file.path() + " is damaged, and its version cannot be read; nothing was changed; " +
                           help_for_damaged(file.path()));
    }
    const std::string current = std::to_string(db::kCurrentVersion);
    std::string text = file.path() + " is of version " + file.version_text() + ", and this program works on " + current;
    if (!version) {
        text =
            file.path() + " has no version, for its table DBHeader has no row; kvdb rows reads its tables one by one";
    } else if (file.is_newer()) {
        text += ": use a newer kvdb, or lower the version for good with kvdb upgrade --lower " + typed_path(folder);
    } else {
        text += ": bring it up to date with kvdb upgrade " + typed_path(folder);
    }
    throw CommandError(text);
}

}  // namespace

bool is_other_file(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(system_path(path), error) && !is_studio_file(system_path(path));
}

StudioFile::StudioFile(const std::string& folder, const char* name, std::span<const db::UpgradeStep> upgrade,
                       std::span<const db::TableSchema> schema)
    : path_(os::join_path(folder, name)), name_(name), upgrade_(upgrade), schema_(schema) {}

bool StudioFile::exists() const { return os::file_system().exists(path_); }

std::optional<OpenedFile> StudioFile::look() const {
    try {
        return OpenedFile{path_, open_to_read(path_, damage_teller(path_))};
    } catch (const DamagedFile& error) {
        tell_damage(path_, "it cannot be opened: " + error.reason());
        return std::nullopt;
    }
}

std::optional<std::int32_t> StudioFile::version() const {
    const std::optional<OpenedFile> file = look();
    return file ? header_value(*file, "DBversion") : std::nullopt;
}

std::string StudioFile::version_text() const {
    const auto stored = version();
    if (stored) return std::to_string(*stored);
    return has_damage(path_) ? "unknown (it cannot be read)" : "unknown (no header row)";
}

bool StudioFile::is_newer() const { return version().value_or(0) > db::kCurrentVersion; }

std::int32_t StudioFile::header(const char* column) const {
    const std::optional<OpenedFile> file = look();
    return file ? header_value(*file, column).value_or(0) : 0;
}

std::vector<std::pair<std::string, std::uint32_t>> StudioFile::row_counts() const {
    std::vector<std::pair<std::string, std::uint32_t>> counts;
    const std::optional<OpenedFile> file = look();
    if (!file) return counts;
    for (const jet::Table* const table : readable_tables(*file)) {
        counts.emplace_back(jet::to_utf8(table->def().name), table->def().row_count);
    }
    return counts;
}

std::vector<std::string> StudioFile::missing() const {
    std::vector<std::string> missing;
    std::vector<std::string> fields;
    const std::optional<OpenedFile> file = look();
    if (!file) return missing;
    for (const db::TableSchema& table : schema_) {
        const auto [found, is_damaged] = look_at_table(*file, jet::from_utf8(table.name));
        if (is_damaged) continue;
        if (found == nullptr) {
            missing.emplace_back(table.name);
            continue;
        }
        for (const db::FieldSchema& field : table.fields) {
            if (found->def().find_column(jet::from_utf8(field.name))) continue;
            fields.push_back(std::string(table.name) + "." + field.name);
        }
    }
    missing.insert(missing.end(), fields.begin(), fields.end());
    return missing;
}

std::string StudioFile::missing_text() const {
    if (version() != db::kCurrentVersion) return {};
    const std::vector<std::string> names = missing();
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMostMissing); ++i) text += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > kMostMissing) text += " and " + std::to_string(names.size() - kMostMissing) + " more";
    return text;
}

std::string StudioFile::why_not_upgraded() const {
    if (!exists() || version() == db::kCurrentVersion) return {};
    const std::optional<OpenedFile> file = look();
    if (!file) return {};
    try {
        const std::optional<std::string> reason = file->database->why_schema_is_fixed();
        return reason ? *reason + " kvdb compact --to-jet4 makes a file of Jet 4 of it, which can be upgraded"
                      : std::string();
    } catch (const jet::Error& error) {
        if (!is_damage(error.number())) throw;
        return {};  // the steps meet it too, and tell
    }
}

std::vector<const char*> StudioFile::upgrade_plan() const {
    std::vector<const char*> plan;
    const std::optional<std::int32_t> stored = version();
    if (!stored) return plan;  // an upgrade stops at a header without a row
    if (!why_not_upgraded().empty()) return plan;
    for (const db::UpgradeStep& step : upgrade_) {
        if (step.applies_to(*stored)) plan.push_back(step.effect);
    }
    return plan;
}

bool StudioFile::declares(const std::string& table) const {
    const auto is_called = [&](const db::TableSchema& schema) { return is_same_name(table, schema.name); };
    if (std::any_of(schema_.begin(), schema_.end(), is_called)) return true;
    return is_called(db::engineers_table()) && is_same_name(name_, kStudioFile);
}

bool StudioFile::has(const db::UpgradeStep& step) const {
    return std::any_of(upgrade_.begin(), upgrade_.end(), [&](const db::UpgradeStep& own) { return &own == &step; });
}

StudioFiles::StudioFiles(const std::string& folder)
    : folder_(full_path(folder)),
      studio(folder_, kStudioFile, db::studio_upgrade(), db::studio_tables()),
      invoices(folder_, kInvoiceFile, db::invoice_upgrade(), db::invoice_tables()) {}

void StudioFiles::require_no_dead_links() const {
    for (const StudioFile* const file : {&studio, &invoices}) require_no_dead_link(file->path());
}

void StudioFiles::require_studio() const {
    require_no_dead_links();
    if (studio.exists()) return;
    throw CommandError("there is no studio in " + folder_ + ": sldb.mdb is not there; kvdb demo makes a new one");
}

void StudioFiles::require_current() const { require_current_versions(false); }
void StudioFiles::require_current_to_read() const { require_current_versions(true); }

void StudioFiles::require_current_versions(bool may_be_damaged) const {
    require_studio();
    if (!invoices.exists()) {
        throw CommandError("the studio in " + folder_ +
                           " is not whole: kvinvdb.mdb is not there; put it back, or have an empty one made with kvdb "
                           "upgrade " +
                           typed_path(folder_));
    }
    require_current_version(studio, folder_, may_be_damaged);
    require_current_version(invoices, folder_, may_be_damaged);
}

}  // namespace tools

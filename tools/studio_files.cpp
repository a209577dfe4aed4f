#include "tools/studio_files.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <span>

#include "afx/ole_date_time.h"
#include "db/schema.h"
#include "jet/database.h"
#include "os/file.h"
#include "os/system.h"
#include "tools/arguments.h"
#include "tools/words.h"

namespace tools {
namespace {

constexpr std::size_t kCopyBytes = 1u << 20;
constexpr char kJournalSuffix[] = "-journal";

// The password is the component's own affair.
std::unique_ptr<jet::Database> open(const std::string& path) {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    return jet::Database::open(path, options);
}

std::int32_t number_of(const jet::Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    const auto* text = std::get_if<std::u16string>(&value);
    return text != nullptr ? std::atoi(jet::to_utf8(*text).c_str()) : 0;
}

// Of the first header row; none where there is no such row.
std::optional<std::int32_t> header_value(jet::Database& database, const char* column) {
    const jet::Table* const table = database.find_table(u"DBHeader");
    if (table == nullptr) return std::nullopt;
    const auto first = table->next_row({});
    jet::RowView row;
    if (!first || !table->read(*first, row)) return std::nullopt;
    const auto position = table->def().find_column(jet::from_utf8(column));
    return position ? number_of(row.value(*position)) : 0;
}

void copy_content(os::File& from, const std::string& to) {
    auto copy = os::file_system().open(to, os::OpenMode::kCreateExclusive);
    try {
        std::vector<std::uint8_t> buffer(kCopyBytes);
        for (std::uint64_t at = 0;;) {
            const std::size_t got = from.read(at, buffer);
            if (got == 0) break;
            copy->write(at, std::span(buffer).first(got));
            at += got;
        }
        copy->sync();
    } catch (...) {
        copy.reset();
        os::file_system().remove(to);
        throw;
    }
}

std::string in_folder(const std::string& folder, const char* name) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) throw CommandError("there is no folder " + folder);
    return os::join_path(std::filesystem::absolute(folder).lexically_normal().string(), name);
}

}  // namespace

StudioFile::StudioFile(const std::string& folder, const char* name, std::span<const db::UpgradeStep> upgrade,
                       std::span<const db::TableSchema> schema)
    : path_(in_folder(folder, name)),
      system_path_(to_system_path(path_)),
      name_(name),
      upgrade_(upgrade),
      schema_(schema) {}

bool StudioFile::exists() const { return os::file_system().exists(system_path_); }

std::optional<std::int32_t> StudioFile::version() const { return header_value(*open(system_path_), "DBversion"); }

std::int32_t StudioFile::header(const char* column) const {
    return header_value(*open(system_path_), column).value_or(0);
}

std::vector<std::pair<std::string, std::uint32_t>> StudioFile::row_counts() const {
    const auto database = open(system_path_);
    std::vector<std::pair<std::string, std::uint32_t>> counts;
    for (const std::u16string& name : database->table_names()) {
        counts.emplace_back(jet::to_utf8(name), database->find_table(name)->def().row_count);
    }
    return counts;
}

std::vector<std::string> StudioFile::missing() const {
    const auto database = open(system_path_);
    std::vector<std::string> missing;
    std::vector<std::string> fields;
    for (const db::TableSchema& table : schema_) {
        const jet::Table* const found = database->find_table(jet::from_utf8(table.name));
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

std::vector<const char*> StudioFile::upgrade_plan() const {
    std::vector<const char*> plan;
    const std::optional<std::int32_t> stored = version();
    if (!stored) return plan;  // an upgrade stops at a header without a row
    for (const db::UpgradeStep& step : upgrade_) {
        if (step.applies_to(*stored)) plan.push_back(step.effect);
    }
    return plan;
}

std::string StudioFile::make_dated_copy() const {
    os::FileSystem& files = os::file_system();
    const auto locked = files.open(system_path_, os::OpenMode::kExclusive);
    const std::size_t ending = system_path_.rfind('.');
    const std::string dated =
        system_path_.substr(0, ending) + "-" + std::string(COleDateTime::GetCurrentTime().Format("%Y-%m-%d"));
    std::string copy = dated + system_path_.substr(ending);
    for (int n = 2; files.exists(copy); ++n) copy = dated + "-" + std::to_string(n) + system_path_.substr(ending);
    if (files.exists(system_path_ + kJournalSuffix)) {
        copy_content(*files.open(system_path_ + kJournalSuffix, os::OpenMode::kReadOnly), copy + kJournalSuffix);
    }
    copy_content(*locked, copy);
    files.sync_folder_of(copy);
    return from_system_path(copy);
}

StudioFiles::StudioFiles(const std::string& folder)
    : studio(folder, "sldb.mdb", db::studio_upgrade(), db::studio_tables()),
      invoices(folder, "kvinvdb.mdb", db::invoice_upgrade(), db::invoice_tables()) {
    if (!studio.exists()) throw CommandError("there is no studio in " + folder);
}

}  // namespace tools

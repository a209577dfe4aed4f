// Jet files below the gates, for reading only: one by its name, or both of a studio.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/tables/database.h"

namespace tools {

inline constexpr const char* kStudioFile = "sldb.mdb";
inline constexpr const char* kInvoiceFile = "kvinvdb.mdb";

// Of 4 KiB: what a command reads in passing is not to fill the memory.
inline constexpr std::size_t kToolCachePages = 4096;

// Opens the file for reading only, which writes nothing and puts nothing beside it. CommandError where another program
// has it open; jet::Error for the rest.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options);
// Whatever the password, which is the component's own affair.
std::unique_ptr<jet::Database> open_to_read(const std::string& path);
// With the given password; without one, none and then the studio's own are tried. CommandError that names --password
// where none of them is the file's.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, const std::optional<std::string>& password,
                                            jet::DamageListener on_damage = {});

// The file itself, or of a folder those of a studio's two files that are there. CommandError where there is nothing
// of that name, or no studio in the folder.
std::vector<std::string> jet_files_of(const std::string& file_or_folder);

// A table of a file, or of one of a studio's two.
class FoundTable {
public:
    using Listener = std::function<jet::DamageListener(const std::string& path)>;

    // As above; `listener` gives the one for a file. CommandError when there is no such table.
    FoundTable(const std::string& file_or_folder, const std::string& table, const std::optional<std::string>& password,
               const Listener& listener = {});

    jet::Database& database() const { return *database_; }
    jet::Table& table() const { return *table_; }

private:
    std::unique_ptr<jet::Database> database_;
    jet::Table* table_ = nullptr;
};

// Whether the engine's number says that somebody else has the file open.
bool is_in_use(int error_number);
std::string in_use_text(const std::string& path);

}  // namespace tools

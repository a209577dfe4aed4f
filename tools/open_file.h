// Jet files below the gates, for reading only: one by its name, or both of a studio.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/base/error.h"
#include "jet/tables/database.h"
#include "os/file.h"

namespace tools {

inline constexpr const char* kStudioFile = "sldb.mdb";
inline constexpr const char* kInvoiceFile = "kvinvdb.mdb";

// Of 4 KiB: what a command reads in passing is not to fill the memory.
inline constexpr std::size_t kToolCachePages = 4096;

// A file of which nothing can be read. `what()` names it and the commands that help.
class DamagedFile : public jet::Error {
public:
    DamagedFile(const std::string& path, const jet::Error& error);
    const std::string& path() const { return path_; }
    // In the engine's words.
    const std::string& reason() const { return reason_; }

private:
    std::string path_;
    std::string reason_;
};

// Opens the file for reading only, which writes nothing and puts nothing beside it. CommandError where another program
// has it open; DamagedFile; jet::Error for the rest.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options);
// Whatever the password, which is the component's own affair.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::DamageListener on_damage = {});
// With the given password; without one, none and then the studio's own are tried. CommandError that names --password
// where none of them is the file's.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, const std::optional<std::string>& password,
                                            jet::DamageListener on_damage = {});

// CommandError for a link whose end is not there.
void require_no_dead_link(const std::string& path);

// The file itself, or of a folder those of a studio's two files that are there. CommandError where there is nothing
// of that name, a link that leads nowhere, or no studio in the folder.
std::vector<std::string> jet_files_of(const std::string& file_or_folder);

// A file that is read as far as that goes; what cannot be read of it is told (tools/damage.h).
struct OpenedFile {
    std::string path;  // as the user names it
    std::unique_ptr<jet::Database> database;
};

OpenedFile open_to_look(const std::string& path, const std::optional<std::string>& password);
// All of `jet_files_of`. One that cannot be opened for damage is told while another one can be; DamagedFile when none
// can.
std::vector<OpenedFile> open_all_to_look(const std::string& file_or_folder, const std::optional<std::string>& password);

// What the file has by a name: no table, one that can be read, or one whose definition cannot, which is told.
struct TableLook {
    jet::Table* table = nullptr;
    bool is_damaged = false;
};
TableLook look_at_table(const OpenedFile& file, std::u16string_view name);

// The user's tables that can be read, in the order of the file; of the others it is told that they cannot.
std::vector<jet::Table*> readable_tables(const OpenedFile& file);

// A table of a file, or of one of a studio's two.
class FoundTable {
public:
    // UsageError when there is no such table, CommandError when it cannot be read.
    FoundTable(const std::string& file_or_folder, const std::string& table, const std::optional<std::string>& password);

    jet::Database& database() const { return *file_.database; }
    jet::Table& table() const { return *table_; }

private:
    OpenedFile file_;
    jet::Table* table_ = nullptr;
};

// Whether the engine's number says that somebody else has the file open.
bool is_in_use(int error_number);
std::string in_use_text(const std::string& path);
// The system's file; CommandError when somebody else has it open, else os::FileError.
std::unique_ptr<os::File> open_system_file(const std::string& path, os::OpenMode mode);

}  // namespace tools

// salvage: a sound new file from what is left of a damaged one.
//
// The damaged file is only read, page by page; neither its catalogue nor its maps nor its definitions are needed. What
// the new file holds was a living row of the old one, as far as its bytes can tell: deleted rows stay away.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "db/database_files.h"

namespace tools {

struct SalvagedTable {
    std::string name;
    std::size_t saved = 0;  // rows in the new file, the doubtful ones among them
    std::size_t doubtful = 0;
    std::size_t cut_values = 0;  // memos and pictures of which not all is there
    std::size_t unreadable = 0;  // rows that are there and cannot be read
    std::size_t left_out = 0;    // rows that were not taken: they were there twice, or do not fit the new table
    std::size_t lost_pages = 0;  // pages of the table that hold its rows no more
    std::size_t lost_rows = 0;   // by the table's own count; 0 where that cannot be believed
    bool is_rebuilt = false;     // its definition was lost or damaged, the studio's own took its place
    bool is_made_anew = false;   // nothing of it was found
    bool is_named_by_guess = false;
    std::vector<std::string> notes;  // one sentence each
    bool is_untouched() const;
};

struct SalvageReport {
    std::optional<db::DatabaseFile> studio_file;
    std::vector<SalvagedTable> tables;
    std::vector<std::string> notes;  // about the file as a whole, one sentence each
    std::size_t saved() const;
    std::size_t doubtful() const;
    // Rows that are known to be lost, or left out.
    std::size_t lost() const;
    bool is_complete() const;  // nothing is doubtful, lost or made up
};

// Makes the file at `to`, which must not be there, in the version of the format that `from` has (but see format_like),
// encoded if that is.
// CommandError when nothing can be saved, or when `from` is in use; os::FileError and jet::Error for what the system
// refuses. Then nothing is left at `to`.
SalvageReport salvage(const std::string& from, const std::string& to);

}  // namespace tools

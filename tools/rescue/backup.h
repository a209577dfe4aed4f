// backup and restore: dated sets of a studio's two files.
//
// Invariants
//  1. A file of a set comes to its name whole, checked and on the disk, and the studio's file comes last: a set without
//     it is what an interrupted backup has left, and is taken for none.
//  2. What a journal holds is in the copy; the studio itself is only read by a backup.
//  3. A restore replaces a file in one step, and only after a copy of what was there is on the disk.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tools {

struct BackupSet {
    std::string name;    // "2026-03-05-142233"; "" for a plain folder with the studio's two files
    std::string studio;  // paths; the second one is "" where there was none
    std::string invoices;
};

// The complete sets in the folder, from the newest.
std::vector<BackupSet> backup_sets(const std::string& folder);
// The set that a path means: a folder of sets (its newest one, or the one named `at`), one of a set's files, or a
// folder with the studio's two files. CommandError where there is none.
BackupSet find_backup(const std::string& path, const std::optional<std::string>& at);

struct BackupOutcome {
    BackupSet set;
    std::vector<std::string> removed;  // names of older sets
};

// Copies the studio in `folder` as it is at this moment into `destination`, a folder that is there. With `keep`, only
// the newest so many sets stay. `now` names the set. CommandError where the studio is in use, damaged, or not there;
// os::FileError. Then `destination` holds what it held before.
BackupOutcome make_backup(const std::string& folder, const std::string& destination, const std::string& now,
                          std::optional<std::size_t> keep);

struct RestoreOutcome {
    std::vector<std::string> restored;
    std::vector<std::string> kept;  // where what was there is now
};

// Puts the set's files into `folder` under the studio's names. CommandError where a copy of the set is damaged, or the
// studio is in use; os::FileError. Whatever stops it, each of the files is either as it was or the restored one, and
// what was replaced is kept.
RestoreOutcome restore_backup(const BackupSet& set, const std::string& folder, const std::string& now);

}  // namespace tools

// backup and restore: dated copies of a studio, and the way back.
#include "tools/rescue/backup.h"

#include <filesystem>

#include "afx/ole_date_time.h"
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/studio_files.h"
#include "tools/value_text.h"
#include "tools/wanted_folder.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

std::string now() { return std::string(COleDateTime::GetCurrentTime().Format("%Y-%m-%d-%H%M%S").GetString()); }

struct BackupOptions {
    std::string folder;
    std::string destination;
    std::optional<int> keep;
};

void bind_backup(Declaration& declare, BackupOptions& options) {
    declare.folder(options.folder);
    declare.word("DEST", options.destination, "folder for the copies, best on another disk; it is made if needed");
    declare.option("--keep", options.keep, "N", "remove all but the newest N copies afterwards");
}

int run_backup(const BackupOptions& options) {
    if (options.keep && *options.keep < 1) throw UsageError("--keep wants a number of at least 1");
    const StudioFiles files(options.folder);
    files.require_no_dead_links();
    catch_interrupts();
    const WantedFolder destination(options.destination);
    std::optional<std::size_t> keep;
    if (options.keep) keep = static_cast<std::size_t>(*options.keep);
    const BackupOutcome outcome = make_backup(files.folder(), options.destination, now(), keep);
    output().print("%s\n", outcome.set.studio.c_str());
    if (outcome.set.invoices.empty()) {
        output().print("there was no kvinvdb.mdb in %s to copy\n", files.folder().c_str());
    } else {
        output().print("%s\n", outcome.set.invoices.c_str());
    }
    for (const std::string& name : outcome.removed) output().print("removed the older copy %s\n", name.c_str());
    return 0;
}

struct RestoreOptions {
    std::string from;
    std::string folder;
    std::optional<std::string> at;
    bool list = false;
    bool json = false;
};

void bind_restore(Declaration& declare, RestoreOptions& options) {
    declare.word("BACKUP", options.from,
                 "folder that kvdb backup wrote to, one of the copies in it, or a folder with copies of both files");
    declare.optional_word("FOLDER", options.folder, "folder of the studio; it is made if needed");
    declare.option("--at", options.at, "DATE", "the copy of that date, as --list shows it; without it the newest one");
    declare.flag("--list", options.list, "show which copies there are, and restore nothing");
    declare.flag("--json", options.json, "with --list: one JSON object for each copy, in one array");
}

std::string sets_json(const std::vector<BackupSet>& sets) {
    std::string json;
    for (const BackupSet& set : sets) {
        json += std::string(json.empty() ? "" : ",\n") + "{\"name\": " + json_string(set.name) +
                ", \"studio\": " + json_string(set.studio) +
                ", \"invoices\": " + (set.invoices.empty() ? "null" : json_string(set.invoices)) + "}";
    }
    return "[\n" + json + "\n]\n";
}

// What became of the studio's second file, of which the set has no copy.
std::string without_invoices_text(const std::string& folder) {
    const StudioFiles files(folder);
    if (!files.invoices.exists()) return "the copy has no invoices, and there is no kvinvdb.mdb in " + files.folder();
    return "the copy has no invoices: " + files.invoices.path() +
           " stays as it is, and may know of things that the restored studio does not have";
}

int run_restore(const RestoreOptions& options) {
    if (options.json && !options.list) throw UsageError("--json goes with --list alone");
    if (options.list) {
        const std::vector<BackupSet> sets = backup_sets(options.from);
        if (options.json && !sets.empty()) {
            output().write(sets_json(sets));
            return 0;
        }
        for (const BackupSet& set : sets) {
            output().print("%s%s\n", set.name.c_str(), set.invoices.empty() ? "  (without invoices)" : "");
        }
        if (sets.empty()) throw CommandError("there are no copies in " + options.from);
        return 0;
    }
    if (options.folder.empty()) throw UsageError("restore wants the folder of the studio as its second word");
    catch_interrupts("the studio is as it was");
    const BackupSet set = find_backup(options.from, options.at);
    const WantedFolder folder(options.folder);
    const RestoreOutcome outcome = restore_backup(set, path_text(fs::absolute(system_path(options.folder))), now());
    for (const std::string& path : outcome.restored) output().print("restored %s\n", path.c_str());
    if (!set.name.empty()) output().print("as it was on %s\n", set.name.c_str());
    if (set.invoices.empty()) output().print("%s\n", without_invoices_text(options.folder).c_str());
    for (const std::string& path : outcome.kept) output().print("what was there is kept as %s\n", path.c_str());
    return 0;
}

}  // namespace

const Command kBackupCommand{
    "backup", kKeepGroup,
    "Copy both files of a studio, as they are at this moment, into a dated set. What a journal beside a file holds is "
    "in "
    "the copy; each copy is compared with the file and its structure is checked before it gets its name, and a damaged "
    "file is refused. The studio is only read, and has to be closed.",
    declared<BackupOptions, bind_backup, run_backup>};

const Command kRestoreCommand{
    "restore", kKeepGroup,
    "Put a copy of a studio back into its folder. The copy is checked first; what is in the folder is kept beside it "
    "under another name, and nothing is ever written over.",
    declared<RestoreOptions, bind_restore, run_restore>};

}  // namespace tools

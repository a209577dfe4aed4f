#include "tools/rescue/backup.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "jet/pages/journal.h"
#include "os/draft.h"
#include "os/file.h"
#include "os/system.h"
#include "tools/errors.h"
#include "tools/file_copies.h"
#include "tools/open_file.h"
#include "tools/paths.h"
#include "tools/rescue/checked_copy.h"
#include "tools/rescue/page_source.h"

namespace tools {
namespace {

constexpr std::string_view kEnding = ".mdb";
constexpr std::string_view kSetForm = "9999-99-99-999999";

std::string stem_of(const char* file) {
    return std::string(file).substr(0, std::string_view(file).size() - kEnding.size());
}

// "2026-03-05-142233", or that and "-2" and so on.
bool is_set_name(std::string_view name) {
    if (name.size() < kSetForm.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool is_digit = name[i] >= '0' && name[i] <= '9';
        const bool wants_digit = i < kSetForm.size() ? kSetForm[i] == '9' : i > kSetForm.size();
        if (wants_digit ? !is_digit : name[i] != '-') return false;
    }
    return name.size() != kSetForm.size() + 1;
}

std::string path_in(const std::string& folder, const char* file, const std::string& set) {
    return os::join_path(folder, stem_of(file) + "-" + set + std::string(kEnding));
}

// None where there is no such folder.
std::vector<std::string> names_beginning(const std::string& begin) {
    try {
        return os::file_system().longer_names(begin);
    } catch (const os::FileError& error) {
        if (error.fault() == os::FileFault::kNotFound || error.fault() == os::FileFault::kBadPath) return {};
        throw;
    }
}

// Names of the sets that have this one of the two files.
std::vector<std::string> sets_with(const std::string& folder, const char* file) {
    const std::string begin = os::join_path(folder, stem_of(file) + "-");
    std::vector<std::string> sets;
    for (const std::string& path : names_beginning(begin)) {
        if (!path.ends_with(kEnding)) continue;
        const std::string name = path.substr(begin.size(), path.size() - begin.size() - kEnding.size());
        if (is_set_name(name)) sets.push_back(name);
    }
    // A second one of the same moment comes after the first.
    const auto rank = [](const std::string& name) {
        const std::string rest = name.substr(kSetForm.size());
        return std::pair(name.substr(0, kSetForm.size()), rest.empty() ? 1 : std::atoi(rest.c_str() + 1));
    };
    std::sort(sets.begin(), sets.end(), [&](const std::string& a, const std::string& b) { return rank(a) > rank(b); });
    return sets;
}

bool is_there(const std::string& path) { return os::file_system().exists(path); }

BackupSet set_in(const std::string& folder, const std::string& name) {
    BackupSet set{name, path_in(folder, kStudioFile, name), path_in(folder, kInvoiceFile, name)};
    if (!is_there(set.invoices)) set.invoices.clear();
    return set;
}

// What an interrupted backup or restore has left: drafts, and a file whose set has no studio.
void clear_leftovers(const std::string& folder, bool removes_files) {
    for (const char* const file : {kStudioFile, kInvoiceFile}) {
        for (const std::string& path : names_beginning(os::join_path(folder, stem_of(file) + "-"))) {
            const std::size_t draft = path.find(".mdb-new-");
            if (draft != std::string::npos) os::clear_drafts(path.substr(0, draft + kEnding.size()));
        }
    }
    if (!removes_files) return;
    const std::vector<std::string> complete = sets_with(folder, kStudioFile);
    for (const std::string& name : sets_with(folder, kInvoiceFile)) {
        if (std::find(complete.begin(), complete.end(), name) != complete.end()) continue;
        os::file_system().remove(path_in(folder, kInvoiceFile, name));
    }
}

std::vector<std::string> remove_older(const std::string& destination, std::size_t keep) {
    std::vector<std::string> removed;
    const std::vector<BackupSet> sets = backup_sets(destination);
    for (std::size_t i = keep; i < sets.size(); ++i) {
        // Without the studio's file it is no set any more, whatever happens next.
        os::file_system().remove(sets[i].studio);
        os::file_system().sync_folder_of(sets[i].studio);
        if (!sets[i].invoices.empty()) os::file_system().remove(sets[i].invoices);
        removed.push_back(sets[i].name);
    }
    return removed;
}

void give_name(const std::string& draft, const std::string& path) {
    try {
        os::file_system().rename(draft, path);
    } catch (...) {
        remove_quietly(draft);
        throw;
    }
    os::file_system().sync_folder_of(path);
}

// A journal comes into the file, where that can be opened.
void bring_up_to_date(const std::string& path) {
    try {
        write_journal_back(path);
    } catch (const jet::Error&) {
        // What is there is kept as it is, its journal beside it.
    }
}

// A copy of what is there beside it, with its journal where that could not be brought in. "" where there is no file.
std::string keep_present(const std::string& path, const std::string& now) {
    if (!is_there(path)) return {};
    const std::string stem = path.substr(0, path.size() - kEnding.size());
    std::string kept = stem + "-before-restore-" + now + std::string(kEnding);
    for (int n = 2; is_there(kept); ++n)
        kept = stem + "-before-restore-" + now + "-" + std::to_string(n) + std::string(kEnding);
    const std::string journal = jet::Journal::path_for(path);
    if (is_there(journal))
        give_name(write_plain_draft(journal, jet::Journal::path_for(kept)), jet::Journal::path_for(kept));
    give_name(write_plain_draft(path, kept), kept);
    return kept;
}

}  // namespace

std::vector<BackupSet> backup_sets(const std::string& folder) {
    std::vector<BackupSet> sets;
    for (const std::string& name : sets_with(folder, kStudioFile)) sets.push_back(set_in(folder, name));
    return sets;
}

BackupSet find_backup(const std::string& path, const std::optional<std::string>& at) {
    const std::string folder = os::folder_of(path);
    // With join_path's separator, whatever stood there.
    const std::string same_path = os::join_path(folder, path.substr(folder.size()));
    for (const char* const file : {kStudioFile, kInvoiceFile}) {
        for (const std::string& name : sets_with(folder, file)) {
            if (path_in(folder, file, name) != same_path) continue;
            if (!is_there(path_in(folder, kStudioFile, name))) {
                throw CommandError(path + " is of a backup that was interrupted: the studio's file is not beside it");
            }
            return set_in(folder, name);
        }
    }
    const std::vector<BackupSet> sets = backup_sets(path);
    if (at) {
        const auto found = std::find_if(sets.begin(), sets.end(), [&](const BackupSet& s) { return s.name == *at; });
        if (found != sets.end()) return *found;
        throw CommandError("there is no backup " + *at + " in " + path +
                           (sets.empty() ? std::string() : "; the newest one is " + sets.front().name));
    }
    if (!sets.empty()) return sets.front();
    BackupSet plain{"", os::join_path(path, kStudioFile), os::join_path(path, kInvoiceFile)};
    if (!is_there(plain.studio)) {
        throw CommandError("there is no backup in " + path +
                           ": wanted is a folder that kvdb backup wrote to, or one with " + kStudioFile);
    }
    if (!is_there(plain.invoices)) plain.invoices.clear();
    return plain;
}

namespace {

// What a person is to do whose studio is damaged, after "FILE is damaged".
std::string no_copy_text(const std::string& file, const std::string& folder, const std::string& destination) {
    const std::vector<BackupSet> sets = backup_sets(destination);
    const std::string typed = typed_path(file);
    std::string text = ", so no copy was made of the studio: kvdb check " + typed +
                       " says what is the matter, kvdb salvage " + typed + " NEW.mdb saves its rows into a new file";
    if (sets.empty()) return text + "; there is no older copy in " + destination;
    return text + ", kvdb restore " + typed_path(destination) + " " + typed_path(folder) +
           " goes back to the newest copy, of " + sets.front().name + "; all older copies are kept";
}

// The same where a copy is damaged.
std::string not_restored_text(const std::string& copy, const std::string& folder) {
    return ", so nothing was restored and " + folder + " is as it was: kvdb restore --list " +
           typed_path(os::folder_of(copy)) +
           " shows the copies there are, --at DATE takes another one, and kvdb salvage " + typed_path(copy) +
           " NEW.mdb saves what is left in this one";
}

}  // namespace

BackupOutcome make_backup(const std::string& folder, const std::string& destination, const std::string& now,
                          std::optional<std::size_t> keep) {
    const std::string studio = os::join_path(folder, kStudioFile);
    const std::string invoices = os::join_path(folder, kInvoiceFile);
    if (!is_there(studio)) throw CommandError("there is no studio in " + folder + ": " + kStudioFile + " is not there");
    // Both are locked before either is read, so that they are of the same moment.
    const PageSource studio_pages(studio);
    std::optional<PageSource> invoice_pages;
    if (is_there(invoices)) invoice_pages.emplace(invoices);
    clear_leftovers(destination, keep.has_value());

    std::string name = now;
    for (int n = 2;
         is_there(path_in(destination, kStudioFile, name)) || is_there(path_in(destination, kInvoiceFile, name)); ++n) {
        name = now + "-" + std::to_string(n);
    }
    BackupOutcome outcome;
    outcome.set = {name, path_in(destination, kStudioFile, name), ""};
    const std::string studio_draft =
        write_checked_draft(studio_pages, outcome.set.studio, no_copy_text(studio, folder, destination));
    std::string invoice_draft;
    try {
        if (invoice_pages) {
            outcome.set.invoices = path_in(destination, kInvoiceFile, name);
            invoice_draft =
                write_checked_draft(*invoice_pages, outcome.set.invoices, no_copy_text(invoices, folder, destination));
            give_name(invoice_draft, outcome.set.invoices);
        }
        give_name(studio_draft, outcome.set.studio);
    } catch (...) {
        remove_quietly(studio_draft);
        if (!is_there(outcome.set.studio) && !outcome.set.invoices.empty()) remove_quietly(outcome.set.invoices);
        throw;
    }
    if (keep) outcome.removed = remove_older(destination, std::max<std::size_t>(*keep, 1));
    return outcome;
}

RestoreOutcome restore_backup(const BackupSet& set, const std::string& folder, const std::string& now) {
    struct Part {
        std::string from;
        std::string to;
        std::string draft = "";
        std::string kept = "";
        std::unique_ptr<os::File> locked = nullptr;  // the file at `to`
    };
    std::vector<Part> parts;
    // The studio's file last: with it the folder is the restored one.
    if (!set.invoices.empty()) parts.push_back({set.invoices, os::join_path(folder, kInvoiceFile)});
    parts.push_back({set.studio, os::join_path(folder, kStudioFile)});
    for (const Part& part : parts) {
        if (os::file_system().resolved(part.from) == os::file_system().resolved(part.to)) {
            throw CommandError(part.from + " is the studio's own file; wanted is a copy of it");
        }
    }
    clear_leftovers(folder, false);
    RestoreOutcome outcome;
    bool is_replacing = false;
    try {
        for (Part& part : parts) {
            part.to = os::file_system().resolved(part.to);
            os::clear_drafts(part.to);
            part.draft = write_checked_draft(PageSource(part.from), part.to, not_restored_text(part.from, folder));
        }
        // Whether somebody has one of them open is seen before anything is made of either.
        for (Part& part : parts) {
            if (!is_there(part.to)) continue;
            bring_up_to_date(part.to);
            part.locked = open_system_file(part.to, os::OpenMode::kReadOnly);
        }
        for (Part& part : parts) part.kept = keep_present(part.to, now);
        for (Part& part : parts) {
            if (!part.kept.empty()) outcome.kept.push_back(part.kept);
        }
        is_replacing = true;
        for (Part& part : parts) {
            // It is in the copy that is kept, and must not come into the restored file.
            if (is_there(jet::Journal::path_for(part.to))) {
                os::file_system().remove(jet::Journal::path_for(part.to));
                os::file_system().sync_folder_of(part.to);
            }
            if (part.kept.empty()) {
                os::file_system().rename(part.draft, part.to);
            } else {
                replace_locked(part.draft, part.to, std::move(part.locked));
            }
            part.draft.clear();
            os::file_system().sync_folder_of(part.to);
            outcome.restored.push_back(part.to);
        }
    } catch (...) {
        for (const Part& part : parts) {
            if (!part.draft.empty()) remove_quietly(part.draft);
            // A copy of what is in its place still.
            if (is_replacing || part.kept.empty()) continue;
            remove_quietly(jet::Journal::path_for(part.kept));
            remove_quietly(part.kept);
        }
        throw;
    }
    return outcome;
}

}  // namespace tools

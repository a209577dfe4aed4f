// upgrade: opens a studio as a host does, behind copies of both files, and takes them back when that fails.
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "db/content.h"
#include "os/file.h"
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/file_copies.h"
#include "tools/gate_call.h"
#include "tools/interrupt.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/rescue/compact.h"
#include "tools/studio.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

using RowCounts = std::vector<std::pair<std::string, std::uint32_t>>;

// A file as it was before the upgrade, and where that is kept.
struct Before {
    explicit Before(const StudioFile& now)
        : file(now), is_there(now.exists()), version(is_there ? now.version_text() : "no file") {
        if (is_there) counts = now.row_counts();
    }
    // Now.
    bool is_current() const { return file.exists() && file.version() == db::kCurrentVersion; }

    const StudioFile& file;
    bool is_there;
    std::string version;
    RowCounts counts;
    DatedCopy copy = {};
};

std::string count_text(const RowCounts& counts, const std::string& table) {
    for (const auto& [name, rows] : counts) {
        if (name == table) return std::to_string(rows);
    }
    return "-";
}

void print_change(const Before& before) {
    output().print("%s: version %s, now %s\n", before.file.name(), before.version.c_str(),
                   before.file.version_text().c_str());
    output().print("  %-24s %8s %8s\n", "rows", "before", "now");
    for (const auto& [table, rows] : before.file.row_counts()) {
        output().print("  %-24s %8s %8u\n", table.c_str(), count_text(before.counts, table).c_str(), rows);
    }
}

// The steps that failed, with the engine's reason.
class Failures : public db::UpgradeObserver {
public:
    explicit Failures(const StudioFiles& files)
        : files_(files), progress_(std::in_place, "steps", steps_of(files.studio) + steps_of(files.invoices)) {
        db::set_upgrade_observer(this);
    }
    ~Failures() override { db::set_upgrade_observer(nullptr); }
    Failures(const Failures&) = delete;
    Failures& operator=(const Failures&) = delete;

    // Ctrl-C ends the upgrade before a step, where no transaction is open.
    void begins(const db::UpgradeStep& step) override {
        afx::clear_last_error();
        const bool is_open = is_open_;
        is_open_ = step.with_next;
        if (!is_open) require_uninterrupted();
        progress_->step();
    }
    void failed(const db::UpgradeStep& step) override {
        const StudioFile& file = files_.studio.has(step) ? files_.studio : files_.invoices;
        add(std::string("in ") + file.name() + " the step \"" + step.effect + "\" failed" + engine_reason());
        has_stopped_ = has_stopped_ || step.on_failure == db::UpgradeStep::OnFailure::kStop;
    }
    void could_not_open(const std::string& reason) {
        add(reason);
        has_stopped_ = true;
    }
    void add(const std::string& reason) { text_ += (text_.empty() ? "" : "; ") + reason; }

    // There are no more steps; what is printed from now on has the line to itself.
    void end_of_steps() { progress_.reset(); }

    // All of them; "" for none.
    const std::string& text() const { return text_; }
    // Steps behind one of them were not tried.
    bool has_stopped() const { return has_stopped_; }

private:
    static std::size_t steps_of(const StudioFile& file) { return file.exists() ? file.upgrade_plan().size() : 0; }

    const StudioFiles& files_;
    std::optional<Progress> progress_;
    std::string text_;
    bool has_stopped_ = false;
    bool is_open_ = false;  // a step that goes on in the next one
};

void refuse_what_cannot_be_upgraded(const StudioFile& file, bool may_lower) {
    if (!file.exists()) return;
    if (!file.version() && !has_damage(file.path())) {
        throw CommandError(file.path() +
                           " cannot be upgraded: its version is unknown, for its table DBHeader has no row");
    }
    if (file.is_newer() && !may_lower) {
        throw CommandError(file.path() + " is of version " + file.version_text() + ", newer than the " +
                           std::to_string(db::kCurrentVersion) +
                           " of this program: use a newer kvdb, or lower it for good with --lower");
    }
}

void refuse_unknown_order(const StudioFile& file) {
    const std::string reason = file.why_not_upgraded();
    if (!reason.empty()) throw CommandError(file.path() + " cannot be upgraded as it is: " + reason);
}

// Why the file is no whole one of the current version; "" for one that is.
std::string fault_of(const StudioFile& file) {
    if (!file.exists()) return file.path() + " is not there";
    if (file.version() != db::kCurrentVersion) return file.path() + " is of version " + file.version_text();
    const std::string missing = file.missing_text();
    return missing.empty() ? "" : file.path() + " is incomplete: not there: " + missing;
}

void upgrade(const std::string& folder, Failures& failures) {
    try {
        Studio studio(folder, Studio::Purpose::kUpgrade);
        studio.open();
    } catch (const CommandError& error) {
        failures.could_not_open(is_interrupted() ? "interrupted" : error.what());
        return;
    }
    if (is_interrupted()) failures.could_not_open("interrupted");
}

// What became of the file, in words.
std::string put_back(const Before& before) {
    try {
        if (before.is_there) {
            take_back(before.copy.path, before.file.path());
        } else if (before.file.exists()) {
            remove_closed(before.file.path());
        }
        return {};
    } catch (const std::exception& error) {
        return std::string(before.file.name()) + " could not be taken back (" + error.what() + ")" +
               (before.is_there ? "; as it was it is in " + before.copy.path : std::string());
    }
}

[[noreturn]] void give_up(const Before& studio, const Before& invoices, const std::string& reasons) {
    std::string text = "the studio could not be upgraded: " + reasons;
    std::string trouble;
    for (const Before* const before : {&studio, &invoices}) {
        const std::string what = put_back(*before);
        if (!what.empty()) trouble += "; " + what;
    }
    throw CommandError(text + (trouble.empty() ? "; both files are as they were before" : trouble));
}

struct Options {
    std::string folder;
    bool no_copy = false;
    bool lower = false;
    bool to_jet4 = false;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FOLDER", options.folder, "folder of the studio");
    declare.flag("--no-copy", options.no_copy, "remove the copies when all is done");
    declare.flag("--lower", options.lower, "take a newer studio down to this version, for good");
    declare.flag("--to-jet4", options.to_jet4, "then write files of Access 97 as files of Access 2000 to 2003");
}

bool is_jet3(const StudioFile& file) { return file.exists() && open_to_read(file.path())->pager().format().is_jet3(); }

// Behind a copy of its own where the upgrade had nothing to do.
void convert(const StudioFiles& files, const Options& options) {
    if (!options.to_jet4) return;
    catch_interrupts("the files are up to date, and the one that was being made anew is as it was");
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        if (!is_jet3(*file)) continue;
        const DatedCopy copy = dated_copy(file->path());
        CompactOptions wanted;
        wanted.to_jet4 = true;
        const CompactOutcome outcome = compact_file(file->path(), wanted);
        output().print("%s: a Jet 4 file now, %zu rows compared one by one\n", file->name(), outcome.rows);
        if (options.no_copy && copy.is_new) remove_closed(copy.path);
    }
}

int run(const Options& options) {
    const StudioFiles files(options.folder);
    files.require_studio();
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        refuse_what_cannot_be_upgraded(*file, options.lower);
    }
    Before studio(files.studio);
    Before invoices(files.invoices);
    // The rows of what cannot be read could be counted on neither side of the upgrade.
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        if (!has_damage(file->path())) continue;
        throw CommandError(file->path() + " is damaged and was left as it is; " + help_for_damaged(file->path()));
    }
    if (studio.is_current() && invoices.is_current()) {
        output().print("both files are at version %d: nothing to do\n", db::kCurrentVersion);
        for (const StudioFile* const file : {&files.studio, &files.invoices}) {
            if (const std::string fault = fault_of(*file); !fault.empty()) throw CommandError(fault);
        }
        convert(files, options);
        return 0;
    }
    for (const StudioFile* const file : {&files.studio, &files.invoices}) refuse_unknown_order(*file);
    catch_interrupts("both files are as they were");
    for (Before* const before : {&studio, &invoices}) {
        require_uninterrupted();
        if (!before->is_there) continue;
        before->copy = dated_copy(before->file.path());
        if (options.no_copy) continue;
        output().print("copy: %s%s\n", before->copy.path.c_str(), before->copy.is_new ? "" : " (it was there already)");
    }
    Failures failures(files);
    upgrade(files.folder(), failures);
    failures.end_of_steps();
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        if (is_interrupted()) break;
        if (const std::string fault = fault_of(*file); !fault.empty()) failures.add(fault);
    }
    if (failures.has_stopped() || !studio.is_current() || !invoices.is_current()) {
        give_up(studio, invoices, failures.text());
    }
    for (const Before* const before : {&studio, &invoices}) print_change(*before);
    if (!failures.text().empty()) {
        throw CommandError("both files are at version " + std::to_string(db::kCurrentVersion) +
                           ", but not all was done: " + failures.text() + "; the copies hold them as they were");
    }
    for (const Before* const before : {&studio, &invoices}) {
        if (options.no_copy && before->copy.is_new) remove_closed(before->copy.path);
    }
    convert(files, options);
    return 0;
}

}  // namespace

const Command kUpgradeCommand{
    "upgrade", kKeepGroup,
    "Bring a studio up to date as a host's opening does, after dated copies of both files. Shows versions and rows "
    "before and after. Where a step stops, both files are taken back from the copies.",
    declared<Options, bind, run>};

}  // namespace tools

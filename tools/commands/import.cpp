// import: records from a CSV file, each through the gate of its table, all of them in one step.
#include <algorithm>
#include <memory>

#include "db/session.h"
#include "tools/commands.h"
#include "tools/csv_reader.h"
#include "tools/csv_source.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/gate_call.h"
#include "tools/gate_table.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/studio_draft.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

constexpr std::uint64_t kBetweenGuesses = 256;  // lines
constexpr std::size_t kLinesOfAShare = 500;

struct Options {
    std::string folder;
    std::string table;
    std::string file;
    bool dry_run = false;
    bool partly = false;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.word(
        "FILE.csv", options.file,
        "CSV in UTF-8 whose first line names members of the record; the key is not taken from it, for a studio "
        "gives keys itself");
    declare.flag("--dry-run", options.dry_run, "try all of it and keep nothing");
    declare.flag("--partly", options.partly, "keep the lines that are accepted though others are refused");
}

// What the gates change of a studio, as one change: taken back unless it is kept.
class StudioTransaction {
public:
    StudioTransaction() {
        for (const CDaoDatabase* const database : {&db::obtain_main(false), &db::obtain_invoice(false)}) {
            CDaoWorkspace* const workspace = database->m_pWorkspace;
            if (std::find(begun_.begin(), begun_.end(), workspace) != begun_.end()) continue;
            workspace->BeginTrans();
            begun_.push_back(workspace);
        }
    }
    ~StudioTransaction() {
        for (CDaoWorkspace* const workspace : begun_) {
            try {
                workspace->Rollback();
            } catch (CDaoException* exception) {
                exception->Delete();
            }
        }
    }
    StudioTransaction(const StudioTransaction&) = delete;
    StudioTransaction& operator=(const StudioTransaction&) = delete;

    void keep() {
        while (!begun_.empty()) {
            CDaoWorkspace* const workspace = begun_.back();
            begun_.pop_back();
            try {
                workspace->CommitTrans();
            } catch (CDaoException* exception) {
                exception->Delete();
                throw CommandError("what was added could not be written, and nothing of it stays" + engine_reason());
            }
        }
    }

private:
    std::vector<CDaoWorkspace*> begun_;
};

// By column of the file: the member that it goes to; "" for none.
Names members_of(const GateTable& table, const Names& names) {
    const Names members = table.members();
    Names result;
    for (const std::string& name : names) {
        const auto found = std::find_if(members.begin(), members.end(),
                                        [&](const std::string& member) { return is_same_name(member, name); });
        if (found != members.end()) {
            if (std::find(result.begin(), result.end(), *found) != result.end()) {
                throw UsageError("the first line names " + *found + " twice");
            }
            result.push_back(*found);
        } else if (is_same_name(name, table.key_column())) {
            result.emplace_back();
        } else {
            const std::string hint = suggestion(name, members);
            throw UsageError("the first line names '" + name + "', which is no member of " + table.name() +
                             (hint.empty() ? "; it has " + listed(members) : hint));
        }
    }
    return result;
}

Assignments assignments(const Names& members, const Names& fields) {
    if (fields.size() != members.size()) {
        throw UsageError("it has " + std::to_string(fields.size()) + " fields, the first line has " +
                         std::to_string(members.size()));
    }
    Assignments result;
    for (std::size_t i = 0; i < members.size(); ++i) {
        // A record's member is empty until it is set.
        if (!members[i].empty() && !fields[i].empty()) result.push_back({members[i], fields[i]});
    }
    return result;
}

struct Count {
    std::size_t added = 0;
    std::size_t refused = 0;

    std::string lines() const { return std::to_string(added + refused) + (added + refused == 1 ? " line" : " lines"); }
};

// Whether what was added is to stay.
bool is_kept(const Options& options, const Count& count) {
    return !options.dry_run && (count.refused == 0 || options.partly);
}

// Adds the lines to the open studio; `between_lines` is called after each.
template <class BetweenLines>
Count add_lines(CsvSource& source, CsvReader& csv, const GateTable& table, const Names& members, Studio& studio,
                BetweenLines&& between_lines) {
    Count count;
    Progress progress("lines", 0);
    while (const auto fields = csv.next()) {
        require_uninterrupted();
        progress.step();
        if (progress.done() % kBetweenGuesses == 0) progress.set_total(source.guessed_lines(progress.done()));
        try {
            StudioTransaction line;  // a gate keeps what it could set of a record that it refuses
            table.add(studio, assignments(members, *fields));
            line.keep();
            ++count.added;
        } catch (const std::runtime_error& error) {
            ++count.refused;
            output().print("line %zu: %s\n", csv.line(), error.what());
        }
        between_lines();
    }
    require_uninterrupted();
    return count;
}

// Both gates open their databases here: in the middle of a transaction that would open the files anew.
void open_all(Studio& studio) { studio.open_gear(); }

// Few lines: one transaction of the engine, which holds what it changes in memory.
Count import_few(const Options& options, CsvSource& source, CsvReader& csv, const GateTable& table,
                 const Names& members) {
    Studio studio(options.folder, Studio::Purpose::kChange);
    open_all(studio);
    catch_interrupts();
    StudioTransaction transaction;
    const Count count = add_lines(source, csv, table, members, studio, [] {});
    if (is_kept(options, count)) transaction.keep();
    return count;
}

// More than that: into copies of the files, share by share, and then the changed one takes its place.
Count import_many(const Options& options, CsvSource& source, CsvReader& csv, const GateTable& table,
                  const Names& members) {
    const StudioFiles files(options.folder);
    files.require_current();
    catch_interrupts();
    StudioDraft draft(files);
    Count count;
    {
        Studio studio(draft.folder(), Studio::Purpose::kChange);
        open_all(studio);
        auto share = std::make_unique<StudioTransaction>();
        std::size_t waiting = 0;
        count = add_lines(source, csv, table, members, studio, [&] {
            if (++waiting < kLinesOfAShare) return;
            waiting = 0;
            share->keep();
            share = std::make_unique<StudioTransaction>();
        });
        share->keep();
    }
    if (is_kept(options, count)) draft.publish(files.invoices.declares(table.name()) ? files.invoices : files.studio);
    return count;
}

int run(const Options& options) {
    const GateTable& table = gate_table(options.table);
    CsvSource source(options.file);
    CsvReader csv(source.stream());
    const Names members = members_of(table, csv.names());
    const Count count = source.is_small() ? import_few(options, source, csv, table, members)
                                          : import_many(options, source, csv, table, members);
    const std::string of_lines = count.lines();
    if (options.dry_run) {
        output().print("%zu of %s would be added to %s; nothing was changed\n", count.added, of_lines.c_str(),
                       table.name().c_str());
        return count.refused == 0 ? 0 : 1;
    }
    if (count.refused != 0 && !options.partly) {
        throw CommandError(std::to_string(count.refused) + " of " + of_lines + (count.refused == 1 ? " is" : " are") +
                           " refused, so nothing was added to " + table.name() +
                           "; correct them, or keep the others with --partly");
    }
    output().print("%zu of %s added to %s\n", count.added, of_lines.c_str(), table.name().c_str());
    return count.refused == 0 ? 0 : 1;
}

}  // namespace

const Command kImportCommand{
    "import", kChangeGroup,
    "Add the records of a CSV file. All of them are added or, when a line is refused, none; each refused line is named "
    "with its reason.",
    declared<Options, bind, run>};

}  // namespace tools

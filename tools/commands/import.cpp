// import: records from a CSV file, each through the gate of its table, all in one transaction.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "db/session.h"
#include "tools/commands.h"
#include "tools/csv_reader.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/gate_call.h"
#include "tools/gate_table.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/progress.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

constexpr std::uint64_t kBetweenGuesses = 256;  // lines

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

// How many lines the file has, guessed by those that were read; 0 where its size is not known.
std::uint64_t guessed_lines(std::ifstream& in, const std::string& file, std::uint64_t read) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(system_path(file), error);
    const std::streamoff at = in.tellg();
    if (error || at <= 0) return 0;
    return static_cast<std::uint64_t>(static_cast<double>(read) * static_cast<double>(size) / static_cast<double>(at));
}

int run(const Options& options) {
    const GateTable& table = gate_table(options.table);
    std::ifstream in(system_path(options.file), std::ios::binary);
    if (!in) throw CommandError(options.file + " cannot be read; is it there, and may you read it?");
    CsvReader csv(in);
    const Names members = members_of(table, csv.names());
    Studio studio(options.folder, Studio::Purpose::kChange);
    // Both gates open their databases here: in the middle of the transaction that would open the files anew.
    studio.open_gear();
    catch_interrupts();
    std::size_t added = 0;
    std::size_t refused = 0;
    {
        StudioTransaction transaction;
        Progress progress("lines", 0);
        while (const auto fields = csv.next()) {
            require_uninterrupted();
            progress.step();
            if (progress.done() % kBetweenGuesses == 0) {
                progress.set_total(guessed_lines(in, options.file, progress.done()));
            }
            try {
                StudioTransaction line;  // a gate keeps what it could set of a record that it refuses
                table.add(studio, assignments(members, *fields));
                line.keep();
                ++added;
            } catch (const std::runtime_error& error) {
                ++refused;
                output().print("line %zu: %s\n", csv.line(), error.what());
            }
        }
        require_uninterrupted();
        if (!options.dry_run && (refused == 0 || options.partly)) transaction.keep();
    }
    const std::string of_lines = std::to_string(added + refused) + (added + refused == 1 ? " line" : " lines");
    if (options.dry_run) {
        output().print("%zu of %s would be added to %s; nothing was changed\n", added, of_lines.c_str(),
                       table.name().c_str());
        return refused == 0 ? 0 : 1;
    }
    if (refused != 0 && !options.partly) {
        throw CommandError(std::to_string(refused) + " of " + of_lines + (refused == 1 ? " is" : " are") +
                           " refused, so nothing was added to " + table.name() +
                           "; correct them, or keep the others with --partly");
    }
    output().print("%zu of %s added to %s\n", added, of_lines.c_str(), table.name().c_str());
    return refused == 0 ? 0 : 1;
}

}  // namespace

const Command kImportCommand{
    "import", kChangeGroup,
    "Add the records of a CSV file. All of them are added or, when a line is refused, none; each refused line is named "
    "with its reason.",
    declared<Options, bind, run>};

}  // namespace tools

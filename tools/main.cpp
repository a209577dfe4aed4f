// kvdb: the command-line tool. Exit codes: 0 done, 1 failed, 2 not understood; errors are one line on stderr.
#include <cstdio>
#include <exception>
#include <string>

#include "os/system.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/output.h"
#include "tools/words.h"

namespace {

struct Command {
    const char* name;
    const char* usage;
    const char* effect;
    int (*run)(const tools::Words&);
};

constexpr Command kCommands[] = {
    {"demo", "demo [FOLDER]", "make a studio in FOLDER (default: a new temporary folder), do a day's work, show it",
     tools::run_demo},
    {"info", "info FOLDER",
     "version, files, tables and rows of the studio in FOLDER, and what an upgrade would do; changes nothing",
     tools::run_info},
    {"upgrade", "upgrade FOLDER [--no-copy] [--lower]",
     "bring the studio in FOLDER up to date as a host's opening does, behind dated copies of both files; show "
     "versions\n"
     "      and rows before and after. Where a step stops, both files are taken back from the copies. --no-copy "
     "removes\n"
     "      the copies when all is done; --lower takes a newer studio down to this version, for good",
     tools::run_upgrade},
    {"projects", "projects FOLDER [--client N] [--type T] [--json]", "list projects through the gate",
     tools::run_projects},
    {"list", "list FOLDER TABLE [--filter member=value ...] [--json|--csv]",
     "records of a table through its gate; a filter works as the gate's enumeration does", tools::run_list},
    {"show", "show FOLDER TABLE KEY [--json|--csv]", "one record, by its key", tools::run_show},
    {"add", "add FOLDER TABLE member=value ...", "add a record and print its key", tools::run_add},
    {"set", "set FOLDER TABLE KEY member=value ...", "change members of a record", tools::run_set},
    {"delete", "delete FOLDER TABLE KEY", "delete a record", tools::run_delete},
    {"tables", "tables FILE [--system] [--password TEXT]", "names of the tables of a Jet file", tools::run_tables},
    {"schema", "schema FILE [TABLE] [--password TEXT]", "columns and indexes", tools::run_schema},
    {"rows", "rows FILE TABLE [--json|--csv] [--password TEXT]", "all rows of a table", tools::run_rows},
    {"check", "check FILE [--password TEXT]", "structural check; lists every violation", tools::run_check},
};

void print_help() {
    tools::Output& out = tools::output();
    out.print("kvdb: the database component of a recording studio, and a reader of its Jet files\n\n");
    for (const Command& command : kCommands) out.print("  kvdb %s\n      %s\n", command.usage, command.effect);
    out.print(
        "\nStudio commands work on the folder that holds sldb.mdb and kvinvdb.mdb; the others read one file. Only\n"
        "demo, upgrade, add, set and delete write, and only upgrade changes the version of a studio; info, projects,\n"
        "list, show and those that read one file open nothing for writing. The tool loads nothing from a studio's\n"
        "folder and leaves nothing there but the studio, and the copies of upgrade.\n"
        "Exit codes: 0 done, 1 failed, 2 not understood. Output that cannot be written is a failure; a pipe whose\n"
        "reader has gone ends the command quietly, with 1.\n");
}

int fail(int code, const std::string& text) {
    tools::output().flush();
    std::fprintf(stderr, "kvdb: %s\n", text.c_str());
    return code;
}

int run(const tools::Words& words) {
    if (words.empty()) return fail(2, "no command; kvdb --help lists them");
    if (words[0] == "--help" || words[0] == "help") {
        print_help();
        return 0;
    }
    for (const Command& command : kCommands) {
        if (words[0] != command.name) continue;
        const tools::Words rest(words.begin() + 1, words.end());
        for (const std::string& word : rest) {
            if (word == "--") break;
            if (word == "--help") {
                tools::output().print("kvdb %s\n  %s\n", command.usage, command.effect);
                return 0;
            }
        }
        try {
            return command.run(rest);
        } catch (const tools::UsageError& error) {
            return fail(2, error.what());
        } catch (const std::exception& error) {
            return fail(1, error.what());
        }
    }
    return fail(2, "unknown command '" + words[0] + "'; kvdb --help lists them");
}

}  // namespace

int main(int argc, char** argv) {
    tools::open_standard_streams();
    // Whatever the environment says: a change writes back the whole row, and no text of it may lose a character.
    os::set_code_page(os::CodePage::kUtf8);
    const int code = run(tools::command_line_words(argc, argv));
    tools::Output& out = tools::output();
    out.finish();
    if (!out.is_lost()) return code;
    const int failed = code != 0 ? code : 1;
    return out.reader_has_gone() ? failed : fail(failed, "the output is not complete: " + out.reason());
}

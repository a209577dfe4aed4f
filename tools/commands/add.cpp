// add: a new record, through the gate of its table.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string table;
    std::vector<std::string> members;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.words("member=value", options.members, "what the record holds; a member that is not named stays empty");
}

int run(const Options& options) {
    const Assignments members = assignments_of(options.members);
    const GateTable& table = gate_table(options.table);
    Studio studio(options.folder, Studio::Purpose::kChange);
    output().print("%s\n", table.add(studio, members).c_str());
    return 0;
}

}  // namespace

const Command kAddCommand{"add", kChangeGroup, "Add a record and print its key.", declared<Options, bind, run>};

}  // namespace tools

// show: one record.
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string table;
    std::string key;
    FormatOption format;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.word("KEY", options.key, "key of the record");
    declare.format(options.format);
}

int run(const Options& options) {
    const GateTable& table = gate_table(options.table);
    Studio studio(options.folder, Studio::Purpose::kRead);
    tell_damage_of_gates();
    print_record(options.format.format(), table.columns(), table.show(studio, options.key));
    require_undamaged();
    return 0;
}

}  // namespace

const Command kShowCommand{"show", kLookGroup, "Print one record.", declared<Options, bind, run>};

}  // namespace tools

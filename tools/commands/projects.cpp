// projects: a list of them for people.
#include <optional>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/gate_table.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::optional<int> client;
    std::optional<std::string> type;
    bool json = false;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.option("--client", options.client, "N", "those of the client with this key");
    declare.option("--type", options.type, "TEXT", "those of this type");
    declare.flag("--json", options.json, "print JSON");
}

int run(const Options& options) {
    Assignments filter;
    if (options.client) filter.push_back({"ClientID", std::to_string(*options.client)});
    if (options.type) filter.push_back({"Type", *options.type});
    const GateTable& table = gate_table("Projects");
    Studio studio(options.folder, Studio::Purpose::kRead);
    tell_damage_of_gates();
    if (options.json) {
        RowPrinter printer(RowFormat::kJson, table.columns());
        print_rows(printer, [&](const RowVisitor& print) { table.list(studio, filter, print); });
    } else {
        std::vector<Row> rows;
        std::string failure;
        try {
            table.list(studio, filter, [&](const Row& row) {
                rows.push_back(row);
                return true;
            });
        } catch (const CommandError& error) {
            if (rows.empty()) throw;
            failure = error.what();
        }
        const Names names{"ProjID", "Name", "Client", "Type", "ProjCreateDate", "DiscountVal"};
        print_aligned(names, chosen(table.columns(), rows, names));
        output().print("%zu project%s\n", rows.size(), rows.size() == 1 ? "" : "s");
        if (!failure.empty()) throw CommandError(failure);
    }
    require_undamaged();
    return 0;
}

}  // namespace

const Command kProjectsCommand{"projects", kLookGroup, "List the projects of a studio.", declared<Options, bind, run>};

}  // namespace tools

// Commands on the records of a table, through the gates: list, show, add, set, delete; and projects, a list for
// people.

#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/gate_table.h"
#include "tools/member_text.h"
#include "tools/output.h"

namespace tools {
namespace {

Assignment assignment_of(const std::string& word) {
    const std::size_t equals = word.find('=');
    if (equals == 0 || equals == std::string::npos) throw UsageError("'" + word + "' is no member=value");
    return {word.substr(0, equals), word.substr(equals + 1)};
}

Assignments assignments_of(const std::vector<std::string>& words, std::size_t from = 0) {
    Assignments assignments;
    for (std::size_t i = from; i < words.size(); ++i) assignments.push_back(assignment_of(words[i]));
    return assignments;
}

// Prints what `rows` gives to its argument. What came before a failure is printed as a whole.
template <class Rows>
void print_rows(RowPrinter& printer, Rows&& rows) {
    bool any = false;
    try {
        rows([&](const Row& row) {
            any = true;
            printer.print(row);
            return !output().is_lost();
        });
    } catch (const std::exception&) {
        if (any) printer.finish();
        throw;
    }
    printer.finish();
}

constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

}  // namespace

int run_list(const Words& words) {
    const Arguments arguments(words, {"--json", "--csv"}, {"--filter"});
    // One --filter may be followed by several assignments.
    const auto& positional =
        arguments.expect(2, kAnyNumber, "list FOLDER TABLE [--filter member=value ...] [--json|--csv]");
    Assignments filter = assignments_of(arguments.values("--filter"));
    for (const Assignment& more : assignments_of(positional, 2)) filter.push_back(more);
    const RowFormat format = row_format(arguments);
    const GateTable& table = gate_table(positional[1]);
    Studio studio(positional[0], Studio::Purpose::kRead);
    tell_damage_of_gates();
    RowPrinter printer(format, table.columns());
    print_rows(printer, [&](const RowVisitor& print) { table.list(studio, filter, print); });
    require_undamaged();
    return 0;
}

int run_show(const Words& words) {
    const Arguments arguments(words, {"--json", "--csv"}, {});
    const auto& positional = arguments.expect(3, 3, "show FOLDER TABLE KEY [--json|--csv]");
    const RowFormat format = row_format(arguments);
    const GateTable& table = gate_table(positional[1]);
    Studio studio(positional[0], Studio::Purpose::kRead);
    tell_damage_of_gates();
    print_record(format, table.columns(), table.show(studio, positional[2]));
    require_undamaged();
    return 0;
}

int run_add(const Words& words) {
    const Arguments arguments(words, {}, {});
    const auto& positional = arguments.expect(3, kAnyNumber, "add FOLDER TABLE member=value ...");
    const Assignments members = assignments_of(positional, 2);
    const GateTable& table = gate_table(positional[1]);
    Studio studio(positional[0], Studio::Purpose::kChange);
    output().print("%s\n", table.add(studio, members).c_str());
    return 0;
}

int run_set(const Words& words) {
    const Arguments arguments(words, {}, {});
    const auto& positional = arguments.expect(4, kAnyNumber, "set FOLDER TABLE KEY member=value ...");
    const Assignments members = assignments_of(positional, 3);
    const GateTable& table = gate_table(positional[1]);
    Studio studio(positional[0], Studio::Purpose::kChange);
    table.set(studio, positional[2], members);
    return 0;
}

int run_delete(const Words& words) {
    const Arguments arguments(words, {}, {});
    const auto& positional = arguments.expect(3, 3, "delete FOLDER TABLE KEY");
    const GateTable& table = gate_table(positional[1]);
    Studio studio(positional[0], Studio::Purpose::kChange);
    table.remove(studio, positional[2]);
    return 0;
}

int run_projects(const Words& words) {
    const Arguments arguments(words, {"--json"}, {"--client", "--type"});
    const auto& positional = arguments.expect(1, 1, "projects FOLDER [--client N] [--type T] [--json]");
    Assignments filter;
    if (arguments.number("--client")) filter.push_back({"ClientID", *arguments.value("--client")});
    if (arguments.value("--type")) filter.push_back({"Type", *arguments.value("--type")});
    const GateTable& table = gate_table("Projects");
    Studio studio(positional[0], Studio::Purpose::kRead);
    tell_damage_of_gates();
    if (arguments.has("--json")) {
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

}  // namespace tools

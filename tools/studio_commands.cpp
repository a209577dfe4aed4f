// Commands on a studio folder, through the gates: info, projects.
#include <cstdio>
#include <filesystem>
#include <iostream>

#include "jet/database.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/projects.h"
#include "tools/studio.h"
#include "tools/value_text.h"

namespace tools {
namespace {

// The folder's studio, which must be there already: looking must not make one.
void require_studio(Studio& studio, const std::string& folder) {
    if (FAILED(studio.gate().IsDbExist())) throw CommandError("there is no studio in " + folder);
}

// Tables and their rows, read below the gates; the password is the component's own affair.
void print_tables(const std::string& path) {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    const auto database = jet::Database::open(path, options);
    for (const std::u16string& name : database->table_names()) {
        const jet::Table* table = database->find_table(name);
        std::printf("  %-24s %8u row%s\n", jet::to_utf8(name).c_str(), table->def().row_count, table->def().row_count == 1 ? "" : "s");
    }
}

void print_file(const char* what, const std::string& path) {
    std::printf("%s: %s (%ju bytes)\n", what, path.c_str(), static_cast<std::uintmax_t>(std::filesystem::file_size(path)));
    print_tables(path);
}

}  // namespace

int run_info(const Words& words) {
    const Arguments arguments(words, {}, {});
    const std::string& folder = arguments.expect(1, 1, "info FOLDER")[0];
    Studio studio(folder);
    require_studio(studio, folder);
    IDBgate1& gate = studio.open();
    HeadInfo head{};
    if (SUCCEEDED(gate.GetHead(address_of(head)))) {
        std::printf("schema version %d, colours %d and %d\n", head.DBversion, head.Color1, head.Color2);
    } else {
        std::printf("no header row\n");
    }
    studio.close();
    print_file("studio", studio.main_file());
    print_file("invoices", studio.invoice_file());
    return 0;
}

int run_projects(const Words& words) {
    const Arguments arguments(words, {"--json"}, {"--client", "--type"});
    const std::string& folder = arguments.expect(1, 1, "projects FOLDER [--client N] [--type T] [--json]")[0];
    ProjInfo filter{};
    filter.ClientID = arguments.number("--client").value_or(0);
    filter.Type = from_utf8(arguments.value("--type").value_or(""));
    Studio studio(folder);
    require_studio(studio, folder);
    const std::vector<ProjInfo> projects = list_projects(studio.open(), filter);
    if (arguments.has("--json")) {
        print_projects_json(projects);
    } else {
        print_projects(projects);
    }
    return 0;
}

}  // namespace tools

// The command on a studio folder, through the gates: info.
#include <cstdio>
#include <filesystem>

#include "jet/database.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/studio.h"

namespace tools {
namespace {

// Tables and their rows, read below the gates; the password is the component's own affair.
void print_tables(const std::string& path) {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    const auto database = jet::Database::open(path, options);
    for (const std::u16string& name : database->table_names()) {
        const jet::Table* table = database->find_table(name);
        std::printf("  %-24s %8u row%s\n", jet::to_utf8(name).c_str(), table->def().row_count,
                    table->def().row_count == 1 ? "" : "s");
    }
}

void print_file(const char* what, const std::string& path) {
    std::printf("%s: %s (%ju bytes)\n", what, path.c_str(),
                static_cast<std::uintmax_t>(std::filesystem::file_size(path)));
    print_tables(path);
}

}  // namespace

int run_info(const Words& words) {
    const Arguments arguments(words, {}, {});
    const std::string& folder = arguments.expect(1, 1, "info FOLDER")[0];
    Studio studio(folder);
    IDBgate1& gate = studio.open();
    HeadInfo head{};
    if (SUCCEEDED(gate.GetHead(address_of(head)))) {
        std::printf("schema version %d, colours %d and %d\n", static_cast<int>(head.DBversion),
                    static_cast<int>(head.Color1), static_cast<int>(head.Color2));
    } else {
        std::printf("no header row\n");
    }
    studio.close();
    print_file("studio", studio.main_file());
    print_file("invoices", studio.invoice_file());
    return 0;
}

}  // namespace tools

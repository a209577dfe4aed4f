// Prepares a statement on a small database and runs it over its rows. The input is the statement in UTF-8.
#include "fuzz/fuzz_target.h"
#include "jet/sql/query.h"
#include "tests/jet/exercise.h"
#include "tests/support/fault_file_system.h"

namespace {

jet::Database& database() {
    static testing_support::FaultFileSystem disk;
    static const testing_support::UseFileSystem use(disk);
    static const std::unique_ptr<jet::Database> opened = [] {
        disk.set_content("a.mdb", jet::make_rich_file());
        return jet::Database::open("a.mdb", {});
    }();
    return *opened;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    jet::Database& opened = database();
    try {
        const std::string text(data, data + size);
        const auto query = jet::sql::Query::prepare(opened, jet::from_utf8(text));
        query.span();
        if (query.is_aggregate()) query.aggregate();
        jet::RowView view;
        const jet::Table& table = query.table();
        for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
            if (table.read(*row, view)) query.matches(view);
        }
    } catch (const jet::Error&) {
    }
    return 0;
}

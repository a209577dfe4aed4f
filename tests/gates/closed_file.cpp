#include "tests/gates/closed_file.h"

#include <stdexcept>

namespace testing_support {
namespace {

std::unique_ptr<jet::Database> open(const std::string& path, bool read_only) {
    jet::OpenOptions options;
    options.ignore_password = true;
    options.read_only = read_only;
    return jet::Database::open(path, options);
}

}  // namespace

std::map<std::int32_t, ClosedRow> rows_of(const std::string& path, const std::string& table, const std::string& key) {
    const auto database = open(path, true);
    const jet::Table* const found = database->find_table(jet::from_utf8(table));
    if (found == nullptr) throw std::runtime_error("no table " + table);
    std::map<std::int32_t, ClosedRow> rows;
    jet::RowView view;
    for (auto id = found->next_row({}); id; id = found->next_row(*id)) {
        if (!found->read(*id, view)) throw std::runtime_error("unreadable row in " + table);
        ClosedRow row;
        const auto& columns = found->def().columns;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[jet::to_utf8(columns[i].name)] = {columns[i].type, view.value(i)};
        }
        rows[std::get<std::int32_t>(row.at(key).value)] = row;
    }
    return rows;
}

void delete_column(const std::string& path, const std::string& table, const std::string& column) {
    const auto database = open(path, false);
    database->delete_column(jet::from_utf8(table), jet::from_utf8(column));
    database->close();
}

}  // namespace testing_support

#include "bench/jet3_studio.h"

#include <vector>

#include "db/database_files.h"
#include "jet/tables/database.h"
#include "tools/rescue/new_file.h"
#include "tools/studio.h"

namespace bench {
namespace {

void copy_table(jet::Table& table, tools::NewFile& to) {
    const jet::TableDef& def = table.def();
    std::vector<jet::NewColumn> columns;
    bool is_same = true;
    for (const jet::ColumnDef& column : def.columns) columns.push_back(tools::new_column_like(column, is_same));
    to.database().create_table(def.name, columns);
    jet::RowView view;
    for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
        table.read(*row, view);
        std::vector<jet::Value> values;
        for (std::size_t i = 0; i < def.columns.size(); ++i) values.push_back(view.value(i));
        to.insert(*to.database().find_table(def.name), std::move(values));
    }
}

void make_jet3_file(const std::string& path) {
    jet::OpenOptions opening;
    opening.ignore_password = true;
    const auto made = jet::Database::open(path, opening);
    jet::CreateOptions options;
    options.password = made->header().password;
    options.format = &jet::kJet3;
    tools::NewFile file(path, path, options, tools::NewFile::Place::kReplace);
    for (const std::u16string& name : made->table_names()) copy_table(*made->find_table(name), file);
    made->close();
    file.finish();
    file.publish();
}

}  // namespace

void make_jet3_studio(const std::string& folder) {
    std::vector<std::string> paths;
    {
        tools::Studio studio(folder, tools::Studio::Purpose::kUpgrade);
        studio.open();
        for (const db::DatabaseFile file : {db::DatabaseFile::kMain, db::DatabaseFile::kInvoice}) {
            paths.push_back(db::file_path(file));
        }
        studio.close();
    }
    for (const std::string& path : paths) make_jet3_file(path);
}

}  // namespace bench

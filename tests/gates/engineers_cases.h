// Engineers as the gates serve them, in a table that only files of older versions have.
#pragma once

#include "jet/tables/database.h"
#include "os/system.h"
#include "tests/gates/record_case.h"

namespace testing_support {

inline void create_engineers(const std::string& folder) {
    jet::OpenOptions options;
    options.ignore_password = true;
    const auto database = jet::Database::open(os::join_path(folder, "sldb.mdb"), options);
    jet::NewColumn key;
    key.name = u"RecID";
    key.autonumber = true;
    jet::NewColumn name;
    name.name = u"Name";
    name.type = jet::ColumnType::kText;
    jet::NewColumn price;
    price.name = u"Price";
    price.type = jet::ColumnType::kCurrency;
    database->create_table(u"Def_Engineers", std::vector{key, name, price});
    database->close();
}

inline const RecordCase<IDBgate1, EngineerInfo> kEngineers{
    .table = "Def_Engineers",
    .key = &EngineerInfo::RecID,
    .first = &IDBgate1::EnumFirstEngineer,
    .next = &IDBgate1::EnumNextEngineer,
    .find = &IDBgate1::FindEngineer,
    .add = &IDBgate1::AddEngineer,
    .update = &IDBgate1::UpdateEngineer,
    .remove = &IDBgate1::DeleteEngineer,
    .members = {member::text("Name", &EngineerInfo::Name), member::currency("Price", &EngineerInfo::Price)},
    .adds = Adds::kNamesOnce,
    .read_order = {"Name", "Price"},
    .write_order = {"Name", "Price"},
    .prepare = create_engineers};

}  // namespace testing_support

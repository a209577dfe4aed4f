#include "db/upgrade/dated_records.h"

#include "afx/dao_table_def.h"
#include "db/rows.h"
#include "db/upgrade/added_fields.h"
#include "db/upgrade/date_reader.h"
#include "db/values.h"

namespace db {
namespace {

constexpr char kTextDate[] = "Date";

const TableSchema& studio_table(const char* name) { return *find_table(studio_tables(), name); }

void move_dates(CDaoDatabase& database, const char* table, const char* field) {
    add_field(database, studio_table(table), field);
    const DateReader reader;
    edit_each_row(database, table, [&](CDaoRecordset& rows) {
        const CString text = value_to_text(rows.GetFieldValue(kTextDate));
        if (const auto date = reader.read(text.GetString())) rows.SetFieldValue(field, COleVariant(*date));
    });
    CDaoTableDef definition(&database);
    definition.Open(table);
    definition.DeleteField(kTextDate);
}

// An existing price field keeps its values.
void add_price(CDaoDatabase& database, const TableSchema& table, const char* field) {
    if (!add_field(database, table, field)) return;
    edit_each_row(database, table.name,
                  [&](CDaoRecordset& rows) { rows.SetFieldValue(field, COleVariant(COleCurrency(0, 0))); });
}

}  // namespace

void convert_dated_records(CDaoDatabase& database) {
    add_field(database, studio_table("Sessions"), "RoomID");
    move_dates(database, "Sessions", "RecDate");
    move_dates(database, "Equipment", "ActDate");
    add_price(database, studio_table("Def_StockTypes"), "ItemPrice");
    add_price(database, engineers_table(), "Price");
    add_field(database, engineers_table(), "RecID");
}

}  // namespace db

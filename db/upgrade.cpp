#include "db/upgrade.h"

#include "afx/dao_recordset.h"
#include "db/content.h"
#include "db/values.h"

namespace db {
namespace {

int result_for(LONG version) { return version == kCurrentVersion ? 0 : -1; }

}  // namespace

LONG stored_version(CDaoDatabase& database) {
    if (!database.IsOpen()) return 0;
    CDaoRecordset rows(&database);
    rows.Open(dbOpenDynaset, "SELECT * FROM [DBHeader]", dbForwardOnly | dbReadOnly);
    if (rows.GetRecordCount() < 1) return 0;
    return value_to_integer(rows.GetFieldValue("DBversion"));
}

int upgrade_main_file(CDaoDatabase& database) {
    try {
        return result_for(stored_version(database));
    } catch (CDaoException* e) {
        e->Delete();
        return -1;
    }
}

int upgrade_invoice_file(CDaoDatabase&, LONG version) { return result_for(version); }

}  // namespace db

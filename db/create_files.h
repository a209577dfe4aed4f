// Creation of a missing database file. The file is built under a draft name, its tables and rows in one transaction,
// and renamed when it is complete. So a crash on the way leaves no file of that name, and the next opening creates it
// again.
#pragma once

class CDaoDatabase;

namespace db {

// Creates the file in the database folder; closes `database` and reopens it on the new file. Throws CDaoException* on
// failure; then `database` is closed and there is no file of that name.
void create_main_file(CDaoDatabase& database);
void create_invoice_file(CDaoDatabase& database);

}  // namespace db

// Making a missing database file. A file comes to its name only when it is whole: it is made under another
// name, its tables and rows in one transaction, and then renamed. So a crash on the way leaves no file, and
// the next opening makes it again.
#pragma once

class CDaoDatabase;

namespace db {

// Make the file in the database folder and leave `database`, which is closed before, open on it. Throw
// CDaoException* when that fails; then `database` is closed and no file of that name is there.
void create_main_file(CDaoDatabase& database);
void create_invoice_file(CDaoDatabase& database);

}  // namespace db

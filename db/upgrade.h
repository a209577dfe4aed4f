// The schema version of a file, and the place where files of older versions are brought up to date.
#pragma once

#include <kvdb/com.h>

class CDaoDatabase;

namespace db {

// `DBversion` of the first header row; 0 when there is none or the database is not open. Throws
// CDaoException* where the header cannot be read.
LONG stored_version(CDaoDatabase& database);

// 0: nothing was to be done; -1: the file is not at the current version. Conversion of older files is not
// part of the component yet: they are left exactly as they are and are served as they stand, so operations
// on tables and columns that they lack fail. Nothing is thrown.
int upgrade_main_file(CDaoDatabase& database);
// `version` is what stored_version has given.
int upgrade_invoice_file(CDaoDatabase& database, LONG version);

}  // namespace db

// The rows that the component writes by itself into new files.
#pragma once

class CDaoDatabase;

namespace db {

// The schema version of every new file.
inline constexpr int kCurrentVersion = 210000;

// Each operation writes its rows in order and returns 0, or -1 at the first exception of the engine, which
// is deleted; the rows before it stay.

// The header row, then the row of invoice defaults.
int write_main_content(CDaoDatabase& database);
// The header row.
int write_invoice_content(CDaoDatabase& database);
// Two samples of an equipment log, dated today.
int add_sample_equipment(CDaoDatabase& database);

}  // namespace db

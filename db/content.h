// The rows that the component itself writes: into new files, and into older ones that it upgrades.
#pragma once

class CDaoDatabase;

namespace db {

// The schema version of every new file.
inline constexpr int kCurrentVersion = 210000;

// Each function writes its rows in order. Throws CDaoException*; the rows before the failed one stay.

// The header row, then the row of invoice defaults.
void write_main_content(CDaoDatabase& database);
// The header row.
void write_invoice_content(CDaoDatabase& database);
// Two samples of an equipment log, dated today.
void add_sample_equipment(CDaoDatabase& database);

// For upgraded files only; deliberately, a new file has none of these rows.

// A project whose note welcomes the user.
void add_demo_project(CDaoDatabase& database);
// Three groups of media, and libraries in the first two.
void write_media_library(CDaoDatabase& database);
// The ten categories of contacts; in a new table their keys are 1 to 10 in order.
void write_contact_categories(CDaoDatabase& database);

}  // namespace db

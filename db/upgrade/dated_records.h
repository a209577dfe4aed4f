// Converts the text dates of files below version 200000 to date fields.
#pragma once

class CDaoDatabase;

namespace db {

// Moves dates of sessions and equipment from the text field Date, which is removed, to a date field (Null where the
// text is no date); gives sessions a room, and stock types and engineers a price of 0. One operation: throws
// CDaoException* at its first error; changes made before it stay.
void convert_dated_records(CDaoDatabase& database);

}  // namespace db

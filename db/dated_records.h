// From the first schema to dates in date fields: what files below version 200000 kept as text.
#pragma once

class CDaoDatabase;

namespace db {

// Dates of sessions and equipment move from the text field Date, which goes, to a field of their own (Null
// where the text is no date); sessions get a room; stock types and engineers get a price of 0. One operation:
// the first error of the engine ends it, what was done before stays, and the answer is -1, else 0.
int convert_dated_records(CDaoDatabase& database);

}  // namespace db

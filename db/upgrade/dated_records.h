// From the first schema to dates in date fields: what files below version 200000 kept as text.
#pragma once

class CDaoDatabase;

namespace db {

// Dates of sessions and equipment move from the text field Date, which goes, to a field of their own (Null
// where the text is no date); sessions get a room; stock types and engineers get a price of 0. One operation:
// throws CDaoException* at its first error, what was done before stays.
void convert_dated_records(CDaoDatabase& database);

}  // namespace db

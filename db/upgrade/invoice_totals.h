// Fills the invoice file's newest fields in invoices of older versions.
#pragma once

class CDaoDatabase;

namespace db {

// Each throws CDaoException* at its first error; changes made before it stay.

// Sets every invoice to nothing paid, balance equal to its total, no tax and no discount. The loss of earlier amounts
// is deliberate.
void reset_invoice_totals(CDaoDatabase& database);
// Gives every line the date of its invoice, or none where there is no such invoice.
void date_invoice_lines(CDaoDatabase& database);

}  // namespace db

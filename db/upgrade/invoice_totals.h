// What the invoice file's newest fields hold in invoices of older versions.
#pragma once

class CDaoDatabase;

namespace db {

// Each throws CDaoException* at its first error; what was done before stays.

// Every invoice: nothing paid, the balance its total, no tax and no discount. That earlier amounts are
// lost is deliberate.
void reset_invoice_totals(CDaoDatabase& database);
// Every line gets the date of its invoice, or none where there is no such invoice.
void date_invoice_lines(CDaoDatabase& database);

}  // namespace db

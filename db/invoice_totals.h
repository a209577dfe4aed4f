// What the invoice file's newest fields hold in invoices of older versions.
#pragma once

class CDaoDatabase;

namespace db {

// Both are one operation each: 0, or -1 at the first error of the engine; what was done before stays.

// Every invoice: nothing paid, the balance its total, no tax and no discount. That earlier amounts are
// lost is deliberate.
int reset_invoice_totals(CDaoDatabase& database);
// Every line gets the date of its invoice, or none where there is no such invoice.
int date_invoice_lines(CDaoDatabase& database);

}  // namespace db

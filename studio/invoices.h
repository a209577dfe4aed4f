// Invoices (`Invoices`) and their lines (`InvoiceParams`) in the invoice file, and the defaults of new invoices
// (`Def_Invoice`) in the main file. The application assigns the invoice numbers.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<InvoiceInfo> kInvoices;
extern const TableMapping<InvParamsInfo> kInvoiceLines;

// Access to the one row of defaults. E_FAIL without an open database, a record or a row, and on an engine error; a
// failed write changes nothing, and no row is ever added.
HRESULT get_invoice_defaults(CDaoDatabase* database, InvoiceDef* defaults);
HRESULT set_invoice_defaults(CDaoDatabase* database, const InvoiceDef* defaults);

}  // namespace studio

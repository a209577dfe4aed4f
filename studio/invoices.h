// Invoices (`Invoices`) and their lines (`InvoiceParams`) in the invoice file, and what new invoices start from
// (`Def_Invoice`) in the main file. Numbers of invoices are the program's own business.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<InvoiceInfo> kInvoices;
extern const TableMapping<InvParamsInfo> kInvoiceLines;

// The one row of the defaults. E_FAIL without an open database, a record or a row, and at an error of the
// engine; a failed writing changes nothing, and no row is ever added.
HRESULT get_invoice_defaults(CDaoDatabase* database, InvoiceDef* defaults);
HRESULT set_invoice_defaults(CDaoDatabase* database, const InvoiceDef* defaults);

}  // namespace studio

#include "db/upgrade/invoice_totals.h"

#include "db/rows.h"
#include "db/values.h"

namespace db {

void reset_invoice_totals(CDaoDatabase& database) {
    const COleVariant nothing(COleCurrency(0, 0));
    edit_each_row(database, "Invoices", [&](CDaoRecordset& rows) {
        rows.SetFieldValue("Paymetns", COleVariant(0.0f));
        rows.SetFieldValue("Balance", COleVariant(float_of(COleCurrency(rows.GetFieldValue("Total")))));
        rows.SetFieldValue("fTax", nothing);
        rows.SetFieldValue("fDiscount", nothing);
    });
}

void date_invoice_lines(CDaoDatabase& database) {
    edit_each_row(database, "InvoiceParams", [&](CDaoRecordset& lines) {
        const LONG invoice = value_to_integer(lines.GetFieldValue("InvoiceID"));
        CDaoRecordset rows(&database);
        rows.Open(dbOpenDynaset, ("SELECT * FROM [Invoices] WHERE [RecID]=" + std::to_string(invoice)).c_str(), 0);
        if (rows.GetRecordCount() < 1) return;
        const COleDateTime date(rows.GetFieldValue("Date"));
        if (date.GetStatus() == COleDateTime::valid) lines.SetFieldValue("Date", COleVariant(date));
    });
}

}  // namespace db

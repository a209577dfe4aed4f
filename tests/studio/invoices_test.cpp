// Statements of invoices and their lines.
#include "studio/invoices.h"

#include <gtest/gtest.h>

#include "os/system.h"
#include "tests/studio/mapping_columns.h"

namespace {

using namespace studio;

class Invoices : public testing::Test {
protected:
    Invoices() { os::set_date_format_for_test("/", os::DateOrder::kDayMonthYear); }
    ~Invoices() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }
};

TEST_F(Invoices, span_is_a_condition_always) {
    InvoiceInfo record = {};
    record.RecID = record.InvoiceID = 5;
    record.ClientName = "no condition";
    record.FromDate = CTime(2005, 1, 2, 23, 0, 0);
    record.ToDate = CTime(2005, 12, 31, 1, 0, 0);
    EXPECT_EQ(kInvoices.statement(&record),
              "SELECT * FROM [Invoices] WHERE [Date]>=#01/02/2005# AND [Date]<=#12/31/2005# ORDER BY [Date] ASC");
    os::set_date_format_for_test(".", os::DateOrder::kDayMonthYear);
    EXPECT_EQ(kInvoices.statement(&record),
              "SELECT * FROM [Invoices] WHERE [Date]>=#01.02.2005# AND [Date]<=#12.31.2005# ORDER BY [Date] ASC");
}

TEST_F(Invoices, lines_go_by_their_invoice_always) {
    InvParamsInfo line;
    line.RecID = 4;
    EXPECT_EQ(kInvoiceLines.statement(&line), "SELECT * FROM [InvoiceParams] WHERE [InvoiceID]=0");
    line.InvoiceID = 7;
    EXPECT_EQ(kInvoiceLines.statement(&line), "SELECT * FROM [InvoiceParams] WHERE [InvoiceID]=7");
}

TEST_F(Invoices, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kInvoices.read),
              "RecID InvoiceID ClientName ClientInfo InvTaxIDs Date SubTotal Tax Tax_SubTotal Discount "
              "Discount_SubTotal Total Notes ExData fTax fDiscount Paymetns Balance");
    EXPECT_EQ("RecID " + column_names(kInvoices.write), column_names(kInvoices.read));
    EXPECT_EQ(column_names(kInvoiceLines.read),
              "RecID InvoiceID Type Name TaxIDs DWQuantity FQuantity ItemPrice Total ExData Date Details");
    EXPECT_EQ("RecID " + column_names(kInvoiceLines.write), column_names(kInvoiceLines.read));
}

}  // namespace

// Invoices and their lines as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

// The two bounds are checked by tests of their own, since every enumeration needs them.
inline const RecordCase<IDBgate1, InvoiceInfo> kInvoices{
    .table = "Invoices",
    .key = &InvoiceInfo::RecID,
    .first = &IDBgate1::EnumFirstInvoice,
    .next = &IDBgate1::EnumNextInvoice,
    .find = &IDBgate1::FindInvoice,
    .add = &IDBgate1::AddInvoice,
    .update = &IDBgate1::UpdateInvoice,
    .remove = &IDBgate1::DeleteInvoice,
    .members = {member::integer("InvoiceID", &InvoiceInfo::InvoiceID),
                member::text("ClientName", &InvoiceInfo::ClientName),
                member::text("ClientInfo", &InvoiceInfo::ClientInfo),
                member::text("InvTaxIDs", &InvoiceInfo::InvTaxIDs), member::date("Date", &InvoiceInfo::Date),
                member::currency("SubTotal", &InvoiceInfo::SubTotal), member::integer("Tax", &InvoiceInfo::Tax),
                member::currency("Tax_SubTotal", &InvoiceInfo::Tax_SubTotal),
                member::integer("Discount", &InvoiceInfo::Discount),
                member::currency("Discount_SubTotal", &InvoiceInfo::Discount_SubTotal),
                member::currency("Total", &InvoiceInfo::Total), member::memo("Notes", &InvoiceInfo::Notes),
                member::integer("ExData", &InvoiceInfo::ExData), member::currency("fTax", &InvoiceInfo::fTax),
                member::currency("fDiscount", &InvoiceInfo::fDiscount),
                member::single("Paymetns", &InvoiceInfo::Paymetns), member::single("Balance", &InvoiceInfo::Balance)},
    .read_order = {"InvoiceID", "ClientName", "ClientInfo", "InvTaxIDs", "Date", "SubTotal", "Tax", "Tax_SubTotal",
                   "Discount", "Discount_SubTotal", "Total", "Notes", "ExData", "fTax", "fDiscount", "Paymetns",
                   "Balance"},
    .write_order = {"InvoiceID", "ClientName", "ClientInfo", "InvTaxIDs", "Date", "SubTotal", "Tax", "Tax_SubTotal",
                    "Discount", "Discount_SubTotal", "Total", "Notes", "ExData", "fTax", "fDiscount", "Paymetns",
                    "Balance"},
    .ask =
        [](InvoiceInfo& record) {
            record.FromDate = CTime(2000, 1, 1, 0, 0, 0);
            record.ToDate = CTime(2020, 1, 1, 0, 0, 0);
        },
    .file = "kvinvdb.mdb"};

inline const RecordCase<IDBgate1, InvParamsInfo> kInvoiceLines{
    .table = "InvoiceParams",
    .key = &InvParamsInfo::RecID,
    .first = &IDBgate1::EnumFirstInvParams,
    .next = &IDBgate1::EnumNextInvParams,
    .find = &IDBgate1::FindInvParams,
    .add = &IDBgate1::AddInvParams,
    .update = &IDBgate1::UpdateInvParams,
    .remove = &IDBgate1::DeleteInvParams,
    .members = {member::integer("InvoiceID", &InvParamsInfo::InvoiceID), member::integer("Type", &InvParamsInfo::Type),
                member::text("Name", &InvParamsInfo::Name), member::text("TaxIDs", &InvParamsInfo::TaxIDs),
                member::integer("DWQuantity", &InvParamsInfo::DWQuantity),
                member::currency("FQuantity", &InvParamsInfo::FQuantity),
                member::currency("ItemPrice", &InvParamsInfo::ItemPrice),
                member::currency("Total", &InvParamsInfo::Total), member::integer("ExData", &InvParamsInfo::ExData),
                member::date("Date", &InvParamsInfo::Date), member::text("Details", &InvParamsInfo::Details)},
    .parents = {&InvParamsInfo::InvoiceID},
    .read_order = {"InvoiceID", "Type", "Name", "TaxIDs", "DWQuantity", "FQuantity", "ItemPrice", "Total", "ExData",
                   "Date", "Details"},
    .write_order = {"InvoiceID", "Type", "Name", "TaxIDs", "DWQuantity", "FQuantity", "ItemPrice", "Total", "ExData",
                    "Date", "Details"},
    .file = "kvinvdb.mdb"};

}  // namespace testing_support

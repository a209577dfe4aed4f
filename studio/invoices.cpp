#include "studio/invoices.h"

namespace studio {
namespace {

// Deliberate: "Paymetns" is the column's name in every existing file. To the engine it and the balance are plain
// floats, not currency, so they keep the sign of a fraction.
constexpr Column<InvoiceInfo> kInvoice[] = {
    column::integer("RecID", &InvoiceInfo::RecID),
    column::integer("InvoiceID", &InvoiceInfo::InvoiceID),
    column::text("ClientName", &InvoiceInfo::ClientName),
    column::text("ClientInfo", &InvoiceInfo::ClientInfo),
    column::text("InvTaxIDs", &InvoiceInfo::InvTaxIDs),
    column::date("Date", &InvoiceInfo::Date),
    column::currency("SubTotal", &InvoiceInfo::SubTotal),
    column::integer("Tax", &InvoiceInfo::Tax),
    column::currency("Tax_SubTotal", &InvoiceInfo::Tax_SubTotal),
    column::integer("Discount", &InvoiceInfo::Discount),
    column::currency("Discount_SubTotal", &InvoiceInfo::Discount_SubTotal),
    column::currency("Total", &InvoiceInfo::Total),
    column::text("Notes", &InvoiceInfo::Notes),
    column::integer("ExData", &InvoiceInfo::ExData),
    column::currency("fTax", &InvoiceInfo::fTax),
    column::currency("fDiscount", &InvoiceInfo::fDiscount),
    column::single("Paymetns", &InvoiceInfo::Paymetns),
    column::single("Balance", &InvoiceInfo::Balance),
};

constexpr Clause<InvoiceInfo> kInvoiceFilter[] = {
    filter::ordered_span("Date", &InvoiceInfo::FromDate, &InvoiceInfo::ToDate, filter::Order::kAscending),
};

constexpr Column<InvParamsInfo> kLine[] = {
    column::integer("RecID", &InvParamsInfo::RecID),
    column::integer("InvoiceID", &InvParamsInfo::InvoiceID),
    column::integer("Type", &InvParamsInfo::Type),
    column::text("Name", &InvParamsInfo::Name),
    column::text("TaxIDs", &InvParamsInfo::TaxIDs),
    column::integer("DWQuantity", &InvParamsInfo::DWQuantity),
    column::currency("FQuantity", &InvParamsInfo::FQuantity),
    column::currency("ItemPrice", &InvParamsInfo::ItemPrice),
    column::currency("Total", &InvParamsInfo::Total),
    column::integer("ExData", &InvParamsInfo::ExData),
    column::date("Date", &InvParamsInfo::Date),
    column::text("Details", &InvParamsInfo::Details),
};

constexpr Clause<InvParamsInfo> kLineFilter[] = {
    filter::equals("InvoiceID", &InvParamsInfo::InvoiceID),
};

constexpr char kDefaultsTable[] = "Def_Invoice";

constexpr Column<InvoiceDef> kDefaultsRead[] = {
    column::text("StudioName", &InvoiceDef::StudioName),
    column::text("StudioDetails", &InvoiceDef::StudioDetails),
    column::integer("BaseCounter", &InvoiceDef::BaseCounter),
    column::integer("LastUsedCounter", &InvoiceDef::LastUsedCounter),
    column::integer("VAT1", &InvoiceDef::VAT1),
    column::integer("VAT2", &InvoiceDef::VAT2),
    column::currency("Tax", &InvoiceDef::Tax),
    column::integer("ExData", &InvoiceDef::ExData),
};

constexpr Column<InvoiceDef> kDefaultsWrite[] = {
    column::integer("BaseCounter", &InvoiceDef::BaseCounter),
    column::integer("LastUsedCounter", &InvoiceDef::LastUsedCounter),
    column::integer("VAT1", &InvoiceDef::VAT1),
    column::integer("VAT2", &InvoiceDef::VAT2),
    column::integer("ExData", &InvoiceDef::ExData),
    column::text("StudioName", &InvoiceDef::StudioName),
    column::text("StudioDetails", &InvoiceDef::StudioDetails),
    column::currency("Tax", &InvoiceDef::Tax),
};

// Runs `work` on the first row of the defaults.
template <class Work>
HRESULT with_defaults(CDaoDatabase* database, const InvoiceDef* defaults, int options, Work&& work) {
    if (!is_usable(database) || defaults == nullptr) return refuse_unusable(database);
    return guarded(
        [&] {
            CDaoRecordset rows(database);
            rows.Open(dbOpenDynaset, whole_table(kDefaultsTable).c_str(), options);
            return rows.GetRecordCount() >= 1 ? work(rows) : db::refuse(db::Refusal::kNoRow);
        },
        [] {});
}

}  // namespace

constinit const TableMapping<InvoiceInfo> kInvoices{
    .table = "Invoices",
    .key = {"RecID", &InvoiceInfo::RecID},
    .read = kInvoice,
    .write = std::span(kInvoice).subspan(1),
    .filter = kInvoiceFilter,
    .null_record = NullRecord::kFailsAtOnce,
};

// Deliberate: lines are enumerated by invoice but added to the whole table.
constinit const TableMapping<InvParamsInfo> kInvoiceLines{
    .table = "InvoiceParams",
    .key = {"RecID", &InvParamsInfo::RecID},
    .read = kLine,
    .write = std::span(kLine).subspan(1),
    .filter = kLineFilter,
    .filter_rule = FilterRule::kParent,
    .null_record = NullRecord::kFailsAtOnce,
};

HRESULT get_invoice_defaults(CDaoDatabase* database, InvoiceDef* defaults) {
    return with_defaults(database, defaults, kForReading,
                         [&](CDaoRecordset& rows) { return read_columns<InvoiceDef>(rows, kDefaultsRead, *defaults); });
}

HRESULT set_invoice_defaults(CDaoDatabase* database, const InvoiceDef* defaults) {
    return with_defaults(database, defaults, kForWriting, [&](CDaoRecordset& rows) {
        rows.Edit();
        if (write_columns<InvoiceDef>(rows, kDefaultsWrite, *defaults) != S_OK) return E_FAIL;
        rows.Update();
        return S_OK;
    });
}

}  // namespace studio

// The database methods of the main gate, and those that are more than an operation of a table.
#include "frame/gate1.h"

#include "frame/gate_methods.h"

namespace frame {

DBgate1::DBgate1() : GateBase(IID_IDBgate1, gate1_methods()) {}

DBgate1::~DBgate1() {
    release_cursors(projects_, songs_, tracks_, sessions_, clients_, stock_, equipment_, track_types_, project_types_,
                    track_destinations_, stock_types_, engineers_, equipment_actions_, sequencers_, supply_, rooms_,
                    library_groups_, media_libraries_, media_files_, bookings_, invoices_, invoice_lines_, sessions_ex_,
                    supply_ex_, categories_, payments_, activities_, mix_files_, messages_, services_, participants_,
                    custom_query_);
}

// The two methods below tell by the code they return to whether an exception may be let out.

// The file name has no meaning: where the files are is the component's own business.
[[gnu::noinline]] HRESULT STDMETHODCALLTYPE DBgate1::CreateDB(BSTR) {
    return call_with_errors(__builtin_return_address(0), kOpening, [&] { return db::attach(databases_); });
}

[[gnu::noinline]] HRESULT STDMETHODCALLTYPE DBgate1::OpenDB() {
    return call_with_errors(__builtin_return_address(0), kOpening, [&] { return db::open(databases_); });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetDBVer(LONG* pdwDBver) {
    const Attempt attempt{.failed = "The version was not read from", .table = "DBHeader"};
    return call(attempt, [&] { return db::get_version(databases_, pdwDBver); });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetHead(LONG_PTR pHeadInfo) {
    const Attempt attempt{.failed = "The header was not read from", .table = "DBHeader"};
    return call(attempt, [&] { return db::get_head(databases_, record<HeadInfo>(pHeadInfo)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::SetHead(LONG_PTR pHeadInfo) {
    const Attempt attempt{.failed = "The colours were not changed in", .table = "DBHeader"};
    return call(attempt, [&] { return db::set_head(databases_, record<HeadInfo>(pHeadInfo)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::CloseDB() {
    return call(Attempt{.failed = "The databases were not closed."}, [] {
        db::close(0);
        return S_OK;
    });
}

// The files never need compacting; a request is answered, not carried out.
HRESULT STDMETHODCALLTYPE DBgate1::CompactDB(LONG_PTR pCompactDBInfo) {
    const Attempt attempt{.failed = "Compacting was not asked for."};
    return call(attempt, [&] { return pCompactDBInfo != 0 ? S_OK : db::refuse(db::Refusal::kNoRecord); });
}

HRESULT STDMETHODCALLTYPE DBgate1::ComputeInStock(LONG dwStockTypeID, LONG* pnInStock) {
    const Attempt attempt{.failed = "The number in stock was not computed from", .table = "Def_StockTypes"};
    return call(attempt,
                [&] { return studio::compute_in_stock(databases_.main, stock_types_, dwStockTypeID, pnInStock); });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetInvoiceDef(LONG_PTR pInvioceDef) {
    const Attempt attempt{.failed = "What new invoices begin with was not read from", .table = "Def_Invoice"};
    return call(attempt,
                [&] { return studio::get_invoice_defaults(databases_.main, record<InvoiceDef>(pInvioceDef)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::SetInvoiceDef(LONG_PTR pInvioceDef) {
    const Attempt attempt{.failed = "What new invoices begin with was not changed in", .table = "Def_Invoice"};
    return call(attempt,
                [&] { return studio::set_invoice_defaults(databases_.main, record<InvoiceDef>(pInvioceDef)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::IsDbExist() {
    const Attempt attempt{.failed = "There is no studio in the folder of the library."};
    return call(attempt, [] { return db::main_file_exists() ? S_OK : db::refuse(db::Refusal::kNoFile); });
}

}  // namespace frame

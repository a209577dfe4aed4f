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
    return call_with_errors(__builtin_return_address(0), [&] { return db::attach(databases_); });
}

[[gnu::noinline]] HRESULT STDMETHODCALLTYPE DBgate1::OpenDB() {
    return call_with_errors(__builtin_return_address(0), [&] { return db::open(databases_); });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetDBVer(LONG* pdwDBver) {
    return call([&] { return pdwDBver != nullptr ? db::get_version(databases_, pdwDBver) : E_FAIL; });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetHead(LONG_PTR pHeadInfo) {
    return call([&] { return pHeadInfo != 0 ? db::get_head(databases_, record<HeadInfo>(pHeadInfo)) : E_FAIL; });
}

HRESULT STDMETHODCALLTYPE DBgate1::SetHead(LONG_PTR pHeadInfo) {
    return call([&] { return pHeadInfo != 0 ? db::set_head(databases_, record<HeadInfo>(pHeadInfo)) : E_FAIL; });
}

HRESULT STDMETHODCALLTYPE DBgate1::CloseDB() {
    return call([] {
        db::close(0);
        return S_OK;
    });
}

// The files never need compacting; a request is answered, not carried out.
HRESULT STDMETHODCALLTYPE DBgate1::CompactDB(LONG_PTR pCompactDBInfo) {
    return call([&] { return pCompactDBInfo != 0 ? S_OK : E_FAIL; });
}

HRESULT STDMETHODCALLTYPE DBgate1::ComputeInStock(LONG dwStockTypeID, LONG* pnInStock) {
    return call([&] { return studio::compute_in_stock(databases_.main, stock_types_, dwStockTypeID, pnInStock); });
}

HRESULT STDMETHODCALLTYPE DBgate1::GetInvoiceDef(LONG_PTR pInvioceDef) {
    return call([&] { return studio::get_invoice_defaults(databases_.main, record<InvoiceDef>(pInvioceDef)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::SetInvoiceDef(LONG_PTR pInvioceDef) {
    return call([&] { return studio::set_invoice_defaults(databases_.main, record<InvoiceDef>(pInvioceDef)); });
}

HRESULT STDMETHODCALLTYPE DBgate1::IsDbExist() {
    return call([] { return db::main_file_exists() ? S_OK : E_FAIL; });
}

}  // namespace frame

// The database methods of the main gate.
#include "frame/gate1.h"

#include "frame/gate_methods.h"

namespace frame {

DBgate1::DBgate1() : GateBase(IID_IDBgate1, gate1_methods()) {}

DBgate1::~DBgate1() { release_cursors(projects_); }

// The file name has no meaning: where the files are is the component's own business.
HRESULT STDMETHODCALLTYPE DBgate1::CreateDB(BSTR) {
    return call_with_errors([&] { return db::attach(databases_); });
}

HRESULT STDMETHODCALLTYPE DBgate1::OpenDB() {
    return call_with_errors([&] { return db::open(databases_); });
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

HRESULT STDMETHODCALLTYPE DBgate1::IsDbExist() {
    return call([] { return db::main_file_exists() ? S_OK : E_FAIL; });
}

}  // namespace frame

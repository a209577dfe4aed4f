// The library's exported functions, and its end: this file is part of the library only, everything
// that it calls can be linked into a program as well.
#include <kvdb/com.h>

#include "frame/entry_points.h"

#ifdef _WIN32
#define KVDB_EXPORT extern "C"  // named by the module definition file
#else
#define KVDB_EXPORT extern "C" __attribute__((visibility("default")))
#endif

KVDB_EXPORT HRESULT STDAPICALLTYPE DllCanUnloadNow() { return frame::can_unload_now(); }

KVDB_EXPORT HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) {
    return frame::get_class_object(rclsid, riid, ppv);
}

KVDB_EXPORT HRESULT STDAPICALLTYPE DllRegisterServer() { return frame::register_server(true); }

KVDB_EXPORT HRESULT STDAPICALLTYPE DllUnregisterServer() { return frame::register_server(false); }

#ifdef _WIN32
KVDB_EXPORT HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR command) {
    return frame::install_server(install != FALSE, command);
}
#endif

namespace {

struct EngineEnd {
    ~EngineEnd() { frame::shut_down(); }
};
const EngineEnd engine_end;

}  // namespace

// The platform keeps a loaded library in memory for as long as somebody uses it, so nothing is kept here.
#include "frame/type_information.h"

#include "frame/com_ptr.h"
#include "frame/type_library_win32.h"

namespace frame {

HRESULT load_type_library(ITypeLib** library) { return LoadTypeLibEx(own_file().c_str(), REGKIND_NONE, library); }

UINT type_information_count() { return 1; }

HRESULT type_information(REFIID interface_id, ITypeInfo** info) {
    ComPtr<ITypeLib> library;
    const HRESULT result = load_type_library(library.put_typed());
    if (FAILED(result)) return result;
    return library->GetTypeInfoOfGuid(interface_id, info);
}

}  // namespace frame

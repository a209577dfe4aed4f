// The platform keeps a loaded library in memory for as long as somebody uses it, so nothing is kept here.
#include "frame/type_information.h"

#include "frame/type_library_win32.h"

namespace frame {

HRESULT load_type_library(ITypeLib** library) { return LoadTypeLibEx(own_file().c_str(), REGKIND_NONE, library); }

UINT type_information_count() { return 1; }

HRESULT type_information(REFIID interface_id, ITypeInfo** info) {
    ITypeLib* library = nullptr;
    const HRESULT result = load_type_library(&library);
    if (FAILED(result)) return result;
    const HRESULT found = library->GetTypeInfoOfGuid(interface_id, info);
    library->Release();
    return found;
}

}  // namespace frame

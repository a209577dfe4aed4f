// The type library in the component's own file, registered or not.
#pragma once

#include <kvdb/com.h>

namespace frame {

// How many descriptions a gate has: one, or none on a host without type libraries.
UINT type_information_count();

// The description of the dispatch interface `interface_id`. DISP_E_BADINDEX on a host without type libraries.
HRESULT type_information(REFIID interface_id, ITypeInfo** info);

}  // namespace frame

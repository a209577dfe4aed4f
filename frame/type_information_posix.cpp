// Hosts without type libraries.
#include "frame/type_information.h"

namespace frame {

UINT type_information_count() { return 0; }

HRESULT type_information(REFIID, ITypeInfo**) { return DISP_E_BADINDEX; }

}  // namespace frame

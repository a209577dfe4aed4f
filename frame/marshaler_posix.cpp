// There are no apartments here.
#include "frame/marshaler.h"

namespace frame {

HRESULT Marshaler::query(IUnknown*, REFIID, void**) { return E_NOINTERFACE; }

}  // namespace frame

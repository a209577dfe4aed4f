// There are no apartments here.
#include "frame/marshaler.h"

namespace frame {

Marshaler::~Marshaler() { static_cast<void>(inner_); }

HRESULT Marshaler::query(IUnknown*, REFIID, void**) { return E_NOINTERFACE; }

}  // namespace frame

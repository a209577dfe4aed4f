// Several threads may ask at once, so the marshaler is made under the component's lock.
#include "frame/marshaler.h"

#include <objidl.h>

#include "frame/method_frame.h"

namespace frame {

HRESULT Marshaler::query(IUnknown* object, REFIID riid, void** marshal) {
    if (riid != IID_IMarshal) return E_NOINTERFACE;
    const MethodFrame method;
    if (!inner_) {
        const HRESULT made = CoCreateFreeThreadedMarshaler(object, inner_.put_typed());
        if (FAILED(made)) return made;
    }
    return inner_->QueryInterface(riid, marshal);
}

}  // namespace frame

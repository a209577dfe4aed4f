// Creation of gates. A gate is never part of another object.
#include "frame/class_factory.h"

#include "frame/method_frame.h"
#include "frame/module.h"

namespace frame {

HRESULT STDMETHODCALLTYPE ClassFactory::QueryInterface(REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory) return query_marshaler(riid, object);
    AddRef();
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** object) {
    const MethodFrame method;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return entry_.create_instance(riid, object);
}

HRESULT STDMETHODCALLTYPE ClassFactory::LockServer(BOOL lock) {
    lock_module(lock != FALSE);
    return S_OK;
}

}  // namespace frame

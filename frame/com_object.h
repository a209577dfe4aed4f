// The life of the component's objects: a reference count that starts at one, and one reference on the
// module while the object lives. Derived classes bring QueryInterface, which asks `query_marshaler` for what is not
// theirs.
#pragma once

#include <kvdb/com.h>

#include <atomic>
#include <new>
#include <utility>

#include "frame/marshaler.h"
#include "frame/module.h"

namespace frame {

template <class Interface>
class ComObject : public Interface {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~ComObject() = default;

    // The answer to QueryInterface for an interface that the object itself does not have.
    HRESULT query_marshaler(REFIID riid, void** object) {
        return marshaler_.query(static_cast<Interface*>(this), riid, object);
    }

private:
    const ModuleReference module_;
    Marshaler marshaler_;
    std::atomic<ULONG> references_{1};
};

// Makes an Object and asks it for `riid`; the object lives on only through the pointer stored in
// `*object`, which is null on failure.
template <class Object, class... Arguments>
HRESULT create_object(REFIID riid, void** object, Arguments&&... arguments) {
    *object = nullptr;
    try {
        Object* const created = new Object(std::forward<Arguments>(arguments)...);
        const HRESULT result = created->QueryInterface(riid, object);
        created->Release();
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace frame

// Makes the gates of one class. A living factory keeps the component loaded, as its locks do.
#pragma once

#include <kvdb/com.h>

#include "frame/class_table.h"
#include "frame/com_object.h"

namespace frame {

class ClassFactory final : public ComObject<IClassFactory> {
public:
    explicit ClassFactory(const ClassEntry& entry) : entry_(entry) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    const ClassEntry& entry_;
};

}  // namespace frame

// How the platform carries an object from one apartment of the process to another: as it is. The component's lock lets
// any thread call, so the platform needs no stand-in for the object, and no thread of the object's own.
#pragma once

#include <kvdb/com.h>

#include "frame/com_ptr.h"

namespace frame {

// What an object answers when it is asked for IMarshal: the platform's free-threaded marshaler, made when it is first
// asked for. On a host without apartments nobody asks.
class Marshaler {
public:
    Marshaler() = default;
    Marshaler(const Marshaler&) = delete;
    Marshaler& operator=(const Marshaler&) = delete;

    // IMarshal of `object`, which this marshaler is a part of; E_NOINTERFACE for every other interface.
    HRESULT query(IUnknown* object, REFIID riid, void** marshal);

private:
    ComPtr<IUnknown> inner_;  // counts its references on the object but for this one
};

}  // namespace frame

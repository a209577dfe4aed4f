// Where a COM host looks for the words of a failure. On Windows the platform carries error info from an object to its
// caller; elsewhere nothing does, and a gate tells it itself.
#pragma once

#include <kvdb/com.h>

#include "frame/failure.h"

namespace frame {

// Makes the thread's failure the platform's error info, for a method of `interface_id`; nothing where there is no
// memory for it, and elsewhere.
void leave_error_info(REFIID interface_id) noexcept;
// Takes away what an earlier failure has left.
void clear_error_info() noexcept;

#ifdef _WIN32

// What a gate is besides its interface.
class ErrorInfoPart : public ISupportErrorInfo {
protected:
    ~ErrorInfoPart() = default;

    void* error_info_part(REFIID riid) {
        return riid == IID_ISupportErrorInfo ? static_cast<ISupportErrorInfo*>(this) : nullptr;
    }
};

#else

class ErrorInfoPart : public ISupportErrorInfo, public IErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE GetGUID(GUID* interface_id) override {
        if (interface_id == nullptr) return E_POINTER;
        const IID* const failed = failed_interface();
        *interface_id = failed != nullptr ? *failed : GUID_NULL;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return given(source, failure_source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* text) override { return given(text, failure_text); }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* file) override {
        return given(
            file, +[]() noexcept -> BSTR { return nullptr; });
    }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        if (context == nullptr) return E_POINTER;
        *context = 0;
        return S_OK;
    }

protected:
    ~ErrorInfoPart() = default;

    void* error_info_part(REFIID riid) {
        if (riid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
        return riid == IID_IErrorInfo ? static_cast<IErrorInfo*>(this) : nullptr;
    }

private:
    static HRESULT given(BSTR* out, BSTR (*text)() noexcept) {
        if (out == nullptr) return E_POINTER;
        *out = text();
        return S_OK;
    }
};

#endif

}  // namespace frame

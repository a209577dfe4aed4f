// The platform's own error info object, filled when the call fails.
#include "frame/error_info.h"

namespace frame {

void leave_error_info(REFIID interface_id) noexcept {
    ICreateErrorInfo* description = nullptr;
    if (FAILED(CreateErrorInfo(&description))) return;
    const BSTR source = failure_source();
    const BSTR text = failure_text();
    description->SetGUID(interface_id);
    description->SetSource(source);
    description->SetDescription(text);
    SysFreeString(source);
    SysFreeString(text);
    void* info = nullptr;
    if (SUCCEEDED(description->QueryInterface(IID_IErrorInfo, &info))) {
        SetErrorInfo(0, static_cast<IErrorInfo*>(info));
        static_cast<IErrorInfo*>(info)->Release();
    }
    description->Release();
}

void clear_error_info() noexcept { SetErrorInfo(0, nullptr); }

}  // namespace frame

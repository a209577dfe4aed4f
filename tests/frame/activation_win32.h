// COM initialization of a Windows program, and activation of unregistered classes.
#pragma once

#include <kvdb/com.h>

#include <stdexcept>
#include <string>

namespace testing_support {

// The thread's membership in a single-threaded apartment.
class Apartment {
public:
    Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~Apartment() {
        if (SUCCEEDED(result_)) CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    HRESULT result_;
};

// Makes the classes of a manifest known to this thread.
class ManifestContext {
public:
    explicit ManifestContext(const std::string& manifest) {
        ACTCTXA request{};
        request.cbSize = sizeof request;
        request.lpSource = manifest.c_str();
        context_ = CreateActCtxA(&request);
        if (context_ == INVALID_HANDLE_VALUE || !ActivateActCtx(context_, &cookie_)) {
            throw std::runtime_error("cannot use " + manifest);
        }
    }
    ~ManifestContext() {
        DeactivateActCtx(0, cookie_);
        ReleaseActCtx(context_);
    }
    ManifestContext(const ManifestContext&) = delete;
    ManifestContext& operator=(const ManifestContext&) = delete;

private:
    HANDLE context_;
    ULONG_PTR cookie_ = 0;
};

}  // namespace testing_support

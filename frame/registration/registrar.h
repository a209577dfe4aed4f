// Registration of the component with the system.
#pragma once

#include <kvdb/com.h>

#include <cstdint>
#include <memory>

namespace frame {

enum class RegistrationScope {
    kMachine,  // HKEY_CLASSES_ROOT
    kUser,     // the classes of the current user
};

// One registration, or unregistration, of the component: everything that is written is taken back at the end of the
// object's life unless `keep` was called. Every operation is E_NOTIMPL on a host without a class registry.
class Registration {
public:
    Registration(RegistrationScope scope, bool install);
    ~Registration();
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    // Runs the registration script in resource `script` of the library, writing what it names or taking it away.
    HRESULT run_script(std::uint16_t script);
    // Registers or unregisters the library's type library.
    HRESULT run_type_library();
    void keep();

private:
    class Work;
    const std::unique_ptr<Work> work_;
};

}  // namespace frame

// A loadable module that reports its own path.
#include <string>

#include "os/system.h"

extern "C" __attribute__((visibility("default"))) const char* probe_module_path() {
    static const std::string path = os::module_path();
    return path.c_str();
}

// Prints what the system tells a process of this environment, one line each: date separator, date order, the narrow
// code page, the local time, the module.
#include <cstdio>
#include <string>

#include "os/system.h"

int main() {
    // The byte 0xE4 and the two bytes of U+00E4 tell the code pages apart.
    const bool is_utf8 = os::widen("\xC3\xA4") == u"\u00E4";
    const bool is_1252 = os::widen("\xE4") == u"\u00E4";
    std::printf("%s\n", os::date_separator().c_str());
    std::printf("%d\n", static_cast<int>(os::date_order()));
    std::printf("%s\n", is_utf8 ? "utf-8" : is_1252 ? "1252" : "other");
    std::printf("%.17g\n", os::local_time_as_ole_date());
    std::printf("%s\n", os::module_path().c_str());
    return 0;
}

#include "tests/support/memory_in_use.h"

#ifdef _WIN32
#include <windows.h>
// Needs windows.h before it.
#include <psapi.h>
#else
#include <unistd.h>

#include <fstream>
#endif

namespace testing_support {

std::uint64_t memory_in_use() {
#ifdef _WIN32
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.WorkingSetSize;
#else
    std::uint64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
#endif
}

}  // namespace testing_support

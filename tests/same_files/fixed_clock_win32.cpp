// Patches our functions into the component's import table.
#include "tests/same_files/fixed_clock.h"

#include <cstring>
#include <ctime>
#include <stdexcept>

#include "tests/frame/gate_host.h"

namespace testing_support {

namespace {

void WINAPI fixed_local_time(LPSYSTEMTIME now) {
    constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
    ULARGE_INTEGER ticks{};
    ticks.QuadPart =
        static_cast<ULONGLONG>((kFixedSeconds + kSecondsFrom1601To1970) * 1000 + kFixedMilliseconds) * 10000;
    const FILETIME time{ticks.LowPart, ticks.HighPart};
    FILETIME local{};
    FileTimeToLocalFileTime(&time, &local);
    FileTimeToSystemTime(&local, now);
}

std::time_t fixed_time(std::time_t* now) {
    if (now != nullptr) *now = static_cast<std::time_t>(kFixedSeconds);
    return static_cast<std::time_t>(kFixedSeconds);
}

template <class T>
T* at(HMODULE module, ULONG_PTR offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

// Replaces the function of that name; returns the number of places.
int replace(HMODULE module, const char* name, const void* function) {
    const auto* headers =
        at<IMAGE_NT_HEADERS>(module, static_cast<ULONG_PTR>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const DWORD offset = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    int places = 0;
    for (const auto* import = at<IMAGE_IMPORT_DESCRIPTOR>(module, offset); import->Name != 0; ++import) {
        const auto* named = at<IMAGE_THUNK_DATA>(module, import->OriginalFirstThunk);
        auto* bound = at<IMAGE_THUNK_DATA>(module, import->FirstThunk);
        for (; named->u1.AddressOfData != 0; ++named, ++bound) {
            if ((named->u1.Ordinal & IMAGE_ORDINAL_FLAG) != 0) continue;
            const auto* import_name = at<IMAGE_IMPORT_BY_NAME>(module, named->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import_name->Name), name) != 0) continue;
            DWORD before = 0;
            VirtualProtect(bound, sizeof *bound, PAGE_READWRITE, &before);
            bound->u1.Function = reinterpret_cast<ULONG_PTR>(function);
            VirtualProtect(bound, sizeof *bound, before, &before);
            ++places;
        }
    }
    return places;
}

void stop_clock_of(HMODULE module) {
    const int places = replace(module, "GetLocalTime", reinterpret_cast<const void*>(&fixed_local_time)) +
                       replace(module, "time", reinterpret_cast<const void*>(&fixed_time)) +
                       replace(module, "_time64", reinterpret_cast<const void*>(&fixed_time)) +
                       replace(module, "_time32", reinterpret_cast<const void*>(&fixed_time));
    if (places < 2) throw std::runtime_error("the component asks for the time in another way");
}

}  // namespace

void stop_clock() { component_loaded = stop_clock_of; }

}  // namespace testing_support

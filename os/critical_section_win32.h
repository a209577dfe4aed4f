// A lock provided by the system itself. It needs no runtime library, so it works while libraries load and unload.
#pragma once

#include "os/windows_api_win32.h"

namespace os {

class CriticalSection {
public:
    CriticalSection() { ::InitializeCriticalSection(&section_); }
    ~CriticalSection() { ::DeleteCriticalSection(&section_); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    CRITICAL_SECTION* get() { return &section_; }

    class Guard {
    public:
        explicit Guard(CriticalSection& section) : section_(section) { ::EnterCriticalSection(&section_.section_); }
        ~Guard() { ::LeaveCriticalSection(&section_.section_); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        CriticalSection& section_;
    };

private:
    CRITICAL_SECTION section_;
};

}  // namespace os

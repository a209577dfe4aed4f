// Another program's temporary handle on a file: a virus scanner's, an indexer's, a backup's.
#pragma once

#include "os/windows_api_win32.h"

#include <string>

namespace testing_support {

// Starts another process of this program that opens `path` and holds it until `release` or for `milliseconds`. Returns
// when the file is held.
class HandleHolder {
public:
    HandleHolder(const std::string& path, DWORD access, DWORD share, DWORD milliseconds = INFINITE);
    ~HandleHolder() { release(); }
    HandleHolder(const HandleHolder&) = delete;
    HandleHolder& operator=(const HandleHolder&) = delete;

    // Whether the other process has got its handle.
    bool holds() const { return holds_; }
    // Returns when the process is gone.
    void release();

private:
    HANDLE release_ = nullptr;
    PROCESS_INFORMATION process_{};
    bool holds_ = false;
};

}  // namespace testing_support

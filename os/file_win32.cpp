// Files of Windows. Invariants:
//  1. A locked file is opened without any share mode, so every other opening, by another process
//     and by this one alike, is refused; closing the handle ends that.
//  2. A file open for reading lets others only read. A side file shares everything, so it never restricts others.
//  3. Short writes are continued; the caller sees all or an error.
//  4. What another program (a virus scanner, an indexer, a backup) locks for a moment is retried for about a
//     second before it is an error.
//  5. Paths are wide from end to end; "not found" is reported only when the system said so.

#include <algorithm>
#include <limits>
#include <map>
#include <new>
#include <utility>

#include "os/critical_section_win32.h"
#include "os/draft.h"
#include "os/file.h"
#include "os/path_text.h"
#include "os/system.h"
#include "os/system_error.h"
#include "os/windows_api_win32.h"

namespace os {
namespace {

std::string reason_of(DWORD code) {
    wchar_t text[512] = L"";
    DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                                    static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && text[length - 1] <= L' ') --length;
    if (length == 0) return "system error " + std::to_string(code);
    return path_of_units({reinterpret_cast<const char16_t*>(text), length});
}

[[noreturn]] void fail(const char* operation, const std::string& path, FileFault fault, DWORD code) {
    throw FileError(fault, detail::file_error_text(operation, path, reason_of(code)));
}

[[noreturn]] void fail(const char* operation, const std::string& path, DWORD code) {
    fail(operation, path, detail::fault_of_system_error(static_cast<std::int32_t>(code)), code);
}

// A NUL would silently truncate the path in the system call.
void require_usable(const char* operation, const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        fail(operation, path, FileFault::kBadPath, ERROR_INVALID_NAME);
    }
}

// The path as the system's functions accept it: one longer than 259 characters must be absolute and prefixed.
std::wstring system_path(const std::string& path) {
    const std::u16string units = units_of_path(path);
    const std::wstring wide(units.begin(), units.end());
    constexpr std::size_t kLongestUnmarked = 247;  // for a folder; a file's path may be twelve longer
    if (wide.size() <= kLongestUnmarked || wide.starts_with(L"\\\\")) return wide;
    std::wstring full(wide.size() + MAX_PATH, L'\0');
    const DWORD length = ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) return wide;
    full.resize(length);
    return L"\\\\?\\" + full;
}

// Errors caused by another process's handle on the file, or by a deleted file that still has one.
bool may_pass(DWORD code) {
    constexpr DWORD kDeletePending = 303;  // missing in older headers
    return code == ERROR_SHARING_VIOLATION || code == ERROR_ACCESS_DENIED || code == ERROR_LOCK_VIOLATION ||
           code == kDeletePending;
}

// Access to a folder, or to a file marked as read-only, is denied permanently.
bool is_denied_for_good(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0;
}

// Calls `attempt` until it returns true, fails with a permanent error, or about a second has passed. GetLastError is
// the last attempt's.
template <class Attempt>
bool tried_again(const std::wstring& path, Attempt&& attempt) {
    for (DWORD waited = 0, pause = 1;; waited += pause, pause = std::min<DWORD>(2 * pause, 100)) {
        if (attempt()) return true;
        const DWORD code = ::GetLastError();
        if (!may_pass(code) || waited >= 1000 || (code == ERROR_ACCESS_DENIED && is_denied_for_good(path))) {
            ::SetLastError(code);
            return false;
        }
        ::Sleep(pause);
    }
}

class Handle {
public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() {
        if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
    }
    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

// Handles whose locks outlast their files, by path. A path without an entry keeps nothing.
class KeptHandles {
public:
    void keep(const std::string& path) {
        const CriticalSection::Guard lock(section_);
        ++entries_[path].keepers;
    }
    void forget(const std::string& path) {
        const CriticalSection::Guard lock(section_);
        const auto entry = entries_.find(path);
        if (--entry->second.keepers == 0) entries_.erase(entry);
    }
    // Hands the handle over if a lock on the path is being kept; otherwise leaves it.
    void give(const std::string& path, Handle& handle) {
        const CriticalSection::Guard lock(section_);
        const auto entry = entries_.find(path);
        if (entry != entries_.end()) entry->second.handle = std::move(handle);
    }
    Handle take(const std::string& path) {
        const CriticalSection::Guard lock(section_);
        const auto entry = entries_.find(path);
        return entry != entries_.end() ? std::move(entry->second.handle) : Handle();
    }

private:
    struct Entry {
        int keepers = 0;
        Handle handle;
    };
    CriticalSection section_;
    std::map<std::string, Entry> entries_;
};

class Win32KeptLock : public KeptLock {
public:
    Win32KeptLock(KeptHandles& kept, std::string path) : kept_(kept), path_(std::move(path)) { kept_.keep(path_); }
    ~Win32KeptLock() override { kept_.forget(path_); }
    Win32KeptLock(const Win32KeptLock&) = delete;
    Win32KeptLock& operator=(const Win32KeptLock&) = delete;

private:
    KeptHandles& kept_;
    std::string path_;
};

// Bytes per transfer; well within the system's 32-bit byte count.
constexpr std::size_t kLargestTransfer = std::size_t{64} << 20;

class Win32File : public File {
public:
    // `kept`: takes the handle over at closing, for a locked file; null for any other.
    Win32File(Handle handle, std::string path, KeptHandles* kept)
        : handle_(std::move(handle)), path_(std::move(path)), kept_(kept) {}
    ~Win32File() override {
        if (kept_ != nullptr) kept_->give(path_, handle_);
    }
    Win32File(const Win32File&) = delete;
    Win32File& operator=(const Win32File&) = delete;

    std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
        std::size_t done = 0;
        while (done < into.size()) {
            DWORD count = 0;
            const auto wanted = static_cast<DWORD>(std::min(into.size() - done, kLargestTransfer));
            if (!move_to(at + done) || !::ReadFile(handle_.get(), into.data() + done, wanted, &count, nullptr)) {
                fail_at_unknown_position("read");
            }
            if (count == 0) break;
            done += count;
            position_ += count;
        }
        return done;
    }

    void write(std::uint64_t at, std::span<const std::uint8_t> bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            DWORD count = 0;
            const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kLargestTransfer));
            if (!move_to(at + done) || !::WriteFile(handle_.get(), bytes.data() + done, wanted, &count, nullptr)) {
                fail_at_unknown_position("write");
            }
            // A device that accepts nothing and reports no error would otherwise loop for ever.
            if (count == 0) fail("write", path_, ERROR_DISK_FULL);
            done += count;
            position_ += count;
        }
    }

    std::uint64_t size() override {
        LARGE_INTEGER bytes{};
        if (!::GetFileSizeEx(handle_.get(), &bytes)) fail("measure", path_, ::GetLastError());
        return static_cast<std::uint64_t>(bytes.QuadPart);
    }

    void truncate(std::uint64_t bytes) override {
        if (bytes > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max())) {
            fail("resize", path_, ERROR_DISK_FULL);
        }
        if (!move_to(bytes) || !::SetEndOfFile(handle_.get())) fail_at_unknown_position("resize");
    }

    void sync() override {
        if (!::FlushFileBuffers(handle_.get())) fail("sync", path_, ::GetLastError());
    }

private:
    static constexpr std::uint64_t kUnknown = std::numeric_limits<std::uint64_t>::max();

    // Moves the handle's own position, by which transfers go: an offset handed over with each transfer (OVERLAPPED)
    // costs a message to Wine's server, many times what the transfer takes.
    bool move_to(std::uint64_t at) {
        if (position_ == at) return true;
        LARGE_INTEGER offset{};
        offset.QuadPart = static_cast<LONGLONG>(at);
        if (!::SetFilePointerEx(handle_.get(), offset, nullptr, FILE_BEGIN)) return false;
        position_ = at;
        return true;
    }

    [[noreturn]] void fail_at_unknown_position(const char* operation) {
        const DWORD code = ::GetLastError();
        position_ = kUnknown;
        fail(operation, path_, code);
    }

    Handle handle_;
    std::uint64_t position_ = kUnknown;  // the handle's, where it is known
    std::string path_;
    KeptHandles* kept_;
};

struct OpenArguments {
    DWORD access;
    DWORD share;
    DWORD disposition;
};

OpenArguments arguments_of(OpenMode mode) {
    constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    switch (mode) {
        case OpenMode::kReadOnly: return {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING};
        case OpenMode::kExclusive: return {kReadWrite, 0, OPEN_EXISTING};
        case OpenMode::kCreateExclusive: return {kReadWrite, 0, CREATE_NEW};
        case OpenMode::kReadSide: return {GENERIC_READ, kShareAll, OPEN_EXISTING};
        case OpenMode::kOpenSide: return {kReadWrite, kShareAll, OPEN_EXISTING};
        case OpenMode::kCreateSide: return {kReadWrite, kShareAll, CREATE_NEW};
    }
    return {GENERIC_READ, kShareAll, OPEN_EXISTING};
}

bool is_side(OpenMode mode) {
    return mode == OpenMode::kReadSide || mode == OpenMode::kOpenSide || mode == OpenMode::kCreateSide;
}

// A link in place of a file. Files with other reparse points, such as those that a network drive fetches on reading,
// are ordinary files.
bool is_link(const WIN32_FIND_DATAW& entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK || entry.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

bool is_link(const std::wstring& path) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = ::FindFirstFileW(path.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return false;
    ::FindClose(search);
    return is_link(entry);
}

class Win32FileSystem : public FileSystem {
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        const bool locks = mode == OpenMode::kExclusive || mode == OpenMode::kCreateExclusive;
        const char* operation = mode == OpenMode::kCreateExclusive || mode == OpenMode::kCreateSide ? "create" : "open";
        require_usable(operation, path);
        if (mode == OpenMode::kExclusive) {
            // Nobody can have removed the name meanwhile: the handle shares nothing.
            if (Handle kept = kept_.take(path)) return std::make_unique<Win32File>(std::move(kept), path, &kept_);
        }
        const OpenArguments arguments = arguments_of(mode);
        const std::wstring wide = system_path(path);
        if (is_side(mode) && mode != OpenMode::kCreateSide && is_link(wide)) {
            fail(operation, path, FileFault::kLink, ERROR_CANT_RESOLVE_FILENAME);
        }
        HANDLE opened = INVALID_HANDLE_VALUE;
        tried_again(wide, [&] {
            opened = ::CreateFileW(wide.c_str(), arguments.access, arguments.share, nullptr, arguments.disposition,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
            return opened != INVALID_HANDLE_VALUE;
        });
        Handle handle(opened);
        if (!handle) fail(operation, path, ::GetLastError());
        // Names such as COM1 open a device.
        if (::GetFileType(handle.get()) != FILE_TYPE_DISK) {
            fail(operation, path, FileFault::kAccessDenied, ERROR_BAD_DEVICE);
        }
        return std::make_unique<Win32File>(std::move(handle), path, locks ? &kept_ : nullptr);
    }

    bool exists(const std::string& path) override {
        if (path.empty() || path.find('\0') != std::string::npos) return false;
        const std::wstring wide = system_path(path);
        if (tried_again(wide, [&] { return ::GetFileAttributesW(wide.c_str()) != INVALID_FILE_ATTRIBUTES; })) {
            return true;
        }
        const DWORD code = ::GetLastError();
        if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) return false;
        fail("look for", path, code);
    }

    // A file that another program has open with delete sharing keeps its name until that program closes it. So rename
    // it first: its name is free at once.
    void remove(const std::string& path) override {
        require_usable("remove", path);
        const std::wstring wide = system_path(path);
        const std::wstring gone = system_path(draft_name(path));
        if (!tried_again(wide, [&] { return ::MoveFileExW(wide.c_str(), gone.c_str(), 0) != 0; })) {
            fail("remove", path, ::GetLastError());
        }
        if (::DeleteFileW(gone.c_str())) return;
        const DWORD code = ::GetLastError();
        ::MoveFileExW(gone.c_str(), wide.c_str(), 0);
        fail("remove", path, code);
    }

    void rename(const std::string& from, const std::string& to) override {
        require_usable("rename", from);
        require_usable("rename", to);
        const std::wstring wide_from = system_path(from);
        const std::wstring wide_to = system_path(to);
        const auto move = [&] {
            return ::MoveFileExW(wide_from.c_str(), wide_to.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
        };
        if (tried_again(wide_from, move)) return;
        const DWORD code = ::GetLastError();
        const FileFault fault = detail::fault_of_system_error(static_cast<std::int32_t>(code));
        fail("rename", fault == FileFault::kExists ? to : from, code);
    }

    void replace(const std::string& from, const std::string& to) override {
        require_usable("replace", from);
        require_usable("replace", to);
        const std::wstring wide_from = system_path(from);
        const std::wstring wide_to = system_path(to);
        const auto move = [&] {
            return ::MoveFileExW(wide_from.c_str(), wide_to.c_str(),
                                 MOVEFILE_WRITE_THROUGH | MOVEFILE_REPLACE_EXISTING) != 0;
        };
        if (!tried_again(wide_to, move)) fail("replace", to, ::GetLastError());
    }

    std::string resolved(const std::string& path) override {
        if (path.empty() || path.find('\0') != std::string::npos || !is_link(system_path(path))) return path;
        const Handle handle(::CreateFileW(system_path(path).c_str(), 0,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        if (!handle) return path;
        std::wstring final(32768, L'\0');
        const DWORD length =
            ::GetFinalPathNameByHandleW(handle.get(), final.data(), static_cast<DWORD>(final.size()), 0);
        if (length == 0 || length >= final.size()) return path;
        return path_of_units({reinterpret_cast<const char16_t*>(final.data()), length});
    }

    std::vector<std::string> longer_names(const std::string& path) override {
        require_usable("list the folder of", path);
        const std::string folder = folder_of(path);
        WIN32_FIND_DATAW entry{};
        const HANDLE search = ::FindFirstFileW((system_path(path) + L"*").c_str(), &entry);
        if (search == INVALID_HANDLE_VALUE) {
            if (::GetLastError() == ERROR_FILE_NOT_FOUND) return {};
            fail("list the folder of", path, ::GetLastError());
        }
        std::vector<std::string> found;
        do {
            const std::wstring_view name = entry.cFileName;
            std::string other =
                join_path(folder, path_of_units({reinterpret_cast<const char16_t*>(name.data()), name.size()}));
            if (other.size() > path.size() && other.starts_with(path)) found.push_back(std::move(other));
        } while (::FindNextFileW(search, &entry) != 0);
        ::FindClose(search);
        return found;
    }

    std::unique_ptr<KeptLock> keep_lock(const std::string& path) override {
        return std::make_unique<Win32KeptLock>(kept_, resolved(path));
    }

    // The system journals names on its own and has no call to wait for that; only check that the folder exists.
    void sync_folder_of(const std::string& path) override {
        constexpr const char* kOperation = "sync the folder of";
        require_usable(kOperation, path);
        const std::string folder = folder_of(path);
        const DWORD attributes = ::GetFileAttributesW(folder.empty() ? L"." : system_path(folder).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) fail(kOperation, path, FileFault::kBadPath, ::GetLastError());
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) fail(kOperation, path, ERROR_DIRECTORY);
    }

private:
    KeptHandles kept_;
};

}  // namespace

FileFault detail::fault_of_system_error(std::int32_t code) {
    constexpr DWORD kDiskQuotaExceeded = 1295;  // missing in older headers
    struct Entry {
        DWORD code;
        FileFault fault;
    };
    static constexpr Entry kFaults[] = {
        {ERROR_FILE_NOT_FOUND, FileFault::kNotFound},      {ERROR_PATH_NOT_FOUND, FileFault::kBadPath},
        {ERROR_INVALID_NAME, FileFault::kBadPath},         {ERROR_BAD_PATHNAME, FileFault::kBadPath},
        {ERROR_BAD_NETPATH, FileFault::kBadPath},          {ERROR_BAD_NET_NAME, FileFault::kBadPath},
        {ERROR_INVALID_DRIVE, FileFault::kBadPath},        {ERROR_DIRECTORY, FileFault::kBadPath},
        {ERROR_FILENAME_EXCED_RANGE, FileFault::kBadPath}, {ERROR_FILE_EXISTS, FileFault::kExists},
        {ERROR_ALREADY_EXISTS, FileFault::kExists},        {ERROR_ACCESS_DENIED, FileFault::kAccessDenied},
        {ERROR_WRITE_PROTECT, FileFault::kAccessDenied},   {ERROR_NETWORK_ACCESS_DENIED, FileFault::kAccessDenied},
        {ERROR_SHARING_VIOLATION, FileFault::kLocked},     {ERROR_LOCK_VIOLATION, FileFault::kLocked},
        {ERROR_USER_MAPPED_FILE, FileFault::kLocked},      {ERROR_DISK_FULL, FileFault::kDiskFull},
        {ERROR_HANDLE_DISK_FULL, FileFault::kDiskFull},    {kDiskQuotaExceeded, FileFault::kDiskFull},
        {ERROR_FILE_TOO_LARGE, FileFault::kDiskFull},      {ERROR_CANT_RESOLVE_FILENAME, FileFault::kLink},
    };
    const auto* found = std::find_if(std::begin(kFaults), std::end(kFaults),
                                     [code](const Entry& entry) { return entry.code == static_cast<DWORD>(code); });
    return found != std::end(kFaults) ? found->fault : FileFault::kIo;
}

// Never destroyed: other static objects may close their files after it would be.
FileSystem& native_file_system() {
    alignas(Win32FileSystem) static std::byte place[sizeof(Win32FileSystem)];
    static Win32FileSystem* const system = ::new (place) Win32FileSystem;
    return *system;
}

}  // namespace os

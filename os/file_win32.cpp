// Files of Windows. Invariants:
//  1. A locked file is one opened without any share mode, so every other opening, from another process
//     and from this one alike, is refused; closing the handle ends that.
//  2. An unlocked file shares everything, so it never keeps others from what they may do.
//  3. Short writes are continued; whoever calls sees all or an error.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "os/file.h"
#include "os/system.h"
#include "os/system_error.h"

namespace os {
namespace {

std::string reason_of(DWORD code) {
    char text[512] = "";
    DWORD length = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                                    static_cast<DWORD>(sizeof text), nullptr);
    while (length > 0 && static_cast<unsigned char>(text[length - 1]) <= ' ') --length;
    return length > 0 ? std::string(text, length) : "system error " + std::to_string(code);
}

[[noreturn]] void fail(const char* operation, const std::string& path, FileFault fault, DWORD code) {
    throw FileError(fault, detail::file_error_text(operation, path, reason_of(code)));
}

[[noreturn]] void fail(const char* operation, const std::string& path, DWORD code) {
    fail(operation, path, detail::fault_of_system_error(static_cast<std::int32_t>(code)), code);
}

// A NUL would silently cut the path short on its way through the system's interface.
void require_usable(const char* operation, const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        fail(operation, path, FileFault::kBadPath, ERROR_INVALID_NAME);
    }
}

// The path as the system's functions take it. Those in the code page refuse what is longer than 259 characters, and so
// do the others, unless the path is complete and marked.
std::wstring system_path(const std::string& path) {
    const std::u16string units = widen(path);
    const std::wstring wide(units.begin(), units.end());
    constexpr std::size_t kLongestUnmarked = 247;  // of a folder; a file may be twelve longer
    if (wide.size() <= kLongestUnmarked || wide.starts_with(L"\\\\")) return wide;
    std::wstring full(wide.size() + MAX_PATH, L'\0');
    const DWORD length = ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) return wide;
    full.resize(length);
    return L"\\\\?\\" + full;
}

class Handle {
public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle() {
        if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
    }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

// One transfer's share: what fits the system's 32-bit byte count, and then some.
constexpr std::size_t kLargestTransfer = std::size_t{64} << 20;

class Win32File : public File {
public:
    Win32File(Handle handle, std::string path) : handle_(std::move(handle)), path_(std::move(path)) {}

    std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
        std::size_t done = 0;
        while (done < into.size()) {
            OVERLAPPED position = position_of(at + done);
            DWORD count = 0;
            const auto wanted = static_cast<DWORD>(std::min(into.size() - done, kLargestTransfer));
            if (!::ReadFile(handle_.get(), into.data() + done, wanted, &count, &position)) {
                const DWORD code = ::GetLastError();
                if (code != ERROR_HANDLE_EOF) fail("read", path_, code);
                break;
            }
            if (count == 0) break;
            done += count;
        }
        return done;
    }

    void write(std::uint64_t at, std::span<const std::uint8_t> bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            OVERLAPPED position = position_of(at + done);
            DWORD count = 0;
            const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kLargestTransfer));
            if (!::WriteFile(handle_.get(), bytes.data() + done, wanted, &count, &position)) {
                fail("write", path_, ::GetLastError());
            }
            // A device that takes nothing and reports nothing would otherwise hold us here for ever.
            if (count == 0) fail("write", path_, ERROR_DISK_FULL);
            done += count;
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
        LARGE_INTEGER end{};
        end.QuadPart = static_cast<LONGLONG>(bytes);
        if (!::SetFilePointerEx(handle_.get(), end, nullptr, FILE_BEGIN) || !::SetEndOfFile(handle_.get())) {
            fail("resize", path_, ::GetLastError());
        }
    }

    void sync() override {
        if (!::FlushFileBuffers(handle_.get())) fail("sync", path_, ::GetLastError());
    }

private:
    static OVERLAPPED position_of(std::uint64_t at) {
        OVERLAPPED position{};
        position.Offset = static_cast<DWORD>(at);
        position.OffsetHigh = static_cast<DWORD>(at >> 32);
        return position;
    }

    Handle handle_;
    std::string path_;
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
        case OpenMode::kReadOnly: return {GENERIC_READ, kShareAll, OPEN_EXISTING};
        case OpenMode::kExclusive: return {kReadWrite, 0, OPEN_EXISTING};
        case OpenMode::kCreateExclusive: return {kReadWrite, 0, CREATE_NEW};
        case OpenMode::kOpenOrCreate: return {kReadWrite, kShareAll, OPEN_ALWAYS};
    }
    return {GENERIC_READ, kShareAll, OPEN_EXISTING};
}

class Win32FileSystem : public FileSystem {
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        const char* operation = mode == OpenMode::kCreateExclusive ? "create" : "open";
        require_usable(operation, path);
        const OpenArguments arguments = arguments_of(mode);
        Handle handle(::CreateFileW(system_path(path).c_str(), arguments.access, arguments.share, nullptr,
                                    arguments.disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (handle.get() == INVALID_HANDLE_VALUE) fail(operation, path, ::GetLastError());
        // Names such as COM1 open a device.
        if (::GetFileType(handle.get()) != FILE_TYPE_DISK) {
            fail(operation, path, FileFault::kAccessDenied, ERROR_BAD_DEVICE);
        }
        return std::make_unique<Win32File>(std::move(handle), path);
    }

    bool exists(const std::string& path) override {
        return path.find('\0') == std::string::npos &&
               ::GetFileAttributesW(system_path(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    void remove(const std::string& path) override {
        require_usable("remove", path);
        if (!::DeleteFileW(system_path(path).c_str())) fail("remove", path, ::GetLastError());
    }

    void rename(const std::string& from, const std::string& to) override {
        require_usable("rename", from);
        require_usable("rename", to);
        if (::MoveFileExW(system_path(from).c_str(), system_path(to).c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return;
        fail("rename", from, ::GetLastError());
    }

    // The system journals names by itself and has no call to wait for them; what can be told is whether
    // the folder is there.
    void sync_folder_of(const std::string& path) override {
        constexpr const char* kOperation = "sync the folder of";
        require_usable(kOperation, path);
        const std::string folder = folder_of(path);
        const DWORD attributes = ::GetFileAttributesW(folder.empty() ? L"." : system_path(folder).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) fail(kOperation, path, FileFault::kBadPath, ::GetLastError());
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) fail(kOperation, path, ERROR_DIRECTORY);
    }
};

}  // namespace

FileFault detail::fault_of_system_error(std::int32_t code) {
    constexpr DWORD kDiskQuotaExceeded = 1295;  // older headers do not name it
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
        {ERROR_FILE_TOO_LARGE, FileFault::kDiskFull},
    };
    const auto* found = std::find_if(std::begin(kFaults), std::end(kFaults),
                                     [code](const Entry& entry) { return entry.code == static_cast<DWORD>(code); });
    return found != std::end(kFaults) ? found->fault : FileFault::kIo;
}

FileSystem& native_file_system() {
    static Win32FileSystem system;
    return system;
}

}  // namespace os

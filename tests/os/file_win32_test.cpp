// Behaviour of files specific to Windows: share modes, devices, long paths, and the meaning of its error numbers.

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "os/file.h"
#include "os/module_win32.h"
#include "os/system.h"
#include "os/system_error.h"
#include "os/windows_api_win32.h"
#include "tests/support/temp_folder.h"

namespace {

using os::FileFault;
using os::OpenMode;

template <class Work>
std::optional<FileFault> fault_or_none(Work&& work) {
    try {
        work();
    } catch (const os::FileError& error) {
        return error.fault();
    }
    return std::nullopt;
}

class Win32Files : public testing::Test {
protected:
    // Opens with the system's own call, as another program does; its error number, 0 for none.
    DWORD open_as_others(DWORD access, DWORD share) const {
        const HANDLE handle = CreateFileA(path_.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE) return GetLastError();
        CloseHandle(handle);
        return 0;
    }

    static constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    testing_support::TempFolder folder_;
    std::string path_ = folder_.file("file");
    os::FileSystem& system_ = os::native_file_system();
};

}  // namespace

TEST_F(Win32Files, exclusive_file_is_refused_to_everybody_until_closed) {
    {
        const auto file = system_.open(path_, OpenMode::kCreateExclusive);
        for (const DWORD access : std::array<DWORD, 3>{GENERIC_READ, GENERIC_WRITE, GENERIC_READ | GENERIC_WRITE}) {
            EXPECT_EQ(open_as_others(access, kShareAll), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
        }
        EXPECT_EQ(fault_or_none([&] { system_.open(path_, OpenMode::kReadOnly); }), FileFault::kLocked);
        EXPECT_EQ(fault_or_none([&] { system_.remove(path_); }), FileFault::kLocked);
    }
    EXPECT_EQ(open_as_others(GENERIC_READ, 0), 0u);
    EXPECT_EQ(fault_or_none([&] { system_.open(path_, OpenMode::kExclusive); }), std::nullopt);
}

TEST_F(Win32Files, reader_lets_others_read_and_nobody_write) {
    system_.open(path_, OpenMode::kCreateExclusive);
    const auto reader = system_.open(path_, OpenMode::kReadOnly);
    EXPECT_EQ(open_as_others(GENERIC_READ, kShareAll), 0u);
    EXPECT_EQ(open_as_others(GENERIC_READ | GENERIC_WRITE, kShareAll), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(fault_or_none([&] { system_.open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
}

TEST_F(Win32Files, side_file_keeps_nobody_from_anything) {
    const auto side = system_.open(path_, OpenMode::kCreateSide);
    EXPECT_EQ(open_as_others(GENERIC_READ | GENERIC_WRITE | DELETE, kShareAll), 0u);
}

// Held by a thread of this process; the share modes treat it like another process.
TEST_F(Win32Files, what_others_hold_for_a_moment_is_tried_again) {
    system_.open(path_, OpenMode::kCreateExclusive);
    const auto held_for = [&](DWORD milliseconds) {
        const HANDLE handle = CreateFileA(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        return std::thread([=] {
            Sleep(milliseconds);
            CloseHandle(handle);
        });
    };
    std::thread holder = held_for(200);
    EXPECT_EQ(fault_or_none([&] { system_.open(path_, OpenMode::kExclusive); }), std::nullopt);
    holder.join();
    holder = held_for(200);
    EXPECT_EQ(fault_or_none([&] { system_.rename(path_, path_ + "2"); }), std::nullopt);
    holder.join();
    path_ += "2";
    holder = held_for(200);
    EXPECT_EQ(fault_or_none([&] { system_.remove(path_); }), std::nullopt);
    holder.join();
    EXPECT_FALSE(system_.exists(path_));
}

TEST_F(Win32Files, what_is_denied_for_good_is_denied_at_once) {
    const DWORD before = GetTickCount();
    EXPECT_EQ(fault_or_none([&] { system_.open(folder_.path(), OpenMode::kExclusive); }), FileFault::kAccessDenied);
    EXPECT_LT(GetTickCount() - before, 900u);
}

TEST_F(Win32Files, names_beyond_the_code_page_are_told_apart) {
    const std::string polish = folder_.file("Micha\xC5\x82.mdb");
    system_.open(polish, OpenMode::kCreateExclusive)->write(0, std::array<std::uint8_t, 1>{1});
    EXPECT_TRUE(system_.exists(polish));
    EXPECT_EQ(system_.longer_names(polish.substr(0, polish.size() - 4)), std::vector<std::string>{polish});
    EXPECT_FALSE(system_.exists(folder_.file("Michal.mdb")));
}

TEST_F(Win32Files, name_of_a_device_is_refused) {
    EXPECT_TRUE(fault_or_none([&] { system_.open("NUL", OpenMode::kOpenSide); }).has_value());
}

TEST_F(Win32Files, path_beyond_260_characters_works_in_every_operation) {
    std::string folder = folder_.path();
    while (folder.size() < 300) {
        folder += "\\" + std::string(50, 'f');
        const std::string marked = "\\\\?\\" + folder;
        ASSERT_TRUE(CreateDirectoryW(std::wstring(marked.begin(), marked.end()).c_str(), nullptr));
    }
    const std::string from = os::join_path(folder, "from");
    const std::string to = os::join_path(folder, "to");
    system_.open(from, OpenMode::kCreateExclusive)->write(0, std::array<std::uint8_t, 3>{1, 2, 3});
    EXPECT_TRUE(system_.exists(from));
    system_.rename(from, to);
    system_.sync_folder_of(to);
    EXPECT_FALSE(system_.exists(from));
    EXPECT_EQ(system_.open(to, OpenMode::kReadOnly)->size(), 3u);
    system_.remove(to);
    EXPECT_FALSE(system_.exists(to));
    EXPECT_EQ(fault_or_none([&] { system_.open(to, OpenMode::kReadOnly); }), FileFault::kNotFound);
}

TEST(Win32Faults, system_errors_map_to_the_faults_told_apart) {
    const std::pair<DWORD, FileFault> cases[] = {{ERROR_FILE_NOT_FOUND, FileFault::kNotFound},
                                                 {ERROR_PATH_NOT_FOUND, FileFault::kBadPath},
                                                 {ERROR_INVALID_NAME, FileFault::kBadPath},
                                                 {ERROR_FILE_EXISTS, FileFault::kExists},
                                                 {ERROR_ACCESS_DENIED, FileFault::kAccessDenied},
                                                 {ERROR_WRITE_PROTECT, FileFault::kAccessDenied},
                                                 {ERROR_SHARING_VIOLATION, FileFault::kLocked},
                                                 {ERROR_LOCK_VIOLATION, FileFault::kLocked},
                                                 {ERROR_DISK_FULL, FileFault::kDiskFull},
                                                 {ERROR_HANDLE_DISK_FULL, FileFault::kDiskFull},
                                                 {ERROR_CRC, FileFault::kIo},
                                                 {ERROR_GEN_FAILURE, FileFault::kIo}};
    for (const auto& [code, fault] : cases) {
        EXPECT_EQ(os::detail::fault_of_system_error(static_cast<std::int32_t>(code)), fault) << code;
    }
}

TEST(Win32Modules, code_is_found_in_its_module) {
    EXPECT_EQ(os::own_module(), GetModuleHandleA(nullptr));
    const auto sleep = reinterpret_cast<const void*>(GetProcAddress(GetModuleHandleA("kernel32"), "Sleep"));
    EXPECT_NE(os::module_of(sleep), nullptr);
    EXPECT_NE(os::module_of(sleep), os::own_module());
    EXPECT_EQ(os::module_of(nullptr), nullptr);
}

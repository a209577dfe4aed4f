// The machine's own files, for a test to change one thing about them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "os/file.h"

namespace testing_support {

class ForwardingFileSystem : public os::FileSystem {
public:
    std::unique_ptr<os::File> open(const std::string& path, os::OpenMode mode) override {
        return own_.open(path, mode);
    }
    bool exists(const std::string& path) override { return own_.exists(path); }
    void remove(const std::string& path) override { own_.remove(path); }
    void rename(const std::string& from, const std::string& to) override { own_.rename(from, to); }
    void replace(const std::string& from, const std::string& to) override { own_.replace(from, to); }
    void sync_folder_of(const std::string& path) override { own_.sync_folder_of(path); }
    std::string resolved(const std::string& path) override { return own_.resolved(path); }
    void copy_access(const std::string& from, const std::string& to) override { own_.copy_access(from, to); }
    std::vector<std::string> longer_names(const std::string& path) override { return own_.longer_names(path); }
    std::unique_ptr<os::KeptLock> keep_lock(const std::string& path) override { return own_.keep_lock(path); }

private:
    os::FileSystem& own_ = os::native_file_system();
};

}  // namespace testing_support

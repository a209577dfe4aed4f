#include "tools/file_copies.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "afx/ole_date_time.h"
#include "jet/tables/database.h"
#include "os/file.h"
#include "tools/errors.h"
#include "tools/open_file.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kCopiedBytes = 1u << 20;
constexpr char kUnfinished[] = "-unfinished";

bool exists(const std::string& path) { return os::file_system().exists(path); }

// The file without a journal, locked.
std::unique_ptr<os::File> lock_whole_file(const std::string& path) {
    write_journal_back(path);
    auto file = open_system_file(path, os::OpenMode::kExclusive);
    if (exists(os::file_system().resolved(path) + "-journal")) throw CommandError(in_use_text(path));
    return file;
}

// Gives the bytes in shares to `visit`, until it returns false.
template <class Visit>
void for_each_share(os::File& file, Visit&& visit) {
    std::vector<std::uint8_t> buffer(kCopiedBytes);
    for (std::uint64_t at = 0;;) {
        const std::size_t got = file.read(at, buffer);
        if (got == 0 || !visit(at, std::span<const std::uint8_t>(buffer).first(got))) return;
        at += got;
    }
}

bool are_equal(os::File& a, os::File& b) {
    if (a.size() != b.size()) return false;
    bool equal = true;
    std::vector<std::uint8_t> other(kCopiedBytes);
    for_each_share(a, [&](std::uint64_t at, std::span<const std::uint8_t> bytes) {
        const std::size_t got = b.read(at, std::span(other).first(bytes.size()));
        return equal = std::equal(bytes.begin(), bytes.end(), other.begin(), other.begin() + static_cast<long>(got));
    });
    return equal;
}

void take_attributes(const std::string& from, const std::string& to) {
    os::file_system().copy_access(from, to);
    fs::last_write_time(system_path(to), fs::last_write_time(system_path(from)));
}

void remove_unfinished(const std::string& path) {
    try {
        os::file_system().remove(path);
    } catch (const os::FileError&) {
        // It is in nobody's way: the next copy of that name removes it.
    }
}

// Open to its owner alone until it has the mode of the file. What an interrupted copy has left is made anew.
std::unique_ptr<os::File> create_unfinished(const std::string& path) {
    if (exists(path)) os::file_system().remove(path);
    return open_system_file(path, os::OpenMode::kCreateSide);
}

// Writes `from` to a new file of the name, with the attributes of the file at `like`, compares both, and leaves it on
// the disk.
void write_unfinished(os::File& from, const std::string& like, const std::string& unfinished) {
    std::unique_ptr<os::File> file = create_unfinished(unfinished);
    try {
        for_each_share(from, [&](std::uint64_t at, std::span<const std::uint8_t> bytes) {
            file->write(at, bytes);
            return true;
        });
        file->sync();
        if (!are_equal(from, *file)) throw CommandError(unfinished + " is not what was written to it");
        file.reset();
        take_attributes(like, unfinished);
    } catch (...) {
        file.reset();
        remove_unfinished(unfinished);
        throw;
    }
}

// Gives the file its name, unless the name is in use; whether it did.
bool publish(const std::string& unfinished, const std::string& name) {
    try {
        os::file_system().rename(unfinished, name);
        return true;
    } catch (const os::FileError& error) {
        if (error.fault() == os::FileFault::kExists) return false;
        throw;
    }
}

// "sldb-2026-03-05.mdb", "sldb-2026-03-05-2.mdb" and so on.
struct CopyName {
    explicit CopyName(const fs::path& path)
        : folder(path.parent_path()), stem(path_text(path.stem()) + "-"), ending(path_text(path.extension())) {}

    std::string dated(int n) const {
        const std::string date(COleDateTime::GetCurrentTime().Format("%Y-%m-%d").GetString());
        return path_text(folder / system_path(stem + date + (n == 1 ? "" : "-" + std::to_string(n)) + ending));
    }
    bool is_one(const std::string& name) const {
        constexpr std::string_view kDate = "9999-99-99";
        if (!name.starts_with(stem) || !name.ends_with(ending)) return false;
        const std::string_view middle =
            std::string_view(name)
                .substr(stem.size())
                .substr(0, name.size() - std::min(name.size(), stem.size() + ending.size()));
        if (middle.size() < kDate.size()) return false;
        for (std::size_t i = 0; i < middle.size(); ++i) {
            const bool is_digit = middle[i] >= '0' && middle[i] <= '9';
            const bool wants_digit = i < kDate.size() ? kDate[i] == '9' : i > kDate.size();
            if (wants_digit ? !is_digit : middle[i] != '-') return false;
        }
        return true;
    }

    fs::path folder;
    std::string stem;
    std::string ending;
};

std::string find_equal_copy(os::File& file, const CopyName& name) {
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(name.folder)) {
        if (entry.is_regular_file() && name.is_one(path_text(entry.path().filename()))) {
            found.push_back(path_text(entry.path()));
        }
    }
    std::sort(found.begin(), found.end());
    for (const std::string& copy : found) {
        try {
            if (are_equal(*os::file_system().open(copy, os::OpenMode::kReadOnly), file)) return copy;
        } catch (const os::FileError&) {
            // What cannot be read is no copy to rely on.
        }
    }
    return {};
}

}  // namespace

void write_journal_back(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    try {
        jet::Database::open(path, options)->close();
    } catch (const jet::Error& error) {
        if (is_in_use(error.number())) throw CommandError(in_use_text(path));
        throw;
    }
}

DatedCopy dated_copy(const std::string& path) {
    const std::unique_ptr<os::File> file = lock_whole_file(path);
    const CopyName name(system_path(path));
    if (const std::string equal = find_equal_copy(*file, name); !equal.empty()) return {equal, false};
    for (int n = 1;; ++n) {
        const std::string copy = name.dated(n);
        if (exists(copy)) continue;
        const std::string unfinished = copy + kUnfinished;
        write_unfinished(*file, path, unfinished);
        if (!publish(unfinished, copy)) {
            remove_unfinished(unfinished);
            continue;
        }
        os::file_system().sync_folder_of(copy);
        return {copy, true};
    }
}

void take_back(const std::string& copy, const std::string& path) {
    // The file that a link leads to, not the link.
    const std::string target = os::file_system().resolved(path);
    const std::string unfinished = target + kUnfinished;
    write_unfinished(*open_system_file(copy, os::OpenMode::kReadOnly), copy, unfinished);
    try {
        // A journal that stayed would be written into the file of old.
        replace_locked(unfinished, target, lock_whole_file(target));
    } catch (...) {
        remove_unfinished(unfinished);
        throw;
    }
    os::file_system().sync_folder_of(target);
}

void replace_locked(const std::string& draft, const std::string& path,
                    [[maybe_unused]] std::unique_ptr<os::File> locked) {
#ifdef _WIN32
    locked.reset();
#endif
    os::file_system().replace(draft, path);
}

void remove_closed(const std::string& path) {
    lock_whole_file(path);
    os::file_system().remove(path);
    os::file_system().sync_folder_of(path);
}

}  // namespace tools

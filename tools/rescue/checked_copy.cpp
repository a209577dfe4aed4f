#include "tools/rescue/checked_copy.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "jet/base/jet4.h"
#include "jet/pages/header.h"
#include "os/draft.h"
#include "os/file.h"
#include "tools/errors.h"
#include "tools/long_work.h"
#include "tools/open_file.h"
#include "tools/rescue/finding.h"

namespace tools {
namespace {

constexpr std::size_t kShareBytes = 64 * jet::jet4::kPageSize;

// What is copied.
struct Original {
    std::string path;
    std::uint64_t bytes = 0;
    std::size_t page_size = jet::jet4::kPageSize;
    // Gives `into` up to its size of bytes from `at`; returns how many.
    std::function<std::size_t(std::uint64_t at, jet::MutableByteSpan into)> read;

    LongWork work(const char* what) const { return {what, bytes / page_size}; }
};

void write_all(const Original& from, os::File& file) {
    LongWork work = from.work("pages copied");
    jet::ByteVector share(kShareBytes);
    for (std::uint64_t at = 0;;) {
        const std::size_t got = from.read(at, share);
        if (got == 0) break;
        file.write(at, jet::ByteSpan(share).first(got));
        work.step(got / from.page_size);
        at += got;
    }
    file.sync();
}

void compare_all(const Original& from, os::File& file, const std::string& path) {
    LongWork work = from.work("pages compared");
    jet::ByteVector share(kShareBytes);
    jet::ByteVector written(kShareBytes);
    for (std::uint64_t at = 0;;) {
        const std::size_t got = from.read(at, share);
        const std::size_t back = file.read(at, jet::MutableByteSpan(written).first(got == 0 ? 1 : got));
        if (back != got ||
            !std::equal(share.begin(), share.begin() + static_cast<std::ptrdiff_t>(got), written.begin())) {
            throw CommandError(path + " does not hold what was written to it; the disk cannot be relied on");
        }
        if (got == 0) return;
        work.step(got / from.page_size);
        at += got;
    }
}

std::string write_draft(const Original& from, const std::string& target) {
    os::FileSystem& files = os::file_system();
    const std::string draft = os::draft_name(target);
    try {
        const auto file = files.open(draft, os::OpenMode::kCreateSide);
        write_all(from, *file);
        compare_all(from, *file, draft);
        files.copy_access(from.path, draft);
    } catch (...) {
        remove_quietly(draft);
        throw;
    }
    return draft;
}

void require_sound(const std::string& draft, const std::string& original, const std::string& if_damaged) {
    CheckResult result;
    try {
        result = check_file(*open_to_read(draft), original);
    } catch (const jet::Error& error) {
        result = unreadable_file(original, error.what());
    }
    if (!result.is_sound()) throw CommandError(original + " is damaged" + if_damaged);
}

}  // namespace

void remove_quietly(const std::string& path) {
    try {
        if (os::file_system().exists(path)) os::file_system().remove(path);
    } catch (const os::FileError&) {
        // A draft is in nobody's way.
    }
}

std::string write_checked_draft(const PageSource& pages, const std::string& target, const std::string& if_damaged) {
    const auto read = [&](std::uint64_t at, jet::MutableByteSpan into) {
        const auto first = static_cast<jet::PageNumber>(at / pages.page_size());
        std::size_t got = 0;
        for (jet::PageNumber page = first; page < pages.page_count() && got + pages.page_size() <= into.size();
             ++page) {
            pages.read(page, into.subspan(got, pages.page_size()));
            got += pages.present(page);
        }
        if (pages.refused() > 0) throw CommandError("the disk does not give all of " + pages.path() + " back");
        return got;
    };
    const std::uint64_t bytes = std::uint64_t{pages.page_count()} * pages.page_size();
    const std::string draft = write_draft({pages.path(), bytes, pages.page_size(), read}, target);
    try {
        require_sound(draft, pages.path(), if_damaged);
    } catch (...) {
        remove_quietly(draft);
        throw;
    }
    return draft;
}

std::string write_plain_draft(const std::string& from, const std::string& target) {
    const auto file = os::file_system().open(from, os::OpenMode::kReadSide);
    jet::ByteVector head(jet::jet4::header::kMasked + jet::jet4::header::kMaskedBytes);
    head.resize(file->read(0, head));
    const std::size_t page_size = jet::kind_of_file(head).format->page_size;
    const auto read = [&](std::uint64_t at, jet::MutableByteSpan into) { return file->read(at, into); };
    return write_draft({from, file->size(), page_size, read}, target);
}

}  // namespace tools

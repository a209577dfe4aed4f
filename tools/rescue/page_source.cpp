#include "tools/rescue/page_source.h"

#include <algorithm>

#include "jet/base/jet4.h"
#include "jet/pages/journal.h"
#include "jet/pages/recovery.h"
#include "tools/errors.h"
#include "tools/open_file.h"

namespace tools {

using jet::PageNumber;

PageSource::PageSource(const std::string& path) : path_(os::file_system().resolved(path)) {
    os::FileSystem& files = os::file_system();
    try {
        file_ = files.open(path_, os::OpenMode::kReadOnly);
    } catch (const os::FileError& error) {
        if (error.fault() == os::FileFault::kLocked) throw CommandError(in_use_text(path_));
        throw;
    }
    size_ = file_->size();
    const std::uint64_t pages = (size_ + jet::jet4::kPageSize - 1) / jet::jet4::kPageSize;
    page_count_ = static_cast<PageNumber>(std::min<std::uint64_t>(pages, jet::jet4::kMaxPages));
    try {
        jet::Recovered recovered = jet::recover(files, *file_, path_, true);
        for (jet::Recovered::PageImage& image : recovered.images) {
            newer_[image.page_no] = std::move(image.bytes);
            page_count_ = std::max(page_count_, image.page_no + 1);
        }
    } catch (const jet::Error&) {
        // A journal that contradicts itself holds nothing to rely on.
    }
    has_foreign_journal_ = newer_.empty() && files.exists(jet::Journal::path_for(path_));
}

std::size_t PageSource::present(PageNumber page_no) const {
    if (newer_.contains(page_no)) return jet::jet4::kPageSize;
    const std::uint64_t begin = std::uint64_t{page_no} * jet::jet4::kPageSize;
    return begin >= size_ ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(size_ - begin, jet::jet4::kPageSize));
}

void PageSource::read(PageNumber page_no, jet::MutableByteSpan into) const {
    std::size_t got = 0;
    if (const auto newer = newer_.find(page_no); newer != newer_.end()) {
        std::copy(newer->second.begin(), newer->second.end(), into.begin());
        return;
    }
    try {
        got = file_->read(std::uint64_t{page_no} * jet::jet4::kPageSize, into.first(jet::jet4::kPageSize));
    } catch (const os::FileError&) {
        ++refused_;
    }
    std::fill(into.begin() + static_cast<std::ptrdiff_t>(got), into.end(), std::uint8_t{0});
}

jet::ByteVector PageSource::page(PageNumber page_no) const {
    jet::ByteVector bytes(jet::jet4::kPageSize);
    read(page_no, bytes);
    return bytes;
}

}  // namespace tools

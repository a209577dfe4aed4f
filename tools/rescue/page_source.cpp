#include "tools/rescue/page_source.h"

#include <algorithm>

#include "jet/base/jet4.h"
#include "jet/pages/journal.h"
#include "jet/pages/page_cipher.h"
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
    jet::ByteVector head(jet::jet4::header::kMasked + jet::jet4::header::kMaskedBytes);
    head.resize(file_->read(0, head));
    kind_ = jet::kind_of_file(head);
    // The header may be what is damaged: pages that are plain need no key.
    if (begins(jet::jet4::kGlobalMapPage, jet::jet4::kDataPage) ||
        begins(jet::jet4::kObjectsPage, jet::jet4::kTableDefPage)) {
        kind_.encryption_key = 0;
    }
    const std::uint64_t pages = (size_ + page_size() - 1) / page_size();
    page_count_ = static_cast<PageNumber>(std::min<std::uint64_t>(pages, jet::jet4::kMaxPages));
    try {
        jet::Recovered recovered = jet::recover(files, *file_, path_, true, kind_);
        const jet::PageCipher cipher(kind_.encryption_key);
        for (jet::Recovered::PageImage& image : recovered.images) {
            cipher.apply(image.page_no, image.bytes);
            newer_[image.page_no] = std::move(image.bytes);
            page_count_ = std::max(page_count_, image.page_no + 1);
        }
    } catch (const jet::Error&) {
        // A journal that contradicts itself holds nothing to rely on.
    }
    has_foreign_journal_ = newer_.empty() && files.exists(jet::Journal::path_for(path_));
}

bool PageSource::begins(PageNumber page_no, std::uint8_t kind) const {
    std::uint8_t bytes[2] = {};
    return file_->read(std::uint64_t{page_no} * page_size(), bytes) == sizeof bytes && bytes[0] == kind &&
           bytes[jet::jet4::kPageKindMark] == 1;
}

std::size_t PageSource::present(PageNumber page_no) const {
    if (newer_.contains(page_no)) return page_size();
    const std::uint64_t begin = std::uint64_t{page_no} * page_size();
    return begin >= size_ ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(size_ - begin, page_size()));
}

void PageSource::read(PageNumber page_no, jet::MutableByteSpan into) const {
    std::size_t got = 0;
    if (const auto newer = newer_.find(page_no); newer != newer_.end()) {
        std::copy(newer->second.begin(), newer->second.end(), into.begin());
        return;
    }
    try {
        got = file_->read(std::uint64_t{page_no} * page_size(), into.first(page_size()));
    } catch (const os::FileError&) {
        ++refused_;
    }
    std::fill(into.begin() + static_cast<std::ptrdiff_t>(got), into.end(), std::uint8_t{0});
}

jet::ByteVector PageSource::page(PageNumber page_no) const {
    jet::ByteVector bytes(page_size());
    read(page_no, bytes);
    return bytes;
}

}  // namespace tools

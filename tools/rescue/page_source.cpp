#include "tools/rescue/page_source.h"

#include <algorithm>

#include "jet/base/code_page.h"
#include "jet/base/jet4.h"
#include "jet/pages/journal.h"
#include "jet/pages/page_cipher.h"
#include "jet/pages/recovery.h"
#include "tools/errors.h"
#include "tools/open_file.h"
#include "tools/rescue/found_page.h"

namespace tools {

using jet::PageNumber;

PageSource::PageSource(const std::string& path, Bytes bytes) : path_(os::file_system().resolved(path)), bytes_(bytes) {
    os::FileSystem& files = os::file_system();
    file_ = open_system_file(path_, os::OpenMode::kReadOnly);
    size_ = file_->size();
    jet::ByteVector head(jet::jet4::header::kMasked + jet::jet4::header::kMaskedBytes);
    head.resize(file_->read(0, head));
    kind_ = jet::kind_of_file(head);
    // The header may be what is damaged: pages that are plain need no key.
    if (begins(jet::jet4::kGlobalMapPage, jet::jet4::kDataPage) ||
        begins(jet::jet4::kObjectsPage, jet::jet4::kTableDefPage)) {
        kind_.encryption_key = 0;
    }
    if (bytes_ == Bytes::kDecoded) {
        if (const jet::Format* const format = format_of_pages()) kind_ = {format, 0};
    }
    const std::uint64_t pages = (size_ + page_size() - 1) / page_size();
    page_count_ = static_cast<PageNumber>(std::min<std::uint64_t>(pages, jet::jet4::kMaxPages));
    try {
        jet::Recovered recovered = jet::recover(files, *file_, path_, true, kind_);
        const jet::PageCipher cipher(bytes_ == Bytes::kDecoded ? 0 : kind_.encryption_key);
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

// The version whose pages the file is made of, as far as that shows on pages that are plain; null where it does not.
const jet::Format* PageSource::format_of_pages() const {
    constexpr std::uint64_t kMostLooks = 4096;
    constexpr std::size_t kBlock = jet::kJet4.page_size;
    const std::uint64_t blocks = size_ / kBlock;
    const std::uint64_t stride = blocks / kMostLooks + 1;
    std::size_t whole = 0;
    std::size_t halves = 0;
    jet::ByteVector block(kBlock);
    for (std::uint64_t at = 0; at < blocks; at += stride) {
        try {
            if (file_->read(at * kBlock, block) != kBlock) continue;
        } catch (const os::FileError&) {
            continue;
        }
        const jet::ByteSpan bytes(block);
        whole += is_sound_page(bytes) ? 1 : 0;
        halves += is_sound_page(bytes.first(kBlock / 2)) ? 1 : 0;
        halves += is_sound_page(bytes.subspan(kBlock / 2)) ? 1 : 0;
    }
    if (whole == halves) return nullptr;
    return whole > halves ? &jet::kJet4 : &jet::kJet3;
}

std::uint16_t PageSource::text_code_page() const {
    if (!kind_.format->is_jet3()) return 0;
    if (!code_page_) {
        try {
            code_page_ = jet::parse_header(page(jet::jet4::kHeaderPage), path_).text_code_page();
        } catch (const jet::Error& error) {
            if (error.number() == jet::errors::kOldFormat) throw;
        }
        if (code_page_.value_or(0) == 0) code_page_ = jet::kWesternCodePage;
    }
    return *code_page_;
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
    if (bytes_ == Bytes::kDecoded) jet::PageCipher(kind_.encryption_key).decode(page_no, into.first(got));
    std::fill(into.begin() + static_cast<std::ptrdiff_t>(got), into.end(), std::uint8_t{0});
}

jet::ByteVector PageSource::page(PageNumber page_no) const {
    jet::ByteVector bytes(page_size());
    read(page_no, bytes);
    return bytes;
}

}  // namespace tools

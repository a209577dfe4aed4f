// The pages of a file as they lie there. Nothing is believed of them but where they begin: of a damaged file every
// structure may be wrong. A page that the disk refuses reads as zeros, and so does the missing part of a last page that
// is cut.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/header.h"
#include "os/file.h"

namespace tools {

class PageSource {
public:
    // Locks the file against writers. What a journal that belongs to the file holds is read in the place of the pages.
    // CommandError when the file is in use; os::FileError.
    explicit PageSource(const std::string& path);

    const std::string& path() const { return path_; }
    // A page of which only a part is there counts.
    jet::PageNumber page_count() const { return page_count_; }
    // How many bytes of the page are there: a whole page, but for a last one that is cut.
    std::size_t present(jet::PageNumber page_no) const;
    std::size_t page_size() const { return kind_.format->page_size; }
    // Pages are given as they lie there, encoded ones too.
    bool is_encoded() const { return kind_.encryption_key != 0; }
    // Writes the page to `into`, a whole page.
    void read(jet::PageNumber page_no, jet::MutableByteSpan into) const;
    jet::ByteVector page(jet::PageNumber page_no) const;

    // Pages that the disk would not give.
    std::size_t refused() const { return refused_; }
    bool has_journal_pages() const { return !newer_.empty(); }
    // A journal lies beside the file and was not read: it is not the file's, or the head that would tell is damaged.
    bool has_foreign_journal() const { return has_foreign_journal_; }

private:
    bool begins(jet::PageNumber page_no, std::uint8_t kind) const;

    std::string path_;
    std::unique_ptr<os::File> file_;
    jet::FileKind kind_;
    std::uint64_t size_ = 0;
    jet::PageNumber page_count_ = 0;
    std::map<jet::PageNumber, jet::ByteVector> newer_;
    mutable std::size_t refused_ = 0;
    bool has_foreign_journal_ = false;
};

}  // namespace tools

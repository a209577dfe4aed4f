// The pages of a file as they lie there. Nothing is believed of them but where they begin: of a damaged file every
// structure may be wrong. A page that the disk refuses reads as zeros, and so does the missing part of a last page that
// is cut.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/header.h"
#include "os/file.h"

namespace tools {

class PageSource {
public:
    enum class Bytes {
        kAsStored,  // encoded pages as they lie there
        kDecoded,   // and the version of the format by the pages, where the header may be damaged
    };
    // Locks the file against writers. What a journal that belongs to the file holds is read in the place of the pages.
    // CommandError when the file is in use; os::FileError.
    explicit PageSource(const std::string& path, Bytes bytes = Bytes::kAsStored);

    const std::string& path() const { return path_; }
    // A page of which only a part is there counts.
    jet::PageNumber page_count() const { return page_count_; }
    // How many bytes of the page are there: a whole page, but for a last one that is cut.
    std::size_t present(jet::PageNumber page_no) const;
    const jet::Format& format() const { return *kind_.format; }
    std::size_t page_size() const { return kind_.format->page_size; }
    // Of the pages; 0: they are plain.
    std::uint32_t encryption_key() const { return kind_.encryption_key; }
    // Of texts, 0 in Jet 4. 1252 where the header of a Jet 3 file cannot be read; 3041 for one that is not known.
    std::uint16_t text_code_page() const;
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
    const jet::Format* format_of_pages() const;

    std::string path_;
    Bytes bytes_;
    std::unique_ptr<os::File> file_;
    jet::FileKind kind_;
    std::uint64_t size_ = 0;
    jet::PageNumber page_count_ = 0;
    std::map<jet::PageNumber, jet::ByteVector> newer_;
    mutable std::size_t refused_ = 0;
    mutable std::optional<std::uint16_t> code_page_;
    bool has_foreign_journal_ = false;
};

}  // namespace tools

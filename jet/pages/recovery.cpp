#include "jet/pages/recovery.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "jet/base/error.h"
#include "jet/base/format.h"
#include "jet/pages/checksum.h"
#include "jet/pages/journal.h"
#include "jet/pages/journal_reader.h"
#include "jet/pages/page_cipher.h"
#include "os/draft.h"

namespace jet {
namespace {

ByteVector read_page(os::File& file, PageNumber page_no, const FileKind& kind) {
    const std::size_t page_size = kind.format->page_size;
    ByteVector page(page_size);
    if (file.read(std::uint64_t{page_no} * page_size, page) != page_size) {
        corrupt(page_no, "the file ends inside the page");
    }
    PageCipher(kind.encryption_key).decode(page_no, page);
    return page;
}

bool is_bound_to(const JournalContent& content, os::File& database, const FileKind& kind) {
    if (content.page_size != kind.format->page_size) return false;
    const ByteVector objects = read_page(database, jet4::kObjectsPage, kind);
    const std::uint64_t counter = load_u64(objects, kind.format->change_counter);
    return content.binding.identity == file_identity(read_page(database, jet4::kHeaderPage, kind), objects) &&
           (counter == content.binding.base_counter || counter == content.binding.next_counter);
}

// Every page by which the file is to grow is in the journal, because a commit holds the pages it has added.
void check_content(const JournalContent& content, std::uint32_t page_count) {
    if (!content.is_sound) corrupt(0, "the journal contradicts itself");
    if (content.page_count > jet4::kMaxPages) corrupt(0, "the journal names more pages than a file may have");
    if (content.page_count <= page_count) return;
    std::uint32_t added = 0;
    for (std::size_t i = 0; i < content.changes.size(); i += content.of_page(i).size()) {
        if (content.changes[i].page_no >= page_count) ++added;
    }
    if (added < content.page_count - page_count) corrupt(0, "the journal lacks pages that the file is to grow by");
}

// Brings each page to its state after the journal: in the file, or with `images` in memory only.
void replay(os::File& journal, const JournalContent& content, os::File& database, const FileKind& kind,
            std::vector<Recovered::PageImage>* images) {
    const PageCipher cipher(kind.encryption_key);
    for (std::size_t i = 0; i < content.changes.size();) {
        const auto changes = content.of_page(i);
        const PageNumber page_no = changes.front().page_no;
        ByteVector page = read_journal_page(journal, changes, content.page_size);
        if (images != nullptr) {
            images->push_back({page_no, std::move(page)});
        } else {
            cipher.apply(page_no, page);
            database.write(std::uint64_t{page_no} * content.page_size, page);
        }
        i += changes.size();
    }
}

void set_aside(os::FileSystem& files, const std::string& journal_path) {
    for (int n = 1;; ++n) {
        const std::string aside = journal_path + "-set-aside" + (n > 1 ? "-" + std::to_string(n) : "");
        try {
            files.rename(journal_path, aside);
        } catch (const os::FileError& error) {
            if (error.fault() == os::FileFault::kExists) continue;
            throw;
        }
        return files.sync_folder_of(aside);
    }
}

// Null when there is no journal; sets `is_link` when something else has its name.
std::unique_ptr<os::File> open_journal(os::FileSystem& files, const std::string& path, bool read_only, bool& is_link) {
    try {
        return files.open(path, read_only ? os::OpenMode::kReadSide : os::OpenMode::kOpenSide);
    } catch (const os::FileError& error) {
        is_link = error.fault() == os::FileFault::kLink;
        if (is_link || error.fault() == os::FileFault::kNotFound) return nullptr;
        throw;
    }
}

}  // namespace

std::uint64_t file_identity(ByteSpan header_page, ByteSpan objects_page) {
    const Format& format = format_of(header_page);
    std::uint64_t sum = checksum64(header_page.first(jet4::header::kMasked), 0);
    sum = checksum64(slice(header_page, format.header.identity, format.header.identity_bytes), sum);
    sum = checksum64(slice(header_page, format.header.commit_words, jet4::header::kCommitWordBytes), sum);
    return format.file_identity == 0 ? sum : checksum64(slice(objects_page, format.file_identity, 8), sum);
}

Recovered recover(os::FileSystem& files, os::File& database, const std::string& path, bool read_only,
                  const FileKind& kind) {
    Recovered result;
    result.page_count =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(database.size() / kind.format->page_size, jet4::kMaxPages));
    const std::string journal_path = Journal::path_for(path);
    bool is_link = false;
    std::unique_ptr<os::File> journal = open_journal(files, journal_path, read_only, is_link);
    // Drafts left by a host that was killed while it removed its journal.
    if (!read_only) os::clear_drafts(journal_path, files);
    if (!journal && !is_link) return result;
    if (journal && journal->size() == 0) {
        journal.reset();
        if (!read_only) remove_journal_file(files, journal_path);
        return result;
    }
    JournalContent content;
    if (is_link || result.page_count <= jet4::kObjectsPage || !read_journal(*journal, content) ||
        !is_bound_to(content, database, kind)) {
        journal.reset();
        if (!read_only) set_aside(files, journal_path);
        return result;
    }
    check_content(content, result.page_count);
    if (content.page_count > 0) result.page_count = content.page_count;
    replay(*journal, content, database, kind, read_only ? &result.images : nullptr);
    if (read_only) return result;
    if (content.page_count > 0) database.truncate(std::uint64_t{result.page_count} * content.page_size);
    database.sync();
    journal.reset();
    remove_journal_file(files, journal_path);
    return result;
}

}  // namespace jet

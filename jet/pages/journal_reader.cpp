#include "jet/pages/journal_reader.h"

#include <algorithm>
#include <tuple>

#include "jet/base/error.h"
#include "jet/base/jet4.h"

namespace jet {
namespace {

using Change = JournalContent::Change;

// Appends the changes of a commit whose body starts at `at`. False when the body is not a list of records.
bool list_changes(const journal::Header& header, std::uint32_t pages, ByteSpan body, std::uint64_t at,
                  std::vector<Change>& list) {
    if (header.kind == journal::Kind::kPages) {
        for (std::uint32_t i = 0; i < pages; ++i) {
            const std::uint64_t image = at + 4 * std::uint64_t{pages} + std::uint64_t{i} * header.page_size;
            list.push_back({load_u32(body, std::size_t{4} * i), 0, image});
        }
        return true;
    }
    std::size_t next = 0;
    for (std::uint32_t i = 0; i < pages; ++i) {
        journal::Record record;
        if (!journal::load_record(body, next, record, header.page_size)) return false;
        list.push_back({record.page_no, static_cast<std::uint32_t>(record.bytes), at + record.at});
    }
    return next == body.size();
}

// Sorts the changes; drops those superseded by a later whole image, and pages beyond the end of the file. False when a
// page has no whole image.
bool arrange(std::vector<Change>& changes, std::uint32_t page_count) {
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return std::tie(a.page_no, a.at) < std::tie(b.page_no, b.at); });
    std::size_t kept = 0;
    bool is_sound = true;
    for (std::size_t i = 0; i < changes.size();) {
        std::size_t end = i;
        std::size_t last_whole = changes.size();
        for (; end < changes.size() && changes[end].page_no == changes[i].page_no; ++end) {
            if (changes[end].range_bytes == 0) last_whole = end;
        }
        if (changes[i].page_no < page_count) {
            is_sound = is_sound && last_whole < end;
            for (std::size_t k = last_whole; k < end; ++k) changes[kept++] = changes[k];
        }
        i = end;
    }
    changes.resize(kept);
    return is_sound;
}

}  // namespace

std::span<const Change> JournalContent::of_page(std::size_t first) const {
    std::size_t end = first;
    while (end < changes.size() && changes[end].page_no == changes[first].page_no) ++end;
    return std::span(changes).subspan(first, end - first);
}

bool read_journal(os::File& file, JournalContent& content) {
    content = {};
    ByteVector bytes(journal::kHeaderBytes);
    bytes.resize(file.read(0, bytes));
    journal::Header header;
    if (!journal::load_header(bytes, header)) return false;
    content.binding = header.binding;
    content.page_size = header.page_size;

    const std::uint64_t size = file.size();
    std::uint64_t at = journal::kHeaderBytes;
    std::uint64_t checksum = header.checksum;
    ByteVector body;
    while (at + journal::kCommitHeaderBytes <= size) {
        std::uint8_t head[journal::kCommitHeaderBytes];
        journal::CommitHeader commit;
        if (file.read(at, head) != sizeof head) break;
        if (!journal::load_commit_header(header.kind, head, commit, header.page_size)) break;
        at += sizeof head;
        if (commit.body_bytes > size - at) break;
        body.resize(static_cast<std::size_t>(commit.body_bytes));
        if (file.read(at, body) != body.size()) break;
        checksum = journal::commit_checksum(head, body, checksum);
        if (checksum != commit.checksum) break;
        if (!list_changes(header, commit.pages, body, at, content.changes)) content.is_sound = false;
        content.page_count = commit.page_count;
        at += body.size();
    }
    if (!arrange(content.changes, content.page_count)) content.is_sound = false;
    return true;
}

ByteVector read_journal_page(os::File& file, std::span<const Change> changes, std::size_t page_size) {
    ByteVector page(page_size);
    ByteVector ranges;
    for (const Change& change : changes) {
        ranges.resize(change.range_bytes);
        ByteVector& into = change.range_bytes == 0 ? page : ranges;
        if (file.read(change.at, into) != into.size()) corrupt(change.page_no, "the journal ends inside the page");
        if (!journal::apply_ranges(ranges, page)) corrupt(change.page_no, "the journal changes bytes beyond the page");
    }
    return page;
}

}  // namespace jet

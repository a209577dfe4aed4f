#include "fuzz/mutator.h"

#include <algorithm>
#include <random>

#include "fuzz/base_files.h"
#include "fuzz/page_fields.h"
#include "jet/base/rc4.h"
#include "jet/pages/header.h"
#include "jet/pages/journal.h"
#include "jet/tables/database.h"
#include "tests/jet/exercise.h"
#include "tests/support/fault_file_system.h"

namespace kvdb_fuzz {

using namespace jet;

namespace {

constexpr char kPath[] = "mutated.mdb";

class Chance {
public:
    explicit Chance(std::uint64_t seed) : engine_(seed * 0x9E3779B97F4A7C15 + 1) {}
    std::uint32_t below(std::size_t bound) { return static_cast<std::uint32_t>(engine_() % bound); }
    bool one_in(std::size_t n) { return below(n) == 0; }
    std::uint32_t bits() { return static_cast<std::uint32_t>(engine_()); }

private:
    std::mt19937_64 engine_;
};

// A plausible number for a field of `bytes` bytes whose value is `now`.
std::uint32_t meaningful(Chance& chance, const Field& field, std::uint32_t now, std::uint32_t page_count) {
    const std::uint32_t page = chance.below(page_count);
    switch (chance.below(field.meaning == Meaning::kNumber ? 5 : 9)) {
        case 0: return now + (chance.one_in(2) ? 1 : -1u);
        case 1: return now ^ 1u << chance.below(8 * field.bytes);
        case 2: {
            constexpr std::uint32_t kValues[] = {0,      1,      2,          5,          8,          0x20,
                                                 0x40,   0x7F,   0x80,       0xFF,       0x100,      0x0FFF,
                                                 0x1000, 0x1FFF, 0x2000,     0x4000,     0x7FFF,     0x8000,
                                                 0xC000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};
            return kValues[chance.below(std::size(kValues))];
        }
        case 3: return chance.bits();
        case 4: return chance.below(300);
        case 5: {
            const std::uint32_t edges[] = {page_count, page_count - 1, page_count + 1, 524287, 524288, 0xFFFFF8};
            const std::uint32_t edge = edges[chance.below(std::size(edges))];
            return field.meaning == Meaning::kRow ? edge << 8 | chance.below(3) : edge;
        }
        default: break;
    }
    if (field.meaning == Meaning::kRow) return page << 8 | chance.below(6);
    return page;
}

void store(MutableByteSpan page, const Field& field, std::uint32_t value) {
    for (std::size_t i = 0; i < field.bytes; ++i) {
        const std::size_t shift = field.big_endian ? field.bytes - 1 - i : i;
        page[field.at + i] = static_cast<std::uint8_t>(value >> (8 * shift));
    }
}

std::uint32_t load(ByteSpan page, const Field& field) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < field.bytes; ++i) {
        const std::size_t shift = field.big_endian ? field.bytes - 1 - i : i;
        value |= std::uint32_t{page[field.at + i]} << (8 * shift);
    }
    return value;
}

class Mutation {
public:
    // The pages of `file` are decoded.
    Mutation(ByteVector& file, const Format& format, Chance& chance, std::vector<std::string>& steps)
        : file_(file), format_(format), page_bytes_(format.page_size), chance_(chance), steps_(steps) {}

    void step() {
        if (file_.size() < page_bytes_) return;
        if (chance_.one_in(12)) {
            change_pages();
        } else {
            change_field();
        }
    }

private:
    std::uint32_t page_count() const { return static_cast<std::uint32_t>(file_.size() / page_bytes_); }
    MutableByteSpan page(PageNumber page_no) {
        return MutableByteSpan(file_).subspan(page_no * page_bytes_, page_bytes_);
    }

    void change_field() {
        // A random choice rarely hits the header and the first map, which matter to everything.
        const PageNumber page_no = chance_.one_in(16) ? chance_.below(2) : chance_.below(page_count());
        const MutableByteSpan bytes = page(page_no);
        if (page_no == 0) mask_header(bytes);
        const std::vector<Field> fields = fields_of(bytes, page_no);
        if (!fields.empty()) {
            const Field& field = fields[chance_.below(fields.size())];
            const std::uint32_t now = load(bytes, field);
            const std::uint32_t value = meaningful(chance_, field, now, page_count());
            store(bytes, field, value);
            steps_.push_back("page " + std::to_string(page_no) + ": " + field.name + " at " + std::to_string(field.at) +
                             ": " + std::to_string(now) + " becomes " + std::to_string(value));
        }
        if (page_no == 0) mask_header(bytes);
    }

    void mask_header(MutableByteSpan bytes) const {
        Rc4(jet4::header::kMaskKey).apply(bytes.subspan(jet4::header::kMasked, format_.header.masked_bytes));
    }

    void change_pages() {
        const PageNumber one = chance_.below(page_count());
        const PageNumber other = chance_.below(page_count());
        const std::string where = " page " + std::to_string(one);
        switch (chance_.below(6)) {
            case 0: {
                const ByteVector copy(page(other).begin(), page(other).end());
                store_bytes(page(one), 0, copy);
                steps_.push_back("copy page " + std::to_string(other) + " over" + where);
                break;
            }
            case 1:
                std::swap_ranges(page(one).begin(), page(one).end(), page(other).begin());
                steps_.push_back("exchange page " + std::to_string(other) + " and" + where);
                break;
            case 2:
                std::fill(page(one).begin(), page(one).end(), std::uint8_t{0});
                steps_.push_back("zero" + where);
                break;
            case 3:
                page(one)[0] = static_cast<std::uint8_t>(chance_.below(10));
                steps_.push_back("another kind for" + where);
                break;
            case 4:
                if (one < 6) break;
                file_.resize(one * page_bytes_ + (chance_.one_in(4) ? chance_.below(page_bytes_) : 0));
                steps_.push_back("cut off at" + where);
                break;
            default: file_.resize((page_count() + chance_.below(4)) * page_bytes_); steps_.push_back("grow the file");
        }
    }

    ByteVector& file_;
    const Format& format_;
    std::size_t page_bytes_;
    Chance& chance_;
    std::vector<std::string>& steps_;
};

// Lets the engine itself write the journal: a commit of the pages of `changed`, copied before it reaches the file. The
// pages of both are decoded; the engine encodes what it writes.
MutatedFiles with_journal(const ByteVector& base, const FileKind& kind, MutatedFiles changed, Chance& chance) {
    testing_support::FaultFileSystem disk;
    const testing_support::UseFileSystem use(disk);
    ByteVector encoded = base;
    code_pages(encoded, kind);
    disk.set_content(kPath, encoded);
    OpenOptions options;
    options.pager.sync_interval = std::chrono::hours(24);
    const auto database = Database::open(kPath, options);
    Pager& pager = database->pager();
    const auto commit_page = [&](PageNumber page_no, ByteSpan bytes) {
        while (pager.page_count() <= page_no) pager.extend();
        store_bytes(pager.modify(page_no).bytes(), 0, bytes);
    };
    {
        // The first commit is synced and written at once. The pager sets the counter.
        Transaction transaction(pager);
        pager.modify(jet4::kObjectsPage).bytes()[pager.format().change_counter] ^= 1;
        transaction.commit();
    }
    {
        Transaction transaction(pager);
        const std::size_t page_bytes = kind.format->page_size;
        const std::size_t pages = changed.database.size() / page_bytes;
        for (std::size_t i = 0; i < pages; ++i) {
            const ByteSpan bytes = ByteSpan(changed.database).subspan(i * page_bytes, page_bytes);
            const bool same =
                (i + 1) * page_bytes <= base.size() &&
                std::equal(bytes.begin(), bytes.end(), base.begin() + static_cast<std::ptrdiff_t>(i * page_bytes));
            if (!same) commit_page(static_cast<PageNumber>(i), bytes);
        }
        transaction.commit();
    }
    changed.database = disk.content(kPath);
    const std::string journal = jet::Journal::path_for(kPath);
    if (disk.exists(journal)) changed.journal = disk.content(journal);
    changed.steps.push_back("all of it in a journal");
    if (!changed.journal.empty() && chance.one_in(3)) {
        const std::uint32_t at = chance.below(std::min<std::size_t>(changed.journal.size(), 128));
        changed.journal[at] ^= static_cast<std::uint8_t>(1u << chance.below(8));
        changed.steps.push_back("a bit of the journal at " + std::to_string(at));
    } else if (!changed.journal.empty() && chance.one_in(4)) {
        changed.journal.resize(chance.below(changed.journal.size()));
        changed.steps.push_back("the journal cut off");
    }
    return changed;
}

}  // namespace

MutatedFiles mutate(std::uint64_t seed) {
    Chance chance(seed);
    // Half of them plain Jet 4 files, a quarter plain Jet 3 files.
    const std::uint32_t kinds[] = {0, 0, 0, 0, 1, 1, 2, 3};
    const std::vector<ByteVector>& bases = base_files(kTestedFiles[kinds[chance.below(8)]]);
    const std::uint32_t choice = chance.below(8);
    ByteVector base = bases[choice < 5 ? 0 : choice < 7 ? 1 : 2];
    const FileKind kind = kind_of_file(base);
    code_pages(base, kind);
    MutatedFiles files;
    files.database = base;
    Mutation mutation(files.database, *kind.format, chance, files.steps);
    for (std::uint32_t i = 1 + chance.below(chance.one_in(2) ? 2 : 6); i > 0; --i) mutation.step();
    if (chance.one_in(8)) return with_journal(base, kind, std::move(files), chance);
    code_pages(files.database, kind);
    return files;
}

}  // namespace kvdb_fuzz

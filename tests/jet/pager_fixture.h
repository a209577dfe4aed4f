// A small database file on a disk in memory, and pagers over it.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "jet/pages/journal.h"
#include "jet/pages/pager.h"
#include "jet/tables/database.h"
#include "tests/jet/engine_fixture.h"

namespace jet {

class PagerFixture : public ::testing::Test {
protected:
    static constexpr std::chrono::hours kNever{24};
    static constexpr std::uint32_t kPages = 16;  // of a new file

    PagerFixture() { disk().set_content(path_, build_empty_database(create_options())); }

    static CreateOptions create_options(double creation_date = 42329.5) {
        CreateOptions options;
        options.creation_date = creation_date;
        return options;
    }
    testing_support::FaultFileSystem& disk() { return memory_.disk; }
    std::string journal_path() const { return Journal::path_for(path_); }

    static PagerOptions rarely_synced() {
        PagerOptions options;
        options.sync_interval = kNever;
        return options;
    }
    static PagerOptions always_synced() {
        PagerOptions options;
        options.sync_interval = std::chrono::milliseconds(0);
        return options;
    }

    std::unique_ptr<Pager> open(const PagerOptions& options) const { return open(path_, options); }
    static std::unique_ptr<Pager> open(const std::string& path, const PagerOptions& options) {
        const os::OpenMode mode = options.read_only ? os::OpenMode::kReadOnly : os::OpenMode::kExclusive;
        return std::make_unique<Pager>(os::file_system(), os::file_system().open(path, mode), path, options);
    }

    // One transaction that leaves `mark` in byte kMarkAt of the page.
    static void put(Pager& pager, PageNumber page_no, std::uint8_t mark) {
        Transaction transaction(pager);
        pager.modify(page_no).bytes()[kMarkAt] = mark;
        transaction.commit();
    }
    static std::uint8_t mark(Pager& pager, PageNumber page_no) { return pager.read(page_no).bytes()[kMarkAt]; }
    // In the .mdb itself.
    std::uint8_t stored_mark(PageNumber page_no) const {
        return memory_.disk.content(path_)[page_no * jet4::kPageSize + kMarkAt];
    }

    static constexpr std::size_t kMarkAt = 3000;
    MemoryDisk memory_;
    std::string path_ = "d/a.mdb";
};

}  // namespace jet

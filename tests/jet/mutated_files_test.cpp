// What mutated files have found.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

constexpr char kMutatedPath[] = "d/a.mdb";

// The header that counts is the one after the journal: it may ask for what the one before did not.
TEST(MutatedFile, header_from_a_journal_is_checked_like_any_other) {
    ByteVector database;
    ByteVector journal;
    {
        MemoryDisk memory;
        Database::create(kMutatedPath, {})->close();
        OpenOptions options;
        options.pager.sync_interval = std::chrono::hours(24);
        const auto open = Database::open(kMutatedPath, options);
        for (int i = 0; i < 2; ++i) {  // the first commit is written back at once
            Transaction transaction(open->pager());
            const MutablePage page = open->pager().modify(i == 0 ? jet4::kObjectsPage : jet4::kHeaderPage);
            if (i == 1) page.bytes()[jet4::header::kEncryptionKey] ^= 1;
            transaction.commit();
        }
        database = memory.disk.content(kMutatedPath);
        journal = memory.disk.content(std::string(kMutatedPath) + "-journal");
    }
    for (const bool read_only : {false, true}) {
        MemoryDisk memory;
        memory.disk.set_content(kMutatedPath, database);
        memory.disk.set_content(std::string(kMutatedPath) + "-journal", journal);
        OpenOptions options;
        options.read_only = read_only;
        EXPECT_EQ(errors::kDamaged, error_number([&] { Database::open(kMutatedPath, options); })) << read_only;
    }
}

}  // namespace
}  // namespace jet

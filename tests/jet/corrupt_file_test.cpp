// Files damaged at random: opened, read, checked, changed and closed. Whatever the damage, there is an engine
// error or none, soon, and no memory beyond what the file's size explains.
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>

#include "tests/jet/allocation_meter.h"
#include "tests/jet/damage.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/exercise.h"
#include "tests/support/figures.h"

namespace jet {
namespace {

constexpr char kDamagedPath[] = "d/damaged.mdb";
constexpr double kSecondsAllowed = 10;  // of the processor; sanitizers are slow

void count_one() { testing_support::count_tried(testing_support::Figure::kDamagedFiles); }

struct Tally {
    int refused = 0;
    int served = 0;
};

// Cases [first, first + count) of the damage to `good`: each is read, one in so many changed as well, which takes
// several times as long.
Tally damage_and_use(const ByteVector& good, std::uint32_t first, std::uint32_t count,
                     std::uint32_t changed_one_in = 1) {
    Tally tally;
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("case " + std::to_string(seed));
        Random random(seed);
        ByteVector file = good;
        for (std::uint32_t i = random.below(4) + 1; i > 0; --i) damage_once(file, random);
        MemoryDisk memory;
        memory.disk.set_content(kDamagedPath, file);
        count_one();
        reset_largest_allocation();
        const std::clock_t begin = std::clock();
        try {
            const auto count_in = [&tally](int error) {
                EXPECT_TRUE(error == 0 || (error >= 3000 && error < 4000)) << error;
                ++(error == 0 ? tally.served : tally.refused);
            };
            count_in(read_file(kDamagedPath));
            EXPECT_EQ(memory.disk.change_count(), 0u) << "reading only";
            if (seed % changed_one_in == 0) count_in(change_file(kDamagedPath));
        } catch (const std::exception& error) {
            ADD_FAILURE() << "not an engine error: " << error.what();
        }
        EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, kSecondsAllowed);
        EXPECT_LT(largest_allocation(), 4 * file.size() + (1u << 20));
        if (::testing::Test::HasFailure()) break;
    }
    return tally;
}

const ByteVector& rich_file() {
    static const ByteVector file = make_rich_file();
    return file;
}

class RichFileCorrupt : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(RichFileCorrupt, damage_gives_an_engine_error_or_none) {
    constexpr std::uint32_t kCases = 1000;
    const Tally tally = damage_and_use(rich_file(), GetParam() * kCases, kCases, 4);
    EXPECT_GT(tally.refused, 50);
    EXPECT_GT(tally.served, 100);
}

INSTANTIATE_TEST_SUITE_P(Part, RichFileCorrupt, ::testing::Range(0u, 10u));

TEST(FileCorrupt, file_without_damage_is_read_whole) {
    MemoryDisk memory;
    memory.disk.set_content(kDamagedPath, rich_file());
    EXPECT_EQ(read_file(kDamagedPath), 0);
    const auto database = Database::open(kDamagedPath, {});
    expect_sound(*database);
    EXPECT_GT(read_everything(*database), 40u * 11 + 300 * 2 + 3 * 50);
    change_a_little(*database);
    expect_sound(*database);
    EXPECT_EQ(database->table_names().size(), 4u);
    EXPECT_EQ(database->find_table(u"Made later")->def().row_count, 3u);
}

TEST(FileCorrupt, every_truncation_gives_an_engine_error_or_none) {
    const ByteVector& good = rich_file();
    for (std::size_t size = 0; size < good.size(); size += size < 5000 ? 97 : 1811) {
        MemoryDisk memory;
        memory.disk.set_content(kDamagedPath,
                                ByteVector(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        count_one();
        const int error = change_file(kDamagedPath);
        const bool refused = error == errors::kDamaged || error == errors::kNotADatabase;
        EXPECT_TRUE(refused || size % jet4::kPageSize == 0) << size << ": " << error;
        read_file(kDamagedPath);
    }
}

TEST(FileCorrupt, pages_of_zeros_and_ones_are_survived) {
    const ByteVector& good = rich_file();
    for (const int fill : {0x00, 0xFF}) {
        for (std::size_t at = 0; at < good.size(); at += jet4::kPageSize) {
            ByteVector file = good;
            std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at), jet4::kPageSize,
                        static_cast<std::uint8_t>(fill));
            MemoryDisk memory;
            memory.disk.set_content(kDamagedPath, file);
            count_one();
            read_file(kDamagedPath);
            change_file(kDamagedPath);
            EXPECT_TRUE(memory.disk.exists(kDamagedPath));
        }
    }
}

std::vector<ByteVector> sample_files(std::size_t largest) {
    std::vector<ByteVector> files;
    if (!std::filesystem::is_directory(KVDB_SAMPLES)) return files;
    for (const auto& entry : std::filesystem::directory_iterator(KVDB_SAMPLES)) {
        if (entry.path().extension() != ".mdb" || entry.file_size() > largest) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        ByteVector bytes(std::istreambuf_iterator<char>(in), {});
        if (load_u32(bytes, jet4::header::kVersion) == jet4::header::kVersionJet4) files.push_back(std::move(bytes));
    }
    return files;
}

TEST(FileCorrupt, damage_to_files_of_access_gives_an_engine_error_or_none) {
    const std::vector<ByteVector> files = sample_files(400000);
    if (files.empty()) GTEST_SKIP() << "no sample files";
    for (const ByteVector& file : files) {
        const Tally tally = damage_and_use(file, 1000000, 100);
        EXPECT_GT(tally.refused + tally.served, 0);
    }
}

TEST(FileCorruptSlow, much_damage_to_every_file) {
    damage_and_use(rich_file(), 2000000, 60000);
    for (const ByteVector& file : sample_files(4000000))
        damage_and_use(file, 3000000, file.size() > 1000000 ? 100 : 2000);
}

}  // namespace
}  // namespace jet

// Files damaged at random: opened, read, checked, changed and closed. Whatever the damage, there is an engine
// error or none, soon, and no memory beyond what the file's size explains.
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

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
    const FileKind kind = kind_of_file(good);
    Tally tally;
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("case " + std::to_string(seed));
        Random random(seed);
        ByteVector file = good;
        for (std::uint32_t i = random.below(4) + 1; i > 0; --i) damage_once(file, kind, random);
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

const ByteVector& rich_file(const TestedFile& file) {
    static std::map<std::string, ByteVector> files;
    ByteVector& known = files[file.name];
    if (known.empty()) known = make_rich_file(file);
    return known;
}

constexpr std::uint32_t kCasesOfPart = 1000;  // of an encoded file, one in so many

struct RichPart {
    TestedFile file;
    std::uint32_t number;
};
void PrintTo(const RichPart& part, std::ostream* out) { *out << part.file.name << part.number; }

std::vector<RichPart> rich_parts() {
    std::vector<RichPart> parts;
    constexpr std::uint32_t kParts[] = {10, 3, 1, 1};
    static_assert(std::size(kParts) == std::size(kTestedFiles));
    for (std::size_t i = 0; i < std::size(kParts); ++i) {
        for (std::uint32_t number = 0; number < kParts[i]; ++number) parts.push_back({kTestedFiles[i], number});
    }
    return parts;
}

class RichFileCorrupt : public ::testing::TestWithParam<RichPart> {};

TEST_P(RichFileCorrupt, damage_gives_an_engine_error_or_none) {
    const RichPart& part = GetParam();
    const std::uint32_t cases = kCasesOfPart / part.file.one_in();
    const Tally tally = damage_and_use(rich_file(part.file), part.number * cases, cases, 4);
    EXPECT_GT(tally.refused, static_cast<int>(cases / 20));
    EXPECT_GT(tally.served, static_cast<int>(cases / 10));
}

INSTANTIATE_TEST_SUITE_P(Part, RichFileCorrupt, ::testing::ValuesIn(rich_parts()), [](const auto& test) {
    return std::string(test.param.file.name) + "_" + std::to_string(test.param.number);
});

class FileCorrupt : public ::testing::TestWithParam<TestedFile> {};

INSTANTIATE_TEST_SUITE_P(Files, FileCorrupt, ::testing::ValuesIn(kTestedFiles), NameOfFile());

TEST_P(FileCorrupt, file_without_damage_is_read_whole) {
    MemoryDisk memory;
    memory.disk.set_content(kDamagedPath, rich_file(GetParam()));
    EXPECT_EQ(kind_of_file(rich_file(GetParam())).format, GetParam().kind.format);
    EXPECT_EQ(kind_of_file(rich_file(GetParam())).encryption_key, GetParam().kind.encryption_key);
    EXPECT_EQ(read_file(kDamagedPath), 0);
    const auto database = Database::open(kDamagedPath, {});
    expect_sound(*database);
    EXPECT_GT(read_everything(*database), 40u * 11 + 300 * 2 + 3 * 50);
    change_a_little(*database);
    expect_sound(*database);
    EXPECT_EQ(database->table_names().size(), 4u);
    EXPECT_EQ(database->find_table(u"Made later")->def().row_count, 3u);
}

TEST_P(FileCorrupt, every_truncation_gives_an_engine_error_or_none) {
    const std::size_t page_bytes = GetParam().kind.format->page_size;
    const ByteVector& good = rich_file(GetParam());
    for (std::size_t size = 0; size < good.size(); size += size < 5000 ? 97 : 1811) {
        MemoryDisk memory;
        memory.disk.set_content(kDamagedPath,
                                ByteVector(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        count_one();
        const int error = change_file(kDamagedPath);
        const bool refused = error == errors::kDamaged || error == errors::kNotADatabase;
        EXPECT_TRUE(refused || size % page_bytes == 0) << size << ": " << error;
        read_file(kDamagedPath);
    }
}

TEST_P(FileCorrupt, pages_of_zeros_and_ones_are_survived) {
    const std::size_t page_bytes = GetParam().kind.format->page_size;
    const ByteVector& good = rich_file(GetParam());
    for (const int fill : {0x00, 0xFF}) {
        for (std::size_t at = 0; at < good.size(); at += page_bytes) {
            ByteVector file = good;
            std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at), page_bytes, static_cast<std::uint8_t>(fill));
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
        files.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return files;
}

TEST(SampleFileCorrupt, damage_to_files_of_access_gives_an_engine_error_or_none) {
    const std::vector<ByteVector> files = sample_files(400000);
    if (files.empty()) GTEST_SKIP() << "no sample files";
    for (const ByteVector& file : files) {
        const Tally tally = damage_and_use(file, 1000000, 100);
        EXPECT_GT(tally.refused + tally.served, 0);
    }
}

TEST(FileCorruptSlow, much_damage_to_every_file) {
    for (const TestedFile& file : kTestedFiles) damage_and_use(rich_file(file), 2000000, 30000 / file.one_in());
    for (const ByteVector& file : sample_files(4000000))
        damage_and_use(file, 3000000, file.size() > 1000000 ? 100 : 2000);
}

}  // namespace
}  // namespace jet

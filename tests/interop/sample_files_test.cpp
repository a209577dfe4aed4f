// Files written by Access and ADOX: the engine and the other readers read the same content.
#include <iostream>

#include "jet/check/check.h"
#include "tests/interop/interop_fixture.h"

namespace interop {
namespace {

class SampleFilesInterop : public InteropTest {};

TEST_F(SampleFilesInterop, jet4_files_read_as_the_other_readers_read_them) {
    const auto files = sample_files(false);
    if (files.empty()) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    std::map<std::string, std::size_t> faults;
    std::size_t values = 0;
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        const Comparison result = compare_with_other_readers(file);
        EXPECT_GE(result.tables, 4u);
        values += result.values;
        for (const auto& [name, count] : result.faults) faults[name] += count;
    }
    std::cout << values << " values compared\n";
    for (const auto& [name, count] : faults) std::cout << "  known fault, " << count << " times: " << name << "\n";
}

TEST_F(SampleFilesInterop, jet3_files_are_refused_as_an_older_format) {
    const auto files = sample_files(true);
    if (files.empty()) GTEST_SKIP() << "no sample files in " KVDB_SAMPLES;
    for (const std::string& file : files) {
        jet::OpenOptions options;
        options.read_only = true;
        EXPECT_EQ(error_number([&] { jet::Database::open(file, options); }), jet::errors::kOldFormat) << file;
        EXPECT_EQ(mdbtools_version_of(file), "JET3");
    }
}

}  // namespace
}  // namespace interop

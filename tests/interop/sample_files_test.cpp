// Files written by Access and ADOX: the engine and the other readers read the same content.
#include <iostream>

#include "jet/check/check.h"
#include "tests/interop/interop_fixture.h"

namespace interop {
namespace {

class SampleFilesInterop : public InteropTest {};

TEST_F(SampleFilesInterop, files_read_as_the_other_readers_read_them) {
    const auto files = sample_files();
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

}  // namespace
}  // namespace interop

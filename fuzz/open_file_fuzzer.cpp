// Opens a damaged file and reads or checks it; also changes one in 16, which takes ten times as long. The input is a
// whole file, or a list of changes to what a small sound file holds: position, 3 bytes, and the new byte. So many bytes
// as are left at its end, none to three, choose the kind of file.
#include <iterator>

#include "fuzz/base_files.h"
#include "fuzz/fuzz_target.h"
#include "jet/check/check.h"
#include "tests/jet/exercise.h"
#include "tests/support/fault_file_system.h"

namespace {

constexpr char kPath[] = "a.mdb";

jet::ByteVector file_of(jet::ByteSpan input) {
    if (input.size() >= jet::jet4::kPageSize) return {input.begin(), input.end()};
    const jet::TestedFile& kind = jet::kTestedFiles[input.size() % std::size(jet::kTestedFiles)];
    jet::ByteVector file = kvdb_fuzz::smallest_file(kind);
    jet::code_pages(file, kind.kind);
    for (std::size_t i = 0; i + 4 <= input.size(); i += 4) {
        file[(jet::load_u32(input, i) & 0xFFFFFF) % file.size()] = input[i + 3];
    }
    jet::code_pages(file, kind.kind);
    return file;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    testing_support::FaultFileSystem disk;
    disk.set_content(kPath, file_of({data, size}));
    const testing_support::UseFileSystem use(disk);
    const auto use_file = [](auto&& work) {
        jet::OpenOptions options;
        options.read_only = true;
        options.ignore_password = true;
        try {
            work(*jet::Database::open(kPath, options));
        } catch (const jet::Error&) {
        }
    };
    if (size / 4 % 2 == 0) {
        use_file([](jet::Database& database) { jet::read_rows(database); });
    } else {
        use_file([](jet::Database& database) { jet::check_structure(database); });
    }
    if (size / 4 % 16 == 15 || size >= jet::jet4::kPageSize) jet::change_file(kPath);
    return 0;
}

// A damaged file opened, read, checked and changed. The input is a whole file, or else a list of places in a
// sound file, 3 bytes each, with 1 byte to be put there.
#include "fuzz/fuzz_target.h"
#include "tests/jet/exercise.h"
#include "tests/support/fault_file_system.h"

namespace {

constexpr char kPath[] = "a.mdb";

jet::ByteVector file_of(jet::ByteSpan input) {
    if (input.size() >= jet::jet4::kPageSize) return {input.begin(), input.end()};
    static const jet::ByteVector sound = jet::make_rich_file();
    jet::ByteVector file = sound;
    for (std::size_t i = 0; i + 4 <= input.size(); i += 4) {
        file[(jet::load_u32(input, i) & 0xFFFFFF) % file.size()] = input[i + 3];
    }
    return file;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    testing_support::FaultFileSystem disk;
    disk.set_content(kPath, file_of({data, size}));
    const testing_support::UseFileSystem use(disk);
    jet::read_file(kPath);
    jet::change_file(kPath);
    return 0;
}

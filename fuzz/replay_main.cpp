// Runs a fuzzer's target over files and folders of inputs when no fuzzing engine is linked.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_target.h"

namespace {

int replay(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return 1;
}

}  // namespace

int main(int count, char** arguments) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        if (!std::filesystem::is_directory(arguments[i])) {
            replayed += replay(arguments[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) replayed += replay(entry.path());
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}

// Files damaged by the format-aware mutator, used as hosts and tools do. The sanitizers and the driver's time limit
// detect failures; the mutator's own program lists the changes that it made.
#include "fuzz/mutator.h"

#include "fuzz/mutated_run.h"
#include "tests/soak/kind.h"

namespace soak {
namespace {

constexpr std::uint64_t kFilesPerCase = 50;

class Mutator final : public Kind {
public:
    const char* name() const override { return "mutator"; }
    Outcome run(Seed seed, const std::string& kept) override {
        Outcome outcome;
        for (; outcome.tried < kFilesPerCase; ++outcome.tried) {
            const std::uint64_t file = seed * kFilesPerCase + outcome.tried;
            const kvdb_fuzz::MutatedFiles files = kvdb_fuzz::mutate(file);
            try {
                kvdb_fuzz::use_files(files);
            } catch (const std::exception& error) {
                outcome.failure = "mutated file " + std::to_string(file) + ": " + error.what();
                keep_text(std::string(files.database.begin(), files.database.end()), "mutated.mdb", kept);
                if (files.journal.empty()) break;
                keep_text(std::string(files.journal.begin(), files.journal.end()), "mutated.mdb-journal", kept);
                break;
            }
        }
        return outcome;
    }
};

}  // namespace

std::unique_ptr<Kind> make_mutator() { return std::make_unique<Mutator>(); }

}  // namespace soak

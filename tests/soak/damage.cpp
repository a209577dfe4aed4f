// The engine opens, reads, checks and changes randomly damaged files: an engine error or a result, in little time, in
// memory in proportion to the file's size. The sanitizers and the driver's time limit check the rest.
#include "tests/jet/damage.h"

#include <ctime>

#include "tests/jet/exercise.h"
#include "tests/soak/kind.h"
#include "tests/soak/reference.h"

namespace soak {
namespace {

constexpr char kPath[] = "d/damaged.mdb";
constexpr double kSecondsAllowed = 10;  // CPU time; sanitizers are slow
constexpr std::uint32_t kFilesPerCase = 20;

class Damage final : public Kind {
public:
    const char* name() const override { return "damage"; }

    std::string prepare() override {
        for (const jet::TestedFile& file : jet::kTestedFiles) originals_.push_back(jet::make_rich_file(file));
        for (const jet::Format* const format : {&jet::kJet4, &jet::kJet3}) {
            for (const std::int32_t version : testing_support::kOldVersions) {
                originals_.push_back(old_studio(version, *format).main);
                originals_.push_back(old_studio(version, *format).invoice);
            }
        }
        return {};
    }

    Outcome run(Seed seed, const std::string& kept) override {
        Outcome outcome;
        jet::Random random(static_cast<std::uint32_t>(seed));
        for (; outcome.tried < kFilesPerCase && outcome.failure.empty(); ++outcome.tried) {
            const std::size_t rich = std::size(jet::kTestedFiles);
            jet::ByteVector file = originals_[random.below(random.below(2) == 0 ? rich : originals_.size())];
            const jet::FileKind kind = jet::kind_of_file(file);
            for (std::uint32_t i = random.below(4) + 1; i > 0; --i) jet::damage_once(file, kind, random);
            outcome.failure = use(file);
            if (outcome.failure.empty()) continue;
            outcome.failure = "file " + std::to_string(outcome.tried) + ": " + outcome.failure;
            keep_text(std::string(file.begin(), file.end()), "damaged.mdb", kept);
        }
        return outcome;
    }

private:
    static std::string use(const jet::ByteVector& file) {
        jet::MemoryDisk memory;
        memory.disk.set_content(kPath, file);
        const std::clock_t begin = std::clock();
        for (const auto work : {jet::read_file, jet::change_file}) {
            const int error = work(kPath);
            if (error != 0 && (error < 3000 || error >= 4000)) return "no engine error: " + std::to_string(error);
            if (work == jet::read_file && memory.disk.change_count() != 0) return "reading has changed the disk";
        }
        const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        return seconds < kSecondsAllowed ? std::string() : "took " + std::to_string(seconds) + " s";
    }

    std::vector<jet::ByteVector> originals_;
};

}  // namespace

std::unique_ptr<Kind> make_damage() { return std::make_unique<Damage>(); }

}  // namespace soak

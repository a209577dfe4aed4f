// Random operations on all gates against a model in memory, with closing and opening in between.
#include "tests/gates/model_studio.h"
#include "tests/soak/isolated.h"
#include "tests/soak/kind.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr std::uint64_t kModelSteps = 1500;

class Model final : public Kind {
public:
    const char* name() const override { return "model"; }
    Outcome run(Seed seed, const std::string& kept) override {
        return isolated([&] {
            Outcome outcome;
            const std::unique_ptr<ModelStudio> studio = ModelStudio::make();
            Random random(static_cast<std::uint32_t>(seed));
            for (; outcome.tried < kModelSteps && !checks_failed(); ++outcome.tried) studio->step(random);
            if (checks_failed()) outcome.failure = "at step " + std::to_string(outcome.tried) + ":";
            studio->expect_all_rows();
            studio->close(random);
            studio->expect_sound_files();
            if (checks_failed()) keep_files(studio->folder(), kept);
            studio->open(random);
            studio->expect_all_rows();
            studio->close(random);
            return outcome;
        });
    }
};

}  // namespace

std::unique_ptr<Kind> make_model() { return std::make_unique<Model>(); }

}  // namespace soak

// A kind whose every fifth case fails, in each way in which a case can fail, for the driver's own test. Runs only by
// name.
#include <chrono>
#include <cstdlib>
#include <thread>

#include "tests/soak/kind.h"

namespace soak {
namespace {

class Planted final : public Kind {
public:
    const char* name() const override { return "planted"; }
    Outcome run(Seed seed, const std::string& kept) override {
        switch (seed) {
            case 5: keep_text("found", "found.txt", kept); return {1, "found in the\nfifth case", 0};
            case 10: std::abort();
            case 15: std::this_thread::sleep_for(std::chrono::hours(1)); break;
            default: break;
        }
        return {2, "", 0};
    }
};

}  // namespace

std::unique_ptr<Kind> make_planted() { return std::make_unique<Planted>(); }

}  // namespace soak

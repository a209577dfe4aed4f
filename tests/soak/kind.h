// A kind of trial: what is done to the component, case by case, and whether its promises held.
//
// 1. A case depends on its seed alone, as far as the machine allows: kills depend on the clock.
// 2. A case leaves no files except those of a failure.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace soak {

using Seed = std::uint64_t;

struct Outcome {
    std::uint64_t tried = 0;  // kills, faults, files, ...: what the kind counts
    std::string failure;      // "": it held
    Seed next = 0;            // 0: the seed after this one
};

class Kind {
public:
    virtual ~Kind() = default;
    virtual const char* name() const = 0;
    // Why the machine cannot run it; "": it can. Called once, before the first case.
    virtual std::string prepare() { return {}; }
    // Files of a failure go to the folder `kept`, which is created then.
    virtual Outcome run(Seed seed, const std::string& kept) = 0;
};

// Every kind that this program runs.
std::vector<std::unique_ptr<Kind>> all_kinds();

// Failed checks of the tests' own code since the start of the case; "" when none.
std::string failed_checks();
inline bool checks_failed() { return !failed_checks().empty(); }

// Copies the databases and journals of `folder` to `kept`, and `log` beside them.
void keep_files(const std::string& folder, const std::string& kept);
void keep_text(const std::string& text, const std::string& name, const std::string& kept);

std::unique_ptr<Kind> make_kills();
std::unique_ptr<Kind> make_planted();
#ifdef _WIN32
std::unique_ptr<Kind> make_handles();
#else
std::unique_ptr<Kind> make_disk_faults();
std::unique_ptr<Kind> make_memory();
std::unique_ptr<Kind> make_power();
std::unique_ptr<Kind> make_damage();
std::unique_ptr<Kind> make_mutator();
std::unique_ptr<Kind> make_model();
std::unique_ptr<Kind> make_threads();
#endif

}  // namespace soak

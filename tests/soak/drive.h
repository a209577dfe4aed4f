// Divides the time over the kinds, runs their workers, and tells what came of it in one table.
//
// 1. A case that ends its worker, or does not come to an end, has failed; the kind goes on after it.
// 2. Each kind goes on where its last run stopped, in a file of its own beside the failures.
// 3. A kind that the machine cannot run stands in the table with the reason.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace soak {

struct Plan {
    double minutes = 5;
    std::vector<std::string> kinds;  // none: all but those that are run by name only
    std::uint64_t seed = 0;          // 0: where the last run stopped
    std::uint64_t cases = 0;         // of each kind; 0: until the time is over
    double patience = 0;             // seconds for one case; 0: each kind's own
    std::string tree;                // of the source
    std::string state_folder;        // build/soak
};

// How a kind's worker is started.
struct KindPlan {
    std::string name;  // in the table and on the command line
    std::string what;  // in the table, with the numbers before it
    std::string preset;
    std::string worker_kind;                 // what the worker calls it
    std::vector<std::string> launcher = {};  // of the tree, where it has a slash
    const char* program = "soak_worker";     // of the preset's folder; "." is the folder itself
    double weight = 1;                       // of the time
    double patience = 60;                    // seconds for one case
    bool only_by_name = false;
};
const std::vector<KindPlan>& kind_plans();

// Runs until the time is over or the user ends it. The program's exit code: 0 when nothing failed.
int drive(const Plan& plan);

}  // namespace soak

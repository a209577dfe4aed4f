// Divides the time over the kinds, runs their workers, and prints the results in one table.
//
// 1. A case that crashes its worker, or does not finish, has failed; the kind continues after it.
// 2. Each kind continues where its last run stopped, recorded in a file beside the failures.
// 3. A kind that the machine cannot run is listed in the table with the reason.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace soak {

struct Plan {
    double minutes = 5;
    std::vector<std::string> kinds;  // empty: all except those that run only by name
    std::uint64_t seed = 0;          // 0: where the last run stopped
    std::uint64_t cases = 0;         // per kind; 0: until the time is over
    double patience = 0;             // seconds per case; 0: each kind's own
    std::string tree;                // of the source
    std::string state_folder;        // build/soak
};

// How a kind's worker is started.
struct KindPlan {
    std::string name;  // in the table and on the command line
    std::string what;  // in the table, after the numbers
    std::string preset;
    std::string worker_kind;                 // the kind's name in the worker
    std::vector<std::string> launcher = {};  // relative to the tree if it contains a slash
    const char* program = "soak_worker";     // relative to the preset's folder; "." is the folder itself
    double weight = 1;                       // share of the time
    double patience = 60;                    // seconds per case
    bool only_by_name = false;
};
const std::vector<KindPlan>& kind_plans();

// Runs until the time is over or the user stops it. Returns the program's exit code: 0 when nothing failed.
int drive(const Plan& plan);

}  // namespace soak

#include "tests/soak/drive.h"

namespace soak {
namespace {

// The output of an emulated program arrives when it has exited or reached its time limit.
const std::vector<std::string> kWine = {"/usr/bin/env", "KVDB_WINE_LIMIT=150", "scripts/run_wine"};

}  // namespace

const std::vector<KindPlan>& kind_plans() {
    static const std::vector<KindPlan> plans = {
        {.name = "kills", .what = "hosts killed", .preset = "native", .worker_kind = "kills", .weight = 4},
        {.name = "faults", .what = "disk operations refused", .preset = "native", .worker_kind = "faults", .weight = 3},
        {.name = "memory",
         .what = "requests for memory refused",
         .preset = "native",
         .worker_kind = "memory",
         .weight = 3},
        {.name = "power", .what = "power cuts", .preset = "native", .worker_kind = "power", .weight = 4},
        {.name = "damage",
         .what = "damaged files",
         .preset = "native-asan",
         .worker_kind = "damage",
         .weight = 3,
         .patience = 240},
        {.name = "mutator",
         .what = "mutated files",
         .preset = "native-asan",
         .worker_kind = "mutator",
         .weight = 4,
         .patience = 240},
        {.name = "fuzzers",
         .what = "inputs of fuzzers",
         .preset = "native-fuzz",
         .worker_kind = "fuzzers",
         .launcher = {"tests/soak/run_fuzzers"},
         .program = "fuzz",
         .weight = 2},
        {.name = "model", .what = "steps beside a model", .preset = "native", .worker_kind = "model", .weight = 2},
        {.name = "threads", .what = "threads at one studio", .preset = "native", .worker_kind = "threads"},
        {.name = "sanitized",
         .what = "disk operations refused, sanitized",
         .preset = "native-asan",
         .worker_kind = "faults",
         .weight = 2,
         .patience = 240},
        {.name = "windows-kills",
         .what = "hosts killed on Windows",
         .preset = "win32",
         .worker_kind = "kills",
         .launcher = kWine,
         .program = "soak_worker.exe",
         .weight = 3,
         .patience = 240},
        {.name = "windows-handles",
         .what = "handles held on Windows",
         .preset = "win32",
         .worker_kind = "handles",
         .launcher = kWine,
         .program = "soak_worker.exe",
         .weight = 2,
         .patience = 240},
        {.name = "planted",
         .what = "planted failures",
         .preset = "native",
         .worker_kind = "planted",
         .only_by_name = true},
    };
    return plans;
}

}  // namespace soak

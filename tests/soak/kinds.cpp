#include "tests/soak/kind.h"

namespace soak {

std::vector<std::unique_ptr<Kind>> all_kinds() {
    std::vector<std::unique_ptr<Kind>> kinds;
    kinds.push_back(make_kills());
#ifdef _WIN32
    kinds.push_back(make_handles());
#else
    kinds.push_back(make_disk_faults());
    kinds.push_back(make_memory());
    kinds.push_back(make_power());
    kinds.push_back(make_damage());
    kinds.push_back(make_mutator());
    kinds.push_back(make_model());
    kinds.push_back(make_threads());
#endif
    kinds.push_back(make_planted());
    return kinds;
}

}  // namespace soak

#include "tools/damage.h"

#include <cstdio>

#include "afx/damage.h"
#include "tools/errors.h"

namespace tools {
namespace {

std::size_t places = 0;

void tell(const std::string& path, const jet::DamagedPlace& place) {
    ++places;
    std::fprintf(stderr, "kvdb: %s: %s\n", path.c_str(), place.what.c_str());
}

}  // namespace

jet::DamageListener damage_teller(const std::string& path) {
    return [path](const jet::DamagedPlace& place) { tell(path, place); };
}

void tell_damage_of_gates() {
    afx::set_damage_listener([](const std::string& path, const jet::DamagedPlace& place) { tell(path, place); });
}

void require_undamaged() {
    if (places == 0) return;
    throw CommandError("the file is damaged: " + std::to_string(places) + (places == 1 ? " place" : " places") +
                       " could not be read, and what was printed is not all; kvdb check tells more");
}

}  // namespace tools

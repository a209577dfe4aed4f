#include "tools/damage.h"

#include <cstdio>
#include <set>

#include "tools/errors.h"

namespace tools {
namespace {

std::size_t places = 0;

// A command that reads a table twice comes by the same place twice.
bool was_told(const std::string& sentence) {
    constexpr std::size_t kMost = 10000;
    static std::set<std::string> told;
    return told.size() < kMost ? !told.insert(sentence).second : told.contains(sentence);
}

void tell(const std::string& path, const jet::DamagedPlace& place) {
    if (was_told(path + '\0' + place.what)) return;
    ++places;
    std::fprintf(stderr, "kvdb: %s: %s\n", path.c_str(), place.what.c_str());
}

}  // namespace

jet::DamageListener damage_teller(const std::string& path) {
    return [path](const jet::DamagedPlace& place) { tell(path, place); };
}

std::size_t damaged_places() { return places; }

void require_undamaged() {
    if (places == 0) return;
    throw CommandError("the file is damaged: " + std::to_string(places) + (places == 1 ? " place" : " places") +
                       " could not be read, and what was given out is not all; kvdb check tells more");
}

}  // namespace tools

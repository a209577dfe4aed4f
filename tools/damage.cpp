#include "tools/damage.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <vector>

#include "jet/base/error.h"
#include "tools/errors.h"
#include "tools/names.h"
#include "tools/paths.h"

namespace tools {
namespace {

std::size_t places = 0;

// Files with a damaged place, in the order of the telling.
Names& damaged_files() {
    static Names paths;
    return paths;
}

// A command that reads a table twice comes by the same place twice.
bool was_told(const std::string& sentence) {
    constexpr std::size_t kMost = 10000;
    static std::set<std::string> told;
    return told.size() < kMost ? !told.insert(sentence).second : told.contains(sentence);
}

}  // namespace

bool is_damage(int error_number) {
    return error_number == jet::errors::kDamaged || error_number == jet::errors::kDiskError;
}

void tell_damage(const std::string& path, const std::string& what) {
    if (was_told(path + '\0' + what)) return;
    ++places;
    if (!has_damage(path)) damaged_files().push_back(path);
    std::fprintf(stderr, "kvdb: %s: %s\n", path.c_str(), what.c_str());
}

jet::DamageListener damage_teller(const std::string& path) {
    return [path](const jet::DamagedPlace& place) { tell_damage(path, place.what); };
}

std::size_t damaged_places() { return places; }

bool has_damage(const std::string& path) {
    const Names& paths = damaged_files();
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

void require_undamaged() {
    if (places == 0) return;
    const Names& paths = damaged_files();
    std::string files;
    for (const std::string& path : paths) files += (files.empty() ? "" : " and ") + path;
    throw CommandError(files + (paths.size() == 1 ? " is" : " are") + " damaged: " + std::to_string(places) +
                       (places == 1 ? " place" : " places") +
                       " could not be read, and what was given out is not all; " + help_for_damaged(paths.front()));
}

std::string help_for_damaged(const std::string& path) {
    const std::string file = typed_path(path);
    return "kvdb check " + file + " tells more, kvdb salvage " + file + " NEW.mdb saves what is left into a new file";
}

}  // namespace tools

#include "afx/damage.h"

#include <utility>

namespace afx {
namespace {

FileDamageListener& listener() {
    static FileDamageListener instance;
    return instance;
}

}  // namespace

void set_damage_listener(FileDamageListener wanted) { listener() = std::move(wanted); }

jet::DamageListener damage_listener_for(const std::string& path) {
    if (!listener()) return {};
    return [path, tell = listener()](const jet::DamagedPlace& place) { tell(path, place); };
}

}  // namespace afx

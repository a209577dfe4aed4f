#include "jet/storage/storage.h"

namespace jet {

bool Storage::passes_over(PageNumber page, const Error& error) {
    if (!on_damage_) return false;
    if (error.number() != errors::kDamaged && error.number() != errors::kDiskError) return false;
    if (named_damage_.emplace(page, error.what()).second) on_damage_({page, error.what()});
    return true;
}

}  // namespace jet

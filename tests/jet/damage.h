// Damage to a file's bytes, at random but knowing where its structures are.
#pragma once

#include "jet/base/bytes.h"
#include "tests/jet/engine_fixture.h"

namespace jet {

// One kind of damage at one place of a file that was of that kind when it was sound; the file may become shorter. Where
// pages are encoded, the damage is done to what they hold.
void damage_once(ByteVector& file, const FileKind& kind, Random& random);

}  // namespace jet

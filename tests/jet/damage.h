// Damage to a file's bytes, at random but knowing where its structures are.
#pragma once

#include "jet/base/bytes.h"
#include "tests/jet/engine_fixture.h"

namespace jet {

// One kind of damage at one place; the file may become shorter.
void damage_once(ByteVector& file, Random& random);

}  // namespace jet

// The method tables of the three interfaces.
#pragma once

#include <span>

#include "frame/method_table.h"

namespace frame {

std::span<const Method> gate1_methods();
std::span<const Method> gate2_methods();
std::span<const Method> gate3_methods();

}  // namespace frame

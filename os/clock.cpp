#include "os/clock.h"

#include <atomic>

namespace os {
namespace {

constinit std::atomic<bool> retired{false};

}  // namespace

void retire_alarms() noexcept { retired = true; }

bool alarms_are_retired() noexcept { return retired; }

}  // namespace os

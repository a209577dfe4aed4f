#include "db/refusal.h"

namespace db {
namespace {

constinit thread_local LastRefusal last;

}  // namespace

HRESULT refuse(Refusal why, LONG key) noexcept {
    last = {why, key};
    return E_FAIL;
}

LastRefusal last_refusal() noexcept { return last; }

void clear_refusal() noexcept { last = {}; }

}  // namespace db

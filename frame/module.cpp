// One count for objects and locks: nobody asks for them separately.
#include "frame/module.h"

#include <atomic>

namespace frame {

namespace {

constinit std::atomic<LONG> use_count{0};

}  // namespace

ModuleReference::ModuleReference() { use_count.fetch_add(1); }

ModuleReference::~ModuleReference() { use_count.fetch_sub(1); }

void lock_module(bool lock) { use_count.fetch_add(lock ? 1 : -1); }

LONG module_use_count() { return use_count.load(); }

}  // namespace frame

// An allocation refused, at many places of the script: the file holds what was reported, and is sound.
#include <gtest/gtest.h>

#include <new>

#include "tests/jet/allocation_meter.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/operation_script.h"

namespace jet {
namespace {

enum class Outcome { kDone, kOutOfMemory, kEngineError };

Outcome run_step(const ScriptStep& step, ScriptState& state) {
    try {
        step.run(state);
        return Outcome::kDone;
    } catch (const std::bad_alloc&) {
        return Outcome::kOutOfMemory;
    } catch (const Error&) {
        return Outcome::kEngineError;
    }
}

PagerOptions options_for(std::uint64_t n) {
    PagerOptions options;
    options.sync_interval = n % 2 == 0 ? std::chrono::milliseconds(0) : std::chrono::milliseconds(86400000);
    options.cache_pages = n % 3 == 0 ? 8 : 1000;
    return options;
}

TEST(MemoryFault, refused_allocation_loses_nothing_reported) {
    const std::vector<std::string>& contents = script_contents();
    std::uint64_t total = 0;
    {
        MemoryDisk memory;
        ScriptState state{options_for(0), nullptr};
        const std::uint64_t before = allocation_count();
        for (const ScriptStep& step : operation_script()) step.run(state);
        total = allocation_count() - before;
    }
    Random random(17);
    int refused = 0;
    for (int round = 0; round < 600; ++round) {
        const std::uint64_t nth = 1 + random.below(total);
        SCOPED_TRACE("allocation " + std::to_string(nth));
        MemoryDisk memory;
        std::size_t done = 0;
        {
            ScriptState state{options_for(nth), nullptr};
            refuse_allocation(nth);
            while (done < operation_script().size()) {
                const Outcome outcome = run_step(operation_script()[done], state);
                EXPECT_NE(outcome, Outcome::kEngineError);
                if (outcome != Outcome::kDone) break;
                ++done;
            }
            refuse_allocation(0);
            if (done < operation_script().size()) ++refused;
            // The engine goes on working with what it has in memory.
            if (state.database && done < operation_script().size()) {
                const std::string now = content_of(*state.database);
                EXPECT_TRUE(now == contents[done] || now == contents[done + 1]);
            }
        }
        const std::string found = content_found("after " + std::to_string(done));
        EXPECT_TRUE(found == contents[done] || (done < operation_script().size() && found == contents[done + 1]));
        if (HasFailure()) return;
    }
    EXPECT_GT(refused, 300);
}

}  // namespace
}  // namespace jet

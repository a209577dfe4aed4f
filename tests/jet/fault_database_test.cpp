// Every single operation on the disk refused, one run for each: no failure but the engine's own, and the file
// afterwards holds what was reported to be in it. For files of each format, encoded ones among them.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"
#include "tests/jet/operation_script.h"
#include "tests/support/figures.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::Fault;
using testing_support::FaultFileSystem;
using testing_support::Operation;
using testing_support::UseFileSystem;
using StepKind = ScriptStep::Kind;

class DatabaseFault : public ::testing::TestWithParam<TestedFile> {};

INSTANTIATE_TEST_SUITE_P(Files, DatabaseFault, ::testing::ValuesIn(kTestedFiles), NameOfFile());

struct Variant {
    const char* name;
    TestedFile file;
    PagerOptions pager;

    ScriptState start() const { return {file, pager, nullptr}; }
    const std::vector<std::string>& contents() const { return script_contents(file); }
};

// Every commit a sync point; or hardly one, with a journal that is emptied now and then.
std::vector<Variant> variants(const TestedFile& file) {
    Variant always{"always synced", file, {}};
    always.pager.sync_interval = std::chrono::milliseconds(0);
    Variant rarely{"rarely synced", file, {}};
    rarely.pager.sync_interval = std::chrono::hours(24);
    rarely.pager.journal_limit_bytes = 10 * file.kind.format->page_size;
    rarely.pager.cache_pages = 8;
    return {always, rarely};
}

// Runs one step; false when it reported failure. Anything but an engine error is a failure of the test.
bool succeeds(const ScriptStep& step, ScriptState& state, const std::string& where) {
    try {
        step.run(state);
        return true;
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()), "") << where;
        EXPECT_GE(error.number(), 3000) << where;
    } catch (const std::exception& error) {
        ADD_FAILURE() << where << ": not an engine error: " << error.what();
    }
    return false;
}

// How many operations that `fault` would be asked about the whole script takes.
std::uint64_t operations_of(const Variant& variant, std::optional<Operation> operation) {
    MemoryDisk memory;
    ScriptState state = variant.start();
    for (const ScriptStep& step : operation_script()) step.run(state);
    return operation ? memory.disk.count(*operation) : memory.disk.change_count();
}

std::string describe(const Variant& variant, const Fault& fault) {
    return std::string(variant.file.name) + ", " + variant.name + ", fault at " + std::to_string(fault.nth) +
           (fault.lasting ? " and from then on" : "") + (fault.half_written ? ", half written" : "");
}

// Stops at the first step that fails, as a program does that gives up.
void check_run_that_gives_up(const Variant& variant, const Fault& fault) {
    const std::string where = describe(variant, fault);
    const std::vector<std::string>& contents = variant.contents();
    MemoryDisk memory;
    memory.disk.plan(fault);
    testing_support::count_tried(testing_support::Figure::kFaults);
    std::size_t done = 0;
    {
        ScriptState state = variant.start();
        while (done < operation_script().size() && succeeds(operation_script()[done], state, where)) ++done;
        EXPECT_GT(memory.disk.faults_raised(), 0u) << where;
    }
    memory.disk.clear_faults();
    const std::string found = content_found(where);
    const bool as_reported = found == contents[done];
    const bool with_the_failed_step = done < operation_script().size() && found == contents[done + 1];
    EXPECT_TRUE(as_reported || with_the_failed_step)
        << where << ", step " << (done < operation_script().size() ? operation_script()[done].name : "none") << "\n"
        << found;
}

void check_every_fault(const TestedFile& file, std::optional<Operation> operation, const Fault& pattern) {
    for (const Variant& variant : variants(file)) {
        const std::uint64_t count = operations_of(variant, operation);
        ASSERT_GE(count, 4u);
        for (std::uint64_t nth = 1; nth <= count; nth += variant.file.one_in()) {
            Fault fault = pattern;
            fault.operation = operation;
            fault.nth = nth;
            check_run_that_gives_up(variant, fault);
            if (::testing::Test::HasFailure()) return;
        }
    }
}

TEST_P(DatabaseFault, healthy_run_ends_where_the_script_does) {
    EXPECT_EQ(script_contents(GetParam()).size(), operation_script().size() + 1);
    for (const Variant& variant : variants(GetParam())) {
        MemoryDisk memory;
        ScriptState state = variant.start();
        for (std::size_t i = 0; i < operation_script().size(); ++i) {
            operation_script()[i].run(state);
            if (!state.database) continue;
            expect_sound(*state.database, operation_script()[i].name);
            EXPECT_EQ(content_of(*state.database), variant.contents()[i + 1]) << operation_script()[i].name;
        }
        EXPECT_EQ(memory.disk.names(), std::vector<std::string>{kScriptPath});
        const FileKind kind = kind_of_file(memory.disk.content(kScriptPath));
        EXPECT_EQ(kind.format, GetParam().kind.format);
        EXPECT_EQ(kind.encryption_key, GetParam().kind.encryption_key);
    }
}

TEST_P(DatabaseFault, disk_full_once_loses_nothing_reported) {
    check_every_fault(GetParam(), std::nullopt, {.fault = os::FileFault::kDiskFull, .half_written = true});
}

TEST_P(DatabaseFault, io_error_once_loses_nothing_reported) {
    check_every_fault(GetParam(), std::nullopt, {.fault = os::FileFault::kIo});
}

TEST_P(DatabaseFault, disk_full_from_then_on_loses_nothing_reported) {
    check_every_fault(GetParam(), std::nullopt,
                      {.fault = os::FileFault::kDiskFull, .lasting = true, .half_written = true});
}

TEST_P(DatabaseFault, io_error_from_then_on_loses_nothing_reported) {
    check_every_fault(GetParam(), std::nullopt, {.fault = os::FileFault::kIo, .lasting = true});
}

TEST_P(DatabaseFault, refused_reads_and_openings_lose_nothing_reported) {
    for (const Operation operation : {Operation::kRead, Operation::kOpen}) {
        for (const bool lasting : {false, true})
            check_every_fault(GetParam(), operation, {.fault = os::FileFault::kIo, .lasting = lasting});
    }
}

// A program that does not give up: it does the step again, after opening the file anew where that is needed.
class Persistent {
public:
    Persistent(const Variant& variant, std::string where)
        : variant_(variant), state_(variant.start()), where_(std::move(where)) {}

    void run() {
        const std::vector<ScriptStep>& script = operation_script();
        for (std::size_t i = 0; i < script.size(); ++i) {
            if (succeeds(script[i], state_, where_)) continue;
            repeat(i);
        }
    }

private:
    void repeat(std::size_t i) {
        const ScriptStep& step = operation_script()[i];
        switch (step.kind) {
            case StepKind::kCreate:
                state_.database.reset();
                if (os::file_system().exists(kScriptPath)) return;
                EXPECT_TRUE(succeeds(step, state_, where_)) << where_;
                return;
            case StepKind::kClose: state_.database.reset(); return;
            case StepKind::kOpen: EXPECT_TRUE(succeeds(step, state_, where_)) << where_; return;
            case StepKind::kSync:
            case StepKind::kChange: break;
        }
        if (content_of(*state_.database) != variant_.contents()[i])
            ADD_FAILURE() << where_ << ": a failed step left something in memory";
        if (succeeds(step, state_, where_)) return;
        state_.database.reset();
        operation_script()[1].run(state_);
        if (content_of(*state_.database) == variant_.contents()[i + 1]) return;
        EXPECT_TRUE(succeeds(step, state_, where_)) << where_ << ": " << step.name;
    }

    const Variant& variant_;
    ScriptState state_;
    std::string where_;
};

TEST_P(DatabaseFault, step_done_again_after_a_fault_gives_what_it_gives_without) {
    for (const Variant& variant : variants(GetParam())) {
        const std::uint64_t count = operations_of(variant, std::nullopt);
        for (std::uint64_t nth = 1; nth <= count; nth += variant.file.one_in()) {
            const Fault fault{.nth = nth,
                              .fault = nth % 2 ? os::FileFault::kDiskFull : os::FileFault::kIo,
                              .half_written = nth % 4 < 2};
            const std::string where = describe(variant, fault);
            MemoryDisk memory;
            memory.disk.plan(fault);
            testing_support::count_tried(testing_support::Figure::kFaults);
            Persistent(variant, where).run();
            EXPECT_EQ(memory.disk.faults_raised(), 1u) << where;
            EXPECT_EQ(content_found(where), variant.contents().back()) << where;
            if (HasFailure()) return;
        }
    }
}

// First the disk refuses, then the power goes.
TEST_P(DatabaseFault, power_cut_after_a_fault_keeps_what_was_synced) {
    const Variant variant = variants(GetParam())[0];
    const std::uint64_t count = operations_of(variant, std::nullopt);
    for (std::uint64_t nth = 1; nth <= count; nth += variant.file.one_in()) {
        for (const bool lasting : {false, true}) {
            const Fault fault{.nth = nth, .lasting = lasting, .half_written = true};
            const std::string where = describe(variant, fault);
            MemoryDisk memory;
            memory.disk.plan(fault);
            testing_support::count_tried(testing_support::Figure::kFaults);
            ScriptState state = variant.start();
            std::size_t done = 0;
            while (done < operation_script().size() && succeeds(operation_script()[done], state, where)) ++done;
            for (std::uint32_t seed = 0; seed < 3; ++seed) {
                const CrashMode mode = seed == 0 ? CrashMode::kDropUnsynced : CrashMode::kTearUnsynced;
                const auto after = memory.disk.crash(mode, seed);
                testing_support::count_tried(testing_support::Figure::kPowerCuts);
                const UseFileSystem use(*after);
                const std::string found = content_found(where);
                const bool with_the_failed_step =
                    done < operation_script().size() && found == variant.contents()[done + 1];
                EXPECT_TRUE(found == variant.contents()[done] || with_the_failed_step) << where << " seed " << seed;
            }
            if (HasFailure()) return;
        }
    }
}

}  // namespace
}  // namespace jet

// The power cut after every single change of the disk: what was promised is there, and nothing by halves. For files of
// each format, encoded ones among them.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"
#include "tests/jet/operation_script.h"
#include "tests/support/figures.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::FaultFileSystem;
using testing_support::Operation;
using testing_support::UseFileSystem;
using StepKind = ScriptStep::Kind;

class DatabasePowerCrash : public ::testing::TestWithParam<TestedFile> {};

INSTANTIATE_TEST_SUITE_P(Files, DatabasePowerCrash, ::testing::ValuesIn(kTestedFiles), NameOfFile());

// How a run of the script goes: on which file, and how often it is synced.
struct Course {
    TestedFile file;
    PagerOptions pager;

    ScriptState start() const { return {file, pager, nullptr}; }
    const std::vector<std::string>& contents() const { return script_contents(file); }
};

// The range of steps of which the file may hold the first so many.
struct Expected {
    std::size_t at_least = 0;
    std::size_t at_most = 0;
};

void expect_prefix(const Course& course, const FaultFileSystem& disk, CrashMode mode, std::uint32_t seed,
                   Expected expected, const std::string& where) {
    const std::vector<std::string>& contents = course.contents();
    const auto after = disk.crash(mode, seed);
    testing_support::count_tried(testing_support::Figure::kPowerCuts);
    const UseFileSystem use(*after);
    const std::string found = content_found(where);
    for (std::size_t k = expected.at_least; k <= expected.at_most && k < contents.size(); ++k) {
        if (found == contents[k]) return;
    }
    std::size_t k = 0;
    while (k < contents.size() && contents[k] != found) ++k;
    ADD_FAILURE() << where << ": expected the content after " << expected.at_least << " to " << expected.at_most
                  << " steps, found "
                  << (k < contents.size() ? "that after " + std::to_string(k) : "none of them:\n" + found);
}

// Tells whether a step that succeeded is sure to be there, given whether it was the first change since an opening.
using Promise = std::function<bool(StepKind, bool first)>;

// Runs the script on `disk` and calls `cut` after each change of it, or one in so many.
void cut_everywhere(FaultFileSystem& disk, const Course& course, const Promise& promised,
                    const std::function<void(Expected, std::uint64_t change)>& cut) {
    const std::vector<ScriptStep>& script = operation_script();
    course.contents();
    const UseFileSystem use(disk);
    ScriptState state = course.start();
    Expected expected;
    std::uint64_t change = 0;
    disk.set_observer([&](Operation, const std::string&) {
        if (++change % course.file.one_in() == 0) cut(expected, change);
    });
    bool first = true;
    for (std::size_t i = 0; i < script.size() && !::testing::Test::HasFailure(); ++i) {
        expected.at_most = i + 1;
        script[i].run(state);
        if (promised(script[i].kind, first)) expected.at_least = i + 1;
        if (script[i].kind == StepKind::kOpen) first = true;
        if (script[i].kind == StepKind::kChange) first = false;
    }
    disk.set_observer({});
    EXPECT_GT(change, script.size());
}

void cut_in_every_mode(const Course& course, std::uint32_t seeds, const Promise& promised) {
    FaultFileSystem disk;
    cut_everywhere(disk, course, promised, [&](Expected expected, std::uint64_t change) {
        const std::string where = "change " + std::to_string(change);
        expect_prefix(course, disk, CrashMode::kKeepUnsynced, 0, expected, where + " kept");
        expect_prefix(course, disk, CrashMode::kDropUnsynced, 0, expected, where + " dropped");
        for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
            expect_prefix(course, disk, CrashMode::kTearUnsynced, static_cast<std::uint32_t>(change) * 100 + seed,
                          expected, where + " torn " + std::to_string(seed));
        }
    });
}

Course always_synced(const TestedFile& file) {
    Course course{file, {}};
    course.pager.sync_interval = std::chrono::milliseconds(0);
    return course;
}

Course rarely_synced(const TestedFile& file) {
    Course course{file, {}};
    course.pager.sync_interval = std::chrono::hours(24);
    return course;
}

// With hardly a sync point of its own, a run has those of its first change, of sync_point() and of close().
bool promised_rarely(StepKind kind, bool first) { return kind != StepKind::kChange || first; }

TEST_P(DatabasePowerCrash, with_every_commit_synced_nothing_is_lost) {
    cut_in_every_mode(always_synced(GetParam()), 4, [](StepKind, bool) { return true; });
}

TEST_P(DatabasePowerCrash, between_sync_points_only_the_last_stretch_is_lost) {
    cut_in_every_mode(rarely_synced(GetParam()), 6, promised_rarely);
}

TEST_P(DatabasePowerCrash, small_journal_emptied_often_loses_nothing_more) {
    Course course = rarely_synced(GetParam());
    course.pager.journal_limit_bytes = 15 * GetParam().kind.format->page_size / 2;
    course.pager.cache_pages = 4;
    cut_in_every_mode(course, 6, promised_rarely);
}

// Time passes by chance between the steps of a burst, and the power is cut at any moment of it. What had succeeded a
// quarter of a second ago or earlier is there, whatever the host has done since.
TEST_P(DatabasePowerCrash, cut_a_quarter_of_a_second_after_a_success_loses_nothing) {
    using namespace std::chrono_literals;
    const std::vector<ScriptStep>& script = operation_script();
    const Course course{GetParam(), {}};
    course.contents();
    std::uint64_t cuts = 0;
    const std::uint32_t seeds = course.file.is_encoded() ? 3 : 12;
    for (std::uint32_t seed = 1; seed <= seeds && !::testing::Test::HasFailure(); ++seed) {
        Random random(seed);
        FaultFileSystem disk;
        const UseFileSystem use(disk);
        ScriptState state = course.start();
        std::vector<os::TimePoint> succeeded;
        const auto promised = [&] {
            std::size_t steps = 0;
            while (steps < succeeded.size() && succeeded[steps] + 250ms <= disk.clock().now()) ++steps;
            return steps;
        };
        for (std::size_t i = 0; i < script.size() && !::testing::Test::HasFailure(); ++i) {
            script[i].run(state);
            succeeded.push_back(disk.clock().now());
            // Bursts, with a pause now and then.
            for (int pieces = random.below(4) == 0 ? static_cast<int>(random.below(40)) : 0; pieces >= 0; --pieces) {
                disk.clock().advance(std::chrono::milliseconds(random.below(12)));
                if (random.below(6) != 0) continue;
                const std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(i);
                expect_prefix(course, disk, CrashMode::kDropUnsynced, 0, {promised(), i + 1}, where + " dropped");
                expect_prefix(course, disk, CrashMode::kTearUnsynced, random(), {promised(), i + 1}, where + " torn");
                cuts += 2;
            }
        }
        const std::size_t last = succeeded.size();
        disk.clock().advance(250ms);
        EXPECT_EQ(promised(), last);
        expect_prefix(course, disk, CrashMode::kDropUnsynced, 0, {last, last}, "after the end");
    }
    EXPECT_GT(cuts, 40 * seeds);
}

// The power goes again while the file is being opened after the first cut, at every change that makes.
TEST_P(DatabasePowerCrash, cut_during_the_replay_changes_nothing) {
    FaultFileSystem disk;
    Course course = rarely_synced(GetParam());
    course.pager.journal_limit_bytes = 10 * GetParam().kind.format->page_size;
    std::uint64_t second_cuts = 0;
    cut_everywhere(disk, course, promised_rarely, [&](Expected expected, std::uint64_t change) {
        if (change % 5 != 0) return;
        const std::string where = "change " + std::to_string(change);
        const auto after = disk.crash(CrashMode::kTearUnsynced, static_cast<std::uint32_t>(change));
        const UseFileSystem use(*after);
        std::vector<std::unique_ptr<FaultFileSystem>> again;
        after->set_observer([&](Operation, const std::string&) {
            again.push_back(after->crash(CrashMode::kTearUnsynced, static_cast<std::uint32_t>(again.size())));
            again.push_back(after->crash(CrashMode::kDropUnsynced));
        });
        content_found(where);
        after->set_observer({});
        second_cuts += again.size();
        for (const auto& state : again)
            expect_prefix(course, *state, CrashMode::kKeepUnsynced, 0, expected, where + " cut again");
    });
    EXPECT_GT(second_cuts, 50u);
}

}  // namespace
}  // namespace jet

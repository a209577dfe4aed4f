// How long the first opening of a large old studio takes, and how that grows with its size.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "tests/frame/gate_host.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"

namespace {

using namespace testing_support;

double seconds_of_first_opening(std::int32_t sessions, std::int32_t projects) {
    GateHost host;
    const StudioSize size = {.projects = projects,
                             .songs = sessions / 10,
                             .tracks = sessions / 5,
                             .sessions = sessions,
                             .engineers = 40,
                             .contacts = sessions / 25,
                             .invoices = sessions / 25};
    make_old_studio(host.folder(), 100005, size);
    const auto gate = host.create<IDBgate1>();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(gate->OpenDB(), S_OK);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    gate->CloseDB();
    const Content content = content_of(host.file("sldb.mdb"));
    EXPECT_EQ(content.at("Sessions").rows.size(), static_cast<std::size_t>(sessions));
    EXPECT_GT(content.at("Participants").rows.size(), static_cast<std::size_t>(sessions * 8 / 10));
    return taken.count();
}

void measure(const char* what, std::int32_t (*projects_of)(std::int32_t sessions)) {
    double first = 0, last = 0;
    for (const std::int32_t sessions : {12500, 25000, 50000}) {
        last = seconds_of_first_opening(sessions, projects_of(sessions));
        if (first == 0) first = last;
        std::printf("%s: %d sessions, %d songs: %.2f s\n", what, sessions, sessions / 10, last);
        ::testing::Test::RecordProperty("seconds_" + std::to_string(sessions), std::to_string(last));
    }
    EXPECT_LT(last, 60);  // on any machine; a search through all songs for each session would take far longer
}

TEST(UpgradeSlow, large_studio_takes_seconds) {
    measure("ten songs a project", [](std::int32_t sessions) { return sessions / 100; });
}

TEST(UpgradeSlow, large_studio_with_all_songs_in_one_project_takes_seconds) {
    measure("one project", [](std::int32_t) { return 1; });
}

}  // namespace

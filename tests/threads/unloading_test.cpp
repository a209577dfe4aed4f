// A host that lets go of the library, or ends, while the thread that brings the tail of a burst to the disk is at work.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "tests/threads/worker.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace testing_support;

namespace {

constexpr int kRows = 5;

// A burst of rows through a gate that is released and never closed.
void save_burst(const Component& component) {
    const auto gate = component.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    for (int i = 0; i < kRows; ++i) {
        ProjInfo project;
        project.Name = std::to_string(i).c_str();
        ASSERT_EQ(gate->AddProj(address_of(project)), S_OK);
    }
}

std::size_t rows_saved(const TempFolder& folder) {
    const Component component(folder.path());
    const auto gate = component.create<IDBgate1>();
    EXPECT_EQ(gate->OpenDB(), S_OK);
    gate->CloseDB();
    return projects_in(folder.file("sldb.mdb")).size();
}

TEST(Unloading, library_let_go_of_in_the_middle_of_a_burst_loses_nothing) {
    for (int round = 0; round < 5; ++round) {
        const TempFolder folder;
        {
            const Component component(folder.path());
            save_burst(component);
        }
        EXPECT_EQ(rows_saved(folder), static_cast<std::size_t>(kRows));
    }
}

#ifndef _WIN32
TEST(Unloading, process_that_ends_in_the_middle_of_a_burst_loses_nothing) {
    for (const bool unloads : {false, true}) {
        const TempFolder folder;
        std::fflush(stdout);  // or the child says it once more
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            auto component = std::make_unique<Component>(folder.path());
            save_burst(*component);
            if (unloads) component.reset();
            // Otherwise the library is still loaded, and nobody has closed anything.
            static const Component* const kept = component.release();
            static_cast<void>(kept);
            std::exit(0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(rows_saved(folder), static_cast<std::size_t>(kRows));
    }
}
#endif

}  // namespace

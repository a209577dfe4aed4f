// A host that unloads the library, or exits, while the thread that syncs the end of a burst is at work.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "tests/threads/worker.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace testing_support;

namespace {

constexpr int kRows = 5;

// Saves a burst of rows through a gate that is released and never closed.
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

#ifdef _WIN32
// A failed edit uses up an auto-number and saves nothing; the closing then saves the table's counter, too late to start
// a thread.
TEST(Unloading, closing_by_unloading_begins_no_thread_in_the_library_that_goes) {
    for (int round = 0; round < 5; ++round) {
        const TempFolder folder;
        std::string path;
        {
            const Component component(folder.path());
            path = component.path();
            const auto gate = component.create<IDBgate1>();
            ASSERT_EQ(gate->OpenDB(), S_OK);
            std::this_thread::sleep_for(std::chrono::milliseconds(300));  // so the edit is a sync point of its own
            RoomInfo room;
            room.Name = "Live";
            ASSERT_EQ(gate->AddRoom(address_of(room)), S_OK);
            RoomInfo without_name;
            ASSERT_EQ(gate->AddRoom(address_of(without_name)), E_FAIL);
        }
        EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
    }
}
#else
TEST(Unloading, process_that_ends_in_the_middle_of_a_burst_loses_nothing) {
    for (const bool unloads : {false, true}) {
        const TempFolder folder;
        std::fflush(stdout);  // otherwise the child would print it again
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            auto component = std::make_unique<Component>(folder.path());
            save_burst(*component);
            if (unloads) component.reset();
            // Without the unloading, keep the library loaded and everything open.
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

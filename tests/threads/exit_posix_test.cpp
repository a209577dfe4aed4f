// A host that exits while its threads are inside the component: everything reported as saved is there afterwards, and
// the exit neither hangs nor crashes.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "tests/threads/worker.h"

using namespace testing_support;

namespace {

constexpr int kThreads = 4;

struct Saved {
    LONG key;
    int number;
};

// Saves rows for ever in several threads and reports each to `out`; exits the process in the middle of it.
[[noreturn]] void run_host(const std::string& folder, int out) {
    // Never released: they live until the process ends.
    static const Component* const component = std::make_unique<Component>(folder).release();
    static const auto* const holder = std::make_unique<ComPtr<IDBgate1>>(component->create<IDBgate1>()).release();
    IDBgate1* const gate = holder->get();
    gate->OpenDB();
    for (int thread = 0; thread < kThreads; ++thread) {
        std::thread([thread, out, gate] {
            for (int i = 0;; ++i) {
                ProjInfo project;
                Saved saved{0, thread * 1000000 + i};
                project.Name = std::to_string(saved.number).c_str();
                if (gate->AddProj(address_of(project)) != S_OK) continue;
                saved.key = project.ProjID;
                if (write(out, &saved, sizeof saved) != sizeof saved) _exit(3);
            }
        }).detach();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    std::exit(0);
}

// The exit status of a process; kills it after half a minute.
int status_of(pid_t child) {
    int status = 0;
    for (int i = 0; i < 3000; ++i) {
        if (waitpid(child, &status, WNOHANG) == child) return status;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return status;
}

}  // namespace

TEST(ExitThreads, process_that_ends_while_threads_save_loses_no_row) {
    for (int round = 0; round < 3; ++round) {
        const TempFolder folder;
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) run_host(folder.path(), ends[1]);
        close(ends[1]);
        std::vector<Saved> saved;
        for (Saved next; read(ends[0], &next, sizeof next) == sizeof next;) saved.push_back(next);
        close(ends[0]);
        const int status = status_of(child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;

        const Component component(folder.path());
        const auto gate = component.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        gate->CloseDB();
        const Projects rows = projects_in(folder.file("sldb.mdb"));
        EXPECT_GT(saved.size(), 0u);
        for (const Saved& row : saved) {
            const auto found = rows.find(row.key);
            ASSERT_TRUE(found != rows.end() && found->second == std::to_string(row.number)) << row.number;
        }
    }
}

// The child has only the thread that forked; no other could ever release a lock for it.
TEST(ForkThreads, child_of_a_host_whose_other_threads_are_at_work_gets_answers_and_ends) {
    const TempFolder folder;
    std::atomic<int> saved{0};
    {
        const Component component(folder.path());
        const auto gate = component.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        std::atomic<bool> is_over{false};
        std::vector<std::thread> workers;
        for (int thread = 0; thread < kThreads; ++thread) {
            workers.emplace_back([&] {
                while (!is_over) {
                    ProjInfo project;
                    project.Name = "row";
                    if (gate->AddProj(address_of(project)) == S_OK) ++saved;
                }
            });
        }
        for (int round = 0; round < 20; ++round) {
            const pid_t child = fork();
            if (child == 0) {
                ProjInfo project;
                project.Name = "the child's";
                _exit(gate->AddProj(address_of(project)) == E_FAIL ? 0 : 1);
            }
            const int status = status_of(child);
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        }
        is_over = true;
        for (std::thread& worker : workers) worker.join();
        gate->CloseDB();
    }
    EXPECT_EQ(projects_in(folder.file("sldb.mdb")).size(), static_cast<std::size_t>(saved.load()));
}

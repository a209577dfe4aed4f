// Hosts that call from several threads: the files stay sound, and no row reported as saved is lost. Also built with the
// thread sanitizer, together with the library.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "jet/check/check.h"
#include "tests/frame/late_binding.h"
#include "tests/threads/worker.h"

using namespace testing_support;

namespace {

constexpr int kSteps = 150;  // of each thread

void run_in_threads(unsigned count, const std::function<void(unsigned number)>& work) {
    std::atomic<unsigned> ready{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < count) std::this_thread::yield();
            work(i);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

void expect_sound(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    options.read_only = true;
    const auto database = jet::Database::open(path, options);
    for (const jet::Violation& violation : jet::check_structure(*database)) {
        ADD_FAILURE() << path << " page " << violation.page << ": " << violation.rule << ": " << violation.detail;
    }
}

class GateThreads : public testing::TestWithParam<unsigned> {
protected:
    // Both files are closed, sound, and hold the workers' rows and the demo row of every new file.
    void expect_everything(const std::vector<Worker>& workers, Projects demo) {
        expect_sound(host_.file("sldb.mdb"));
        expect_sound(host_.file("kvinvdb.mdb"));
        Projects expected = std::move(demo);
        for (const Worker& worker : workers) {
            EXPECT_EQ(worker.wrong_answers(), 0);
            expected.insert(worker.projects().begin(), worker.projects().end());
        }
        EXPECT_EQ(projects_in(host_.file("sldb.mdb")), expected);
    }
    // The rows of a newly created file.
    Projects first_rows() {
        const auto gate = host_.create<IDBgate1>();
        EXPECT_EQ(gate->OpenDB(), S_OK);
        gate->CloseDB();
        return projects_in(host_.file("sldb.mdb"));
    }
    std::vector<Worker> workers() const {
        std::vector<Worker> all;
        for (unsigned i = 0; i < GetParam(); ++i) all.emplace_back(i + 1);
        return all;
    }

    GateHost host_;
};

INSTANTIATE_TEST_SUITE_P(Threads, GateThreads, testing::Values(2u, 4u, 8u));

}  // namespace

TEST_P(GateThreads, each_with_a_gate_lose_no_row) {
    const Projects demo = first_rows();
    std::vector<Worker> all = workers();
    run_in_threads(GetParam(), [&](unsigned number) {
        const auto gate = host_.create<IDBgate1>();
        ASSERT_EQ(gate->CreateDB(nullptr), S_OK);  // OpenDB would close the files that the others have open
        for (int i = 0; i < kSteps; ++i) all[number].step(*gate);
    });
    host_.create<IDBgate1>()->CloseDB();
    for (const Worker& worker : all) EXPECT_EQ(worker.failures(), 0);
    expect_everything(all, demo);
}

TEST_P(GateThreads, all_on_one_gate_lose_no_row) {
    const Projects demo = first_rows();
    std::vector<Worker> all = workers();
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    run_in_threads(GetParam(), [&](unsigned number) {
        for (int i = 0; i < kSteps; ++i) all[number].step(*gate);
    });
    gate->CloseDB();
    for (const Worker& worker : all) EXPECT_EQ(worker.failures(), 0);
    expect_everything(all, demo);
}

// A call on closed files fails, with no other effect.
TEST_P(GateThreads, that_open_and_close_under_the_others_lose_no_row) {
    const Projects demo = first_rows();
    std::vector<Worker> all = workers();
    run_in_threads(GetParam(), [&](unsigned number) {
        const auto gate = host_.create<IDBgate1>();
        for (int i = 0; i < kSteps; ++i) {
            if (i % 25 == 0) {
                ASSERT_EQ(gate->OpenDB(), S_OK);
            }
            all[number].step(*gate);
            if (i % 40 == 39) gate->CloseDB();
        }
    });
    host_.create<IDBgate1>()->CloseDB();
    expect_everything(all, demo);
}

TEST_P(GateThreads, that_make_and_release_gates_of_every_class_leave_the_library_free) {
    run_in_threads(GetParam(), [&](unsigned number) {
        for (int i = 0; i < 20; ++i) {
            const auto gate = host_.create<IDBgate1>();
            const auto gear = host_.create<IDBGate3>();
            const ComPtr<IDBgate1> second(gate);
            gear->OpenDB();
            GearInfo item;
            item.Model = ("model " + std::to_string(number)).c_str();
            gear->AddGear(address_of(item));
            host_.component().can_unload_now();
            void* info = nullptr;
            EXPECT_EQ(gate->QueryInterface(IID_ISupportErrorInfo, &info), S_OK);
            static_cast<IUnknown*>(info)->Release();
        }
    });
    EXPECT_EQ(host_.component().can_unload_now(), S_OK);
    host_.create<IDBgate1>()->CloseDB();
    expect_sound(host_.file("sldb.mdb"));
}

TEST_P(GateThreads, that_call_by_name_lose_no_row) {
    const Projects demo = first_rows();
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ASSERT_EQ(invoke(*gate, u"AddTrackType", {Variant::text(u"Guitar")}).result, S_OK);
    std::atomic<int> added{0};
    run_in_threads(GetParam(), [&](unsigned number) {
        for (int i = 0; i < kSteps / 3; ++i) {
            ProjInfo project;
            project.Name = ("named " + std::to_string(number) + "." + std::to_string(i)).c_str();
            added += invoke(*gate, u"AddProj", {Variant::record(project)}).result == S_OK;
            Variant found;
            EXPECT_EQ(invoke(*gate, u"EnumFirstTrackType", {Variant::ref(found)}).result, S_OK);
        }
    });
    gate->CloseDB();
    EXPECT_EQ(added, static_cast<int>(GetParam()) * (kSteps / 3));
    EXPECT_EQ(projects_in(host_.file("sldb.mdb")).size(), demo.size() + static_cast<std::size_t>(added));
    expect_sound(host_.file("sldb.mdb"));
}

// Threads whose opening of a damaged file fails with an exception lock nobody out.
TEST_P(GateThreads, that_get_an_exception_let_the_others_in) {
    first_rows();
    std::ofstream(host_.file("sldb.mdb")) << "this is no database";
    auto calls = std::async(std::launch::async, [&] {
        std::atomic<int> refused{0};
        run_in_threads(GetParam(), [&](unsigned) {
            const auto gate = host_.create<IDBgate1>();
            for (int i = 0; i < 5; ++i) {
                try {
                    refused += gate->OpenDB() == E_FAIL;  // the host has its own unwinder
                } catch (CDaoException* error) {
                    ++refused;
                    error->Delete();
                }
            }
        });
        return refused.load();
    });
    ASSERT_EQ(calls.wait_for(std::chrono::seconds(60)), std::future_status::ready) << "somebody waits for ever";
    EXPECT_EQ(calls.get(), static_cast<int>(GetParam()) * 5);
}

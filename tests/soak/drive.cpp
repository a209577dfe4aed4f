#include "tests/soak/drive.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include "tests/soak/drive_worker.h"

namespace soak {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

volatile sig_atomic_t is_interrupted = 0;
void interrupt(int) { is_interrupted = 1; }

double seconds_since(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

// A kind in this run: its line of the table, and its worker while one runs.
struct Line {
    const KindPlan* plan = nullptr;
    std::uint64_t next = 1;
    std::uint64_t cases = 0;
    std::uint64_t tried = 0;
    std::uint64_t failed = 0;
    double seconds = 0;
    std::string skipped;
    bool is_finished = false;

    std::unique_ptr<WorkerProcess> worker;
    Clock::time_point shift_began;
    Clock::time_point heard;  // last output of the worker
    bool has_case = false;
    bool is_killed = false;
};

class Driver {
public:
    explicit Driver(const Plan& plan) : plan_(plan), failures_(fs::path(plan.state_folder) / "failures") {
        fs::create_directories(failures_);
        read_state();
        for (const KindPlan& kind : kind_plans()) {
            const bool is_named = std::find(plan.kinds.begin(), plan.kinds.end(), kind.name) != plan.kinds.end();
            if (plan.kinds.empty() ? kind.only_by_name : !is_named) continue;
            Line line;
            line.plan = &kind;
            line.next = plan.seed != 0 ? plan.seed : std::max<std::uint64_t>(1, state_[kind.name]);
            lines_.push_back(std::move(line));
        }
    }

    int run() {
        const auto begin = Clock::now();
        const double seconds = plan_.minutes * 60;
        while (is_interrupted == 0) {
            const double left = seconds - seconds_since(begin);
            if (plan_.cases == 0 && left <= 0 && !is_anyone_at_work()) break;
            if (plan_.cases != 0 || left > 0) start_workers(left);
            if (!is_anyone_at_work()) break;
            listen();
        }
        for (Line& line : lines_) {
            if (line.worker) end_shift(line);
        }
        const bool has_failed = print_table(seconds_since(begin));
        if (is_interrupted != 0) return has_failed ? 1 : 130;
        return has_failed ? 1 : 0;
    }

private:
    // Run time of a worker in seconds: short enough for every kind to have its turn.
    double shift_of(const Line& line) const {
        double weights = 0;
        for (const Line& each : lines_) weights += each.plan->weight;
        const double share = plan_.minutes * 60 * processors() * line.plan->weight / weights;
        return std::min(10 * line.plan->weight, share);
    }
    static double processors() { return std::max(1u, std::thread::hardware_concurrency()); }

    bool is_anyone_at_work() const {
        return std::any_of(lines_.begin(), lines_.end(), [](const Line& line) { return line.worker != nullptr; });
    }

    // Starts as many workers as the machine has processors; first the kinds that have had least of their share.
    void start_workers(double seconds_left) {
        const auto at_work =
            std::count_if(lines_.begin(), lines_.end(), [](const Line& l) { return l.worker != nullptr; });
        const auto most = static_cast<std::ptrdiff_t>(processors());
        for (std::ptrdiff_t count = at_work; count < most; ++count) {
            Line* chosen = nullptr;
            for (Line& line : lines_) {
                if (line.worker || !line.skipped.empty() || line.is_finished) continue;
                const auto share = [](const Line& l) { return l.seconds / l.plan->weight; };
                if (chosen == nullptr || share(line) < share(*chosen)) chosen = &line;
            }
            if (chosen == nullptr) return;
            start_shift(*chosen, seconds_left);
        }
    }

    void start_shift(Line& line, double seconds_left) {
        const fs::path worker = fs::path(plan_.tree) / "build" / line.plan->preset / line.plan->program;
        if (!fs::exists(worker)) {
            line.skipped = "not built: " + worker.string();
            return;
        }
        std::vector<std::string> command = line.plan->launcher;
        command.push_back(worker.string());
        for (const std::string& word : {line.plan->worker_kind, std::to_string(line.next),
                                        std::to_string(plan_.cases == 0 ? 0 : plan_.cases - line.cases),
                                        std::to_string(std::min(shift_of(line), seconds_left)), failures_.string()}) {
            command.push_back(word);
        }
        line.worker = std::make_unique<WorkerProcess>(command, plan_.tree, log_of(line));
        line.shift_began = line.heard = Clock::now();
        line.has_case = line.is_killed = false;
    }

    // Emulated programs deliver their output only when they exit.
    double patience(const Line& line) const { return plan_.patience > 0 ? plan_.patience : line.plan->patience; }

    void listen() {
        std::vector<pollfd> ready;
        std::vector<Line*> who;
        for (Line& line : lines_) {
            if (!line.worker) continue;
            ready.push_back({line.worker->descriptor(), POLLIN, 0});
            who.push_back(&line);
        }
        ::poll(ready.data(), ready.size(), 200);
        for (std::size_t i = 0; i < ready.size(); ++i) {
            Line& line = *who[i];
            if (ready[i].revents != 0) {
                const bool goes_on = line.worker->read();
                while (const auto text = line.worker->line()) take_in(line, *text);
                if (!goes_on) end_shift(line);
            } else if (seconds_since(line.heard) > patience(line)) {
                line.is_killed = true;
                line.worker->kill();
                line.heard = Clock::now();
            }
        }
    }

    void take_in(Line& line, const std::string& text) {
        std::istringstream words(text);
        std::string word;
        words >> word;
        line.heard = Clock::now();
        if (word == "case") {
            words >> line.next;
            line.has_case = true;
        } else if (word == "skip") {
            line.skipped = text.substr(5);
        } else if (word == "done" || word == "failed") {
            std::uint64_t seed = 0, tried = 0;
            words >> seed >> tried >> line.next;
            ++line.cases;
            line.tried += tried;
            line.has_case = false;
            std::string why;
            std::getline(words, why);
            if (word == "failed") fail(line, seed, why);
        }
    }

    // The worker has exited, or is killed now.
    void end_shift(Line& line) {
        if (is_interrupted != 0) line.worker->kill();
        const std::string how = line.worker->wait();
        line.worker.reset();
        line.seconds += seconds_since(line.shift_began);
        if (is_interrupted != 0) {
            write_state();
            return;
        }
        if (line.has_case) {
            const std::string why = line.is_killed
                                        ? "no end after " + std::to_string(static_cast<int>(patience(line))) + " s"
                                        : "ended the worker: " + (how.empty() ? "exit code 0" : how);
            const std::uint64_t seed = line.next++;
            ++line.cases;
            fail(line, seed, why);
        } else if (!how.empty()) {
            // Not a case's failure, but nothing has been tested either.
            fail(line, line.next, "the worker did not work: " + how);
            line.is_finished = true;
        }
        if (plan_.cases != 0 && line.cases >= plan_.cases) line.is_finished = true;
        write_state();
    }

    void fail(Line& line, std::uint64_t seed, const std::string& why) {
        ++line.failed;
        const fs::path kept = failures_ / (line.plan->worker_kind + "-" + std::to_string(seed));
        fs::create_directories(kept);
        const std::string again = "./soak --kind " + line.plan->name + " --seed " + std::to_string(seed) + " --cases 1";
        std::error_code ignored;
        fs::copy_file(log_of(line), kept / "stderr.txt", fs::copy_options::overwrite_existing, ignored);
        std::ofstream(kept / "failure.txt") << line.plan->name << ", seed " << seed << ":" << why << "\n"
                                            << again << "\n";
        std::printf("FAILED %s, seed %llu:%s\n    kept in %s\n    again: %s\n", line.plan->name.c_str(),
                    static_cast<unsigned long long>(seed), why.substr(0, 600).c_str(), kept.string().c_str(),
                    again.c_str());
        std::fflush(stdout);
    }

    std::string log_of(const Line& line) const {
        return (fs::path(plan_.state_folder) / (line.plan->name + ".stderr")).string();
    }

    fs::path state_file() const { return fs::path(plan_.state_folder) / "next_seeds"; }
    void read_state() {
        std::ifstream in(state_file());
        std::string name;
        for (std::uint64_t next = 0; in >> name >> next;) state_[name] = next;
    }
    // A run with a given seed does not change the others' position.
    void write_state() {
        if (plan_.seed != 0) return;
        for (const Line& line : lines_) state_[line.plan->name] = line.next;
        std::ofstream out(state_file());
        for (const auto& [name, next] : state_) out << name << ' ' << next << '\n';
    }

    // True when anything failed, or nothing was tried.
    bool print_table(double seconds) const {
        std::printf("\n| kind | tried | failed | cases | seconds | next seed |\n|---|---:|---:|---:|---:|---:|\n");
        std::uint64_t failed = 0, tried = 0;
        for (const Line& line : lines_) {
            if (!line.skipped.empty() && line.cases == 0 && line.failed == 0) {
                std::printf("| %s | skipped: %s | | | | |\n", line.plan->name.c_str(), line.skipped.c_str());
                continue;
            }
            if (line.cases == 0 && line.failed == 0) {
                std::printf("| %s | not reached | | | | |\n", line.plan->name.c_str());
                continue;
            }
            std::printf("| %s | %llu %s | %llu | %llu | %.0f | %llu |\n", line.plan->name.c_str(),
                        static_cast<unsigned long long>(line.tried), line.plan->what.c_str(),
                        static_cast<unsigned long long>(line.failed), static_cast<unsigned long long>(line.cases),
                        line.seconds, static_cast<unsigned long long>(line.next));
            failed += line.failed;
            tried += line.tried;
        }
        std::printf("\n%.1f minutes%s, %llu failed\n", seconds / 60, is_interrupted != 0 ? ", interrupted" : "",
                    static_cast<unsigned long long>(failed));
        if (tried == 0) std::printf("Nothing was tried.\n");
        return failed != 0 || tried == 0;
    }

    const Plan plan_;
    const fs::path failures_;
    std::map<std::string, std::uint64_t> state_;
    std::vector<Line> lines_;
};

}  // namespace

int drive(const Plan& plan) {
    ::signal(SIGINT, interrupt);
    ::signal(SIGTERM, interrupt);
    return Driver(plan).run();
}

}  // namespace soak

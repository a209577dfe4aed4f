// Owns the processes and the pipe between them; no child outlives the call that made it.
#include "tests/crash/kill_driver.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>

#include "tests/support/figures.h"

namespace testing_support {
namespace {

struct Message {
    std::uint32_t is_done = 0;
    RowOperation operation;
};

constexpr int kWorkEnded = 3;

void send(int descriptor, const Message& message) {
    // Shorter than PIPE_BUF: whole or not at all.
    while (::write(descriptor, &message, sizeof message) < 0) {
        if (errno != EINTR) ::_exit(kWorkEnded);
    }
}

// The result of one life of the program: the rows after all operations reported done, and the operation in progress.
struct Life {
    Rows rows;
    std::optional<RowOperation> under_way;
    std::uint64_t done = 0;

    void take(const Message& message) {
        if (message.is_done == 0) {
            under_way = message.operation;
        } else if (under_way) {
            perform(*under_way, rows);
            under_way.reset();
            ++done;
        }
    }
};

// Reads messages until `until`, or the end of the pipe. False at its end.
bool receive(int descriptor, std::chrono::steady_clock::time_point until, Life& life) {
    while (true) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
        struct pollfd ready {
            descriptor, POLLIN, 0
        };
        const int count = ::poll(&ready, 1, left > 0 ? static_cast<int>(left) : 0);
        if (count == 0) return true;
        if (count < 0) continue;
        Message message;
        const ssize_t got = ::read(descriptor, &message, sizeof message);
        if (got == 0) return false;
        if (got == sizeof message) life.take(message);
    }
}

std::string describe(const Rows& found, const Rows& expected) {
    std::string text;
    for (const auto& [key, version] : expected) {
        const auto there = found.find(key);
        if (there == found.end())
            text += " " + std::to_string(key) + " is missing;";
        else if (there->second != version)
            text += " " + std::to_string(key) + " has version " + std::to_string(there->second) + " of " +
                    std::to_string(version) + ";";
    }
    for (const auto& [key, version] : found) {
        if (!expected.contains(key)) text += " " + std::to_string(key) + " is too many;";
    }
    return text;
}

// Runs one life. False when the program could not be started or exited by itself.
bool live_and_die(const KilledProgram& program, std::uint32_t seed, std::chrono::microseconds span, Life& life) {
    int ends[2];
    if (::pipe(ends) != 0) return false;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) return false;
    if (child == 0) {
        ::close(ends[0]);
        try {
            Reporter reporter(ends[1]);
            program.work(reporter, life.rows, seed);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "the program failed: %s\n", error.what());
        }
        ::_exit(kWorkEnded);
    }
    ::close(ends[1]);
    receive(ends[0], std::chrono::steady_clock::now() + span, life);
    ::kill(child, SIGKILL);
    while (receive(ends[0], std::chrono::steady_clock::now() + std::chrono::seconds(1), life)) {
    }
    ::close(ends[0]);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace

void Reporter::begin(const RowOperation& operation) { send(descriptor_, {0, operation}); }
void Reporter::done() { send(descriptor_, {1, {}}); }

RowOperation some_operation(const Rows& rows, std::size_t most, std::uint32_t random) {
    const std::uint32_t choice = random % 4;
    const std::uint32_t version = random >> 8;
    if (rows.empty() || (choice < 2 && rows.size() < most)) {
        return {RowOperation::Kind::kAdd, rows.empty() ? 1 : rows.rbegin()->first + 1, version};
    }
    auto row = rows.begin();
    std::advance(row, (random >> 2) % rows.size());
    if (choice == 3) return {RowOperation::Kind::kDelete, row->first, 0};
    return {RowOperation::Kind::kUpdate, row->first, version};
}

void perform(const RowOperation& operation, Rows& rows) {
    if (operation.kind == RowOperation::Kind::kDelete)
        rows.erase(operation.key);
    else
        rows[operation.key] = operation.version;
}

std::uint64_t kill_repeatedly(const KilledProgram& program, int kills, std::chrono::milliseconds longest_life) {
    std::mt19937 random(1);
    Life life;
    for (int i = 0; i < kills; ++i) {
        const auto seed = static_cast<std::uint32_t>(random());
        const std::chrono::microseconds span(random() % static_cast<std::uint64_t>(longest_life.count() * 1000));
        if (!live_and_die(program, seed, span, life)) {
            ADD_FAILURE() << "life " << i << ": the program was not killed but ended by itself";
            break;
        }
        count_tried(Figure::kKills);
        const Rows found = program.read_back();
        Rows expected = life.rows;
        if (found != expected && life.under_way) perform(*life.under_way, expected);
        if (found != expected) {
            ADD_FAILURE() << "life " << i << ":" << describe(found, life.rows);
            break;
        }
        life.rows = found;
        life.under_way.reset();
        if (::testing::Test::HasFailure()) break;
    }
    return life.done;
}

}  // namespace testing_support

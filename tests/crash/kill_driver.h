// Kills a program at random moments, again and again on the same files, and compares what it finds afterwards with what
// the program had reported as done. The caller supplies the program: an engine or a whole component.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace testing_support {

// One change of one row. A row is its key and the version of its content; the program derives the columns from them.
struct RowOperation {
    enum class Kind : std::uint32_t { kAdd, kUpdate, kDelete };
    Kind kind = Kind::kAdd;
    std::int32_t key = 0;
    std::uint32_t version = 0;
};

using Rows = std::map<std::int32_t, std::uint32_t>;  // version by key

// The program's connection to its judge. When a call returns, the message has left the program.
class Reporter {
public:
    explicit Reporter(int descriptor) : descriptor_(descriptor) {}
    // Before an operation starts, and after it has reported success.
    void begin(const RowOperation& operation);
    void done();

private:
    int descriptor_;
};

struct KilledProgram {
    // Runs in its own process until it is killed; never returns by itself. `rows` is the content of the files.
    std::function<void(Reporter& reporter, const Rows& rows, std::uint32_t seed)> work;
    // Opens the files after a kill, checks them, closes them and returns their rows. Runs in the test's process.
    std::function<Rows()> read_back;
};

// A random next operation of a program that adds, changes and deletes, with about `most` rows at a time.
RowOperation some_operation(const Rows& rows, std::size_t most, std::uint32_t random);
void perform(const RowOperation& operation, Rows& rows);

// Runs `kills` lives of the program, each of at most `longest_life`. Fails the test when an operation reported done is
// missing, or anything has changed except the operation in progress. Returns the number of operations reported done.
std::uint64_t kill_repeatedly(const KilledProgram& program, int kills, std::chrono::milliseconds longest_life);

}  // namespace testing_support

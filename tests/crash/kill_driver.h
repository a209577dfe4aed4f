// Kills a program at random moments, again and again over the same files, and holds what it finds afterwards
// against what the program had said was done. What the program is, an engine or a whole component, is the
// caller's.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace testing_support {

// One change of one row. A row is its key and the version of its content; how the two become columns is the
// program's affair.
struct RowOperation {
    enum class Kind : std::uint32_t { kAdd, kUpdate, kDelete };
    Kind kind = Kind::kAdd;
    std::int32_t key = 0;
    std::uint32_t version = 0;
};

using Rows = std::map<std::int32_t, std::uint32_t>;  // version by key

// The program's line to its judge. A message is out of the program's hands when the call returns.
class Reporter {
public:
    explicit Reporter(int descriptor) : descriptor_(descriptor) {}
    // Before an operation is begun, and after it has reported success.
    void begin(const RowOperation& operation);
    void done();

private:
    int descriptor_;
};

struct KilledProgram {
    // Runs in a process of its own until it is killed; never returns by itself. `rows` is what the files hold.
    std::function<void(Reporter& reporter, const Rows& rows, std::uint32_t seed)> work;
    // Opens the files after a kill, checks them, closes them and returns their rows. Runs in the test's process.
    std::function<Rows()> read_back;
};

// The next operation of a program that adds, changes and deletes at random, some `most` rows at a time.
RowOperation some_operation(const Rows& rows, std::size_t most, std::uint32_t random);
void perform(const RowOperation& operation, Rows& rows);

// `kills` lives of the program, each of at most `longest_life`. Fails the test when an operation that was reported
// done is missing, or anything else has changed but the one that was under way. Returns how many were reported done.
std::uint64_t kill_repeatedly(const KilledProgram& program, int kills, std::chrono::milliseconds longest_life);

}  // namespace testing_support

// How far a long piece of work is, told to the person who waits for it: on standard error when that is a terminal, from
// a second on.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tools {

class Progress {
public:
    // `what`: of which there are `total`; 0: nobody knows.
    Progress(std::string what, std::uint64_t total);
    // Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step(std::uint64_t count = 1);
    // Where it becomes known, or is guessed better, in the course of the work.
    void set_total(std::uint64_t total) { total_ = total; }
    std::uint64_t done() const { return done_; }

    // Takes the line away until the next one is due, for what else goes to the terminal.
    static void make_room();

    // "12,000 rows, 40 %, 6,000 a second, 3 s left"
    static std::string text(const std::string& what, std::uint64_t done, std::uint64_t total, double seconds);

private:
    using Clock = std::chrono::steady_clock;

    void look();

    std::string what_;
    std::uint64_t total_;
    std::uint64_t done_ = 0;
    std::uint64_t next_look_ = 0;
    bool is_wanted_;
    Clock::time_point begin_;
    Clock::time_point shown_;
};

}  // namespace tools

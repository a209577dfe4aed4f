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
    // `among_rows`: rows go to standard output meanwhile, and a terminal that takes both would mix them.
    Progress(std::string what, std::uint64_t total, bool among_rows = false);
    // Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step(std::uint64_t count = 1);

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
    bool is_shown_ = false;
    Clock::time_point begin_;
    Clock::time_point shown_;
};

}  // namespace tools

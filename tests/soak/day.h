// A day in a studio: random operations on all tables through open gates, each reported to a witness.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "tests/soak/ledger.h"

namespace soak {

class Witness {
public:
    virtual ~Witness() = default;
    virtual void begun(const Operation& operation) = 0;
    virtual void succeeded(const Operation& operation) = 0;
    virtual void failed(const Operation& operation) = 0;
};

class Day {
public:
    // The same seed and the same results of the gates give the same day. `rows` is the content of the tables.
    Day(std::uint32_t seed, const StudioRows& rows);

    // One operation. Skips operations that cannot succeed because a table is nearly full, or empty.
    void step(const Gates& gates, Witness& witness);
    std::uint32_t random(std::uint32_t below) { return static_cast<std::uint32_t>(random_() % below); }

private:
    static constexpr std::size_t kMostRows = 8;

    void perform(const Gates& gates, Witness& witness, Operation operation);
    int some_variant(std::size_t table);

    std::mt19937 random_;
    std::vector<std::map<LONG, int>> rows_;  // variant by key of the rows that the day made; 0: an older row
};

}  // namespace soak

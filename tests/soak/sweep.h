// For kinds that go through every point of one day before the next: the seed encodes day and point, so that 300017 is
// point 17 of day 3.
#pragma once

#include <functional>

#include "tests/soak/kind.h"

namespace soak {

class Sweep {
public:
    explicit Sweep(Seed points_limit) : limit_(points_limit) {}

    // Calls `count_points(day)` once per day; `run_point(day, point)` returns the outcome of one. A day without points
    // is a failure.
    Outcome run(Seed seed, const std::function<Outcome(Seed day)>& count_points,
                const std::function<Outcome(Seed day, Seed point)>& run_point) {
        Seed day = seed / limit_;
        Seed point = seed % limit_;
        if (day != known_day_ || points_ == 0) {
            Outcome counted = count_points(day);
            if (!counted.failure.empty() || counted.tried == 0 || counted.tried >= limit_) {
                counted.failure =
                    "the undisturbed day failed: " + counted.failure + " points: " + std::to_string(counted.tried);
                counted.tried = 0;
                counted.next = (day + 1) * limit_;
                return counted;
            }
            known_day_ = day;
            points_ = counted.tried;
        }
        point %= points_;
        // Visits each point once, but not in order: a short run covers something of everything.
        constexpr Seed kStrides[] = {611953, 746773};
        const Seed stride = points_ % kStrides[0] != 0 ? kStrides[0] : kStrides[1];
        Outcome outcome = run_point(day, point * stride % points_);
        outcome.next = point + 1 < points_ ? day * limit_ + point + 1 : (day + 1) * limit_;
        return outcome;
    }

private:
    Seed limit_;
    Seed known_day_ = 0;
    Seed points_ = 0;
};

}  // namespace soak

// What the system costs, beside a floor: the least that anything doing the same could cost. Both sides of a
// comparison take turns in one run, a few milliseconds each, so that what disturbs the machine disturbs both;
// the least of each side's turns counts, because a disturbance only ever makes a turn slower.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace bench {

/// The most that a part of something larger may cost beside the same part of something smaller.
constexpr double kGrowthLimit = 1.25;

/// One side of a comparison.
struct Side {
    std::string name;
    std::function<void()> work;
    double parts = 1;  // by which the cost of `work` is divided: the exchanges of a transfer, say
};

/// One line a comparison, printed as soon as it is measured.
class Table {
public:
    /// `out` stays the caller's.
    explicit Table(FILE* out);

    /// Measures both sides, for a few seconds. `ours` may cost at most `limit` times the floor.
    void compare(const Side& ours, const Side& floor, double limit);

    /// The same of what was measured elsewhere, in one unit.
    void row(const std::string& what, double ours, const std::string& floor_name, double floor,
             const char* unit, double limit);

    /// False once a line was over its limit.
    bool within_limits() const { return within_limits_; }

private:
    FILE* const out_;
    bool within_limits_ = true;
};

/// Makes the compiler believe that a value was read and memory written here, so that work without a visible
/// result is not left out.
inline void keep(const void* value) {
    asm volatile("" : : "r"(value) : "memory");
}

/// A side that cannot do its work makes the whole run worthless: says why on standard error and ends the
/// program with status 2.
[[noreturn]] void give_up(const std::string& why);

}  // namespace bench

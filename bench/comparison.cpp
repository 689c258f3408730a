#include "comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

// A turn is long enough for the clock's own cost to vanish in it, and shorter than most disturbances.
constexpr Microseconds kTurn(5000);
// A comparison ends when as much time again as the last improvement took has brought none worth the name. On
// a busy machine a long turn seldom goes undisturbed, so what seems to be over its limit gets more of them.
constexpr Microseconds kShortest(1.5e6);
constexpr Microseconds kLongest(15e6);
constexpr int kFewestTurns = 100;
constexpr double kImprovement = 0.99;

class Contestant {
public:
    explicit Contestant(const Side& side) : side_(side) {
        // What is slow only the first time makes no turn of too few.
        while (std::min(turn(repeats_), turn(repeats_)) < kTurn)
            repeats_ *= 2;
    }

    /// True when this turn was clearly the best yet.
    bool take_turn() {
        const double cost = turn(repeats_).count() / repeats_ / side_.parts;
        const bool improved = cost < best_ * kImprovement;
        best_ = std::min(best_, cost);
        return improved;
    }

    double best() const { return best_; }

private:
    Microseconds turn(int repeats) const {
        const auto start = Clock::now();
        for (int i = 0; i < repeats; ++i)
            side_.work();
        return Clock::now() - start;
    }

    const Side& side_;
    int repeats_ = 1;
    double best_ = 1e12;
};

}  // namespace

Table::Table(FILE* out) : out_(out) {
    fprintf(out_, "%-38s %12s   %-38s %12s %8s %6s\n", "what", "ours", "compared with", "floor", "ratio",
            "limit");
}

void Table::compare(const Side& ours, const Side& floor, double limit) {
    Contestant our_turn(ours);
    Contestant floor_turn(floor);
    const auto start = Clock::now();
    Microseconds elapsed(0);
    Microseconds last_improvement(0);
    bool is_done = false;
    for (int turns = 1; !is_done; ++turns) {
        const bool ours_improved = our_turn.take_turn();
        const bool floor_improved = floor_turn.take_turn();
        elapsed = Clock::now() - start;
        if (ours_improved || floor_improved)
            last_improvement = elapsed;
        const bool is_settled = turns >= kFewestTurns && elapsed >= std::max(kShortest, 2 * last_improvement);
        const bool is_within = our_turn.best() <= limit * floor_turn.best();
        is_done = elapsed >= kLongest || (is_settled && is_within);
    }
    row(ours.name, our_turn.best(), floor.name, floor_turn.best(), "us", limit);
}

void Table::row(const std::string& what, double ours, const std::string& floor_name, double floor,
                const char* unit, double limit) {
    const double ratio = ours / floor;
    const bool is_over = !(ratio <= limit);
    within_limits_ &= !is_over;
    fprintf(out_, "%-38s %9.2f %-2s   %-38s %9.2f %-2s %8.2f %6.2f%s\n", what.c_str(), ours, unit,
            floor_name.c_str(), floor, unit, ratio, limit, is_over ? "  OVER" : "");
    fflush(out_);
}

void give_up(const std::string& why) {
    fprintf(stderr, "vxk-bench: %s\n", why.c_str());
    exit(2);
}

}  // namespace bench

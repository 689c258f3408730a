#include "road.h"

#include <algorithm>
#include <climits>

namespace seam {

Milliseconds left_until(Clock::time_point deadline) {
    return std::max(std::chrono::ceil<Milliseconds>(deadline - Clock::now()), Milliseconds::zero());
}

int poll_limit(Clock::time_point deadline) {
    return static_cast<int>(std::min<int64_t>(left_until(deadline).count(), INT_MAX));
}

}  // namespace seam

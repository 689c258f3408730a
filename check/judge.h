// From what the tool printed to a verdict.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "process.h"
#include "verdicts.h"

namespace check {

/// The values are the exit statuses of vxk-check.
enum class Verdict { kSuccess = 0, kFailure = 1, kRefused = 2, kTimeout = 3, kDied = 4 };

/// "success", "failure", "refused", "timeout" or "died"
const char* verdict_name(Verdict verdict);

struct Judgement {
    Verdict verdict = Verdict::kSuccess;
    std::string reason;  ///< one line; empty for a success
    nlohmann::ordered_json values = nlohmann::ordered_json::object();
    int modem_result = 0;  ///< with which the modem refused; 0 when it did not
};

/// What a run of the command means. `row` is the command's, null when there is none. `limit` is named
/// in a reason.
Judgement judge(const Row* row, const Run& run, std::chrono::milliseconds limit);

/// Whether a text stands in a line of the answer; the tool's diagnostics are no part of it.
bool answer_has(const Run& run, const std::string& text);

}  // namespace check

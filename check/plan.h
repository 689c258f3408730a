// A plan: commands that are run on many handsets at once.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "command_check.h"

namespace check {

/// A line of a plan: "name: words => TEXT"; name and TEXT may be missing.
struct Step {
    std::string name;  ///< the words, where none is given
    std::vector<std::string> words;
    std::string expect;
};

/// Thrown for a plan that is missing or wrong; what() is one line with the place.
class PlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a plan. Words may stand in quotes, '#' begins a comment, and an empty line is none.
std::vector<Step> read_plan(const std::string& path);

/// What a plan brought on one handset, a result for each step.
struct HandsetResults {
    std::string name;
    std::vector<Result> results;
};

/// Runs the steps on all handsets at once, on each in their order, whatever becomes of the earlier ones.
/// `progress` is called after each step with the number of those that are done, one call at a time. An
/// interrupt ends it early: then steps have no result. Where the rules ask for proofs, steps that have none
/// are taken as they are.
std::vector<HandsetResults> run_plan(const std::vector<Handset>& handsets, const std::vector<Step>& steps,
                                     const Rules& rules, const std::function<void(size_t done)>& progress);

/// The worst of all verdicts.
Verdict worst(const std::vector<HandsetResults>& handsets);
Verdict worst(const HandsetResults& handset);

/// The name of a handset's worst verdict; "unfinished" where steps have no result.
std::string verdict_of(const HandsetResults& handset, const std::vector<Step>& steps);

}  // namespace check

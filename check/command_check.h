// One command, run and judged.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "judge.h"
#include "target.h"

namespace check {

/// How commands are checked.
struct Rules {
    std::chrono::milliseconds limit{10000};  ///< of each run of the tool
    bool verify = false;                     ///< read back what was written
    std::string expect;                      ///< must stand in the answer; empty: anything may
};

struct Result {
    std::vector<std::string> command;
    Judgement judgement;
    Run run;
};

/// Runs the command on the handset, judges it, and proves it where the rules ask for it. Any thread.
Result check_command(const Handset& handset, const std::vector<std::string>& words, const Rules& rules);

/// The object that scripts read.
nlohmann::ordered_json result_json(const Result& result);

/// JSON in one line; bytes that are no UTF-8 become replacement characters.
std::string json_text(const nlohmann::ordered_json& json);

/// The command's words with blanks between them, as a shell takes them.
std::string command_text(const std::vector<std::string>& words);

}  // namespace check

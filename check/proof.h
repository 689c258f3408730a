// Proves by reading back that a command did what it said.
#pragma once

#include <string>
#include <vector>

#include "judge.h"
#include "verdicts.h"

namespace check {

/// The command that reads back what `words` changed; empty when nothing can be read back.
std::vector<std::string> proof_command(const Row& row, const std::vector<std::string>& words);

/// What is wrong with what was read back; empty when it proves the command.
std::string proof_complaint(const Row& row, const std::vector<std::string>& words, const Judgement& written,
                            const Judgement& read);

}  // namespace check

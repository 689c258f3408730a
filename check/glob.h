// The patterns of the verdict table, and lines of output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace check {

/// Whether the whole line is what the pattern says; '*' stands for any text, every other
/// character for itself.
bool glob_matches(std::string_view pattern, std::string_view line);

/// The text that the pattern's last '*' stands for; the line must match.
std::string_view glob_tail(std::string_view pattern, std::string_view line);

/// Lines without their ends; a carriage return before the end belongs to it. An unfinished last line counts.
std::vector<std::string> split_lines(std::string_view text);

/// Whether a line is a diagnostic of the tool and no part of its answer.
bool is_log_line(std::string_view line);

bool starts_with(std::string_view text, std::string_view beginning);

}  // namespace check

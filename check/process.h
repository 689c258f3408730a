// Runs a program under a time limit and keeps what it prints.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace check {

/// What became of a program.
struct Run {
    std::string out;
    std::string err;
    bool cut = false;        ///< there was more output than is kept
    bool timed_out = false;  ///< it was killed at the time limit
    int exit_status = -1;    ///< -1 when a signal ended it, or when it never started
    int signal = 0;          ///< that ended it
    int start_error = 0;     ///< errno of a start that failed
    std::chrono::milliseconds duration{0};
};

/// Runs argv (looked up in PATH) with `settings` ("NAME=VALUE") in its environment and nothing on
/// standard input. At the time limit, and when this program is interrupted, its whole process group is
/// killed. Any thread.
Run run_process(const std::vector<std::string>& argv, const std::vector<std::string>& settings,
                std::chrono::milliseconds limit);

/// From now on SIGINT and SIGTERM end the running programs; interrupted() tells so.
void catch_interrupts();

/// The signal that interrupted this program; 0 for none.
int interrupted();

/// Sleeps, but not beyond an interrupt.
void sleep_until(std::chrono::steady_clock::time_point time);

/// "SIGKILL"
std::string signal_name(int signal);

}  // namespace check

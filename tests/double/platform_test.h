// Unit tests against the double of the seam: a test that derives from PlatformTest starts with a fresh
// double. Also what tests do with the lines that the code under test prints.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform_double.h"

class PlatformTest : public testing::Test {
protected:
    PlatformTest();
    ~PlatformTest() override;

    /// What `action` prints on standard output.
    static std::string printed_by(const std::function<void()>& action);
};

/// Runs a command group on the command line "vxk" and the words of a line. Returns its result.
int run_line(int (*group)(int argc, char** argv), const std::string& line);

/// Text with the numbers of "RIL[function:line]" replaced by '#'.
std::string mask_lines(const std::string& text);

/// Text with what stands before the messages of log lines, "RIL[function:line]: ", taken off.
std::string without_sites(const std::string& text);

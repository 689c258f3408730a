#include "platform_test.h"

#include <cstdio>
#include <iterator>
#include <regex>
#include <sstream>

PlatformTest::PlatformTest() {
    renew_platform();
}

PlatformTest::~PlatformTest() {
    fail_malloc(0);
}

std::string PlatformTest::printed_by(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

int run_line(int (*group)(int argc, char** argv), const std::string& line) {
    std::istringstream stream("vxk " + line);
    std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    return group(static_cast<int>(words.size()), argv.data());
}

std::string mask_lines(const std::string& text) {
    return std::regex_replace(text, std::regex("RIL\\[([^:\\]]*):\\d+\\]"), "RIL[$1:#]");
}

std::string without_sites(const std::string& text) {
    return std::regex_replace(text, std::regex("RIL\\[[^:]*:\\d+\\]: "), "");
}

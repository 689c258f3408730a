// What a profile says of the AT terminal: answers of its own, and lines that come unasked.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace handset {

class Section;

/// The answer to a whole line, instead of what the terminal would do.
struct AtAnswer {
    std::string command;  // in its normal form
    std::vector<std::string> lines;
    std::string result = "OK";
    std::chrono::milliseconds delay{0};
    bool silent = false;  // none comes
};

struct AtUnsolicited {
    std::string line;
    std::chrono::milliseconds after{0};  // the boot
    std::chrono::milliseconds every{0};
    uint32_t count = 1;
};

struct AtProfile {
    std::vector<AtAnswer> answers;
    std::vector<AtUnsolicited> unsolicited;
};

void read_profile(Section& section, AtProfile& at);

/// Takes the answers that a section has in place of these.
void read_answers(Section& section, std::vector<AtAnswer>& answers);

}  // namespace handset

// The handset's profile: the input is the file. It is read, or refused with a line that begins with its name.
#include <string>

#include "error.h"
#include "finding.h"
#include "profile.h"
#include "subjects.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        handset::parse_profile(std::string(data, data + size), "profile.json");
    } catch (const handset::Error& error) {
        const std::string line = error.what();
        require(line.rfind("profile.json", 0) == 0, "a refusal names the file first");
        require(line.find('\n') == std::string::npos, "a refusal is one line");
    }
    return 0;
}

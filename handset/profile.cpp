#include "profile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace handset {
namespace {

constexpr size_t kMostFaults = 1000;
// What comes out of a pipe or a device may have no end.
constexpr size_t kLongestProfile = 16 * 1024 * 1024;

}  // namespace

Profile parse_profile(const std::string& text, const std::string& name) {
    Profile profile;
    read_sections(text, name, [&profile](Section& root) {
        root.object("modem", [&](Section& section) { read_profile(section, profile.modem); });
        root.object("efs", [&](Section& section) { read_profile(section, profile.efs); });
        root.object("cards", [&](Section& section) { read_profile(section, profile.cards); });
        root.object("euicc", [&](Section& section) { read_profile(section, profile.euicc); });
        root.object("uim", [&](Section& section) { read_profile(section, profile.uim); });
        root.object("statistics", [&](Section& section) { read_profile(section, profile.statistics); });
        root.object("debug", [&](Section& section) { read_profile(section, profile.debug); });
        root.object("sar", [&](Section& section) { read_profile(section, profile.sar); });
        root.object("at", [&](Section& section) { read_profile(section, profile.at); });
        root.object("diag", [&](Section& section) { read_profile(section, profile.diag); });
        root.list("faults", kMostFaults,
                  [&](Section& section) { read_profile(section, profile.faults.emplace_back()); });
    });
    return profile;
}

Profile load_profile(const std::string& path) {
    const bool standard_input = path == "-";
    const std::string name = standard_input ? "standard input" : path;
    const int fd = standard_input ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::string text;
    std::array<char, 65536> buffer;
    ssize_t count = fd < 0 ? -1 : 1;
    while (count > 0 && text.size() <= kLongestProfile) {
        count = read(fd, buffer.data(), buffer.size());
        if (count > 0)
            text.append(buffer.data(), static_cast<size_t>(count));
    }
    const int error = errno;
    if (fd >= 0)
        close(fd);
    if (count < 0)
        throw system_error("cannot read the profile " + name, error);
    if (text.size() > kLongestProfile)
        throw Error("the profile " + name + " is longer than " + std::to_string(kLongestProfile) + " bytes");
    return parse_profile(text, name);
}

}  // namespace handset

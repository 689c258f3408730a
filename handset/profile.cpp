#include "profile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "subjects.h"

namespace handset {
namespace {

// What comes out of a pipe or a device may have no end.
constexpr size_t kLongestProfile = 16 * 1024 * 1024;

}  // namespace

Profile parse_profile(const std::string& text, const std::string& name) {
    Profile profile;
    profile.text = text;
    read_sections(text, name, [&profile](Section& root) { read_profile(root, profile); });
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

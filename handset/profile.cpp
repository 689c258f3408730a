#include "profile.h"

#include <cstring>

#include "diag_packet.h"
#include "folder.h"

namespace handset {
namespace {

constexpr size_t kMostFaults = 1000;

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
        root.object("diag", [&](Section& section) { read_profile(section, profile.diag); });
        root.list("faults", kMostFaults, [&](Section& section) {
            read_profile(section, profile.faults.emplace_back(), read_diag_op);
        });
    });
    return profile;
}

Profile load_profile(const std::string& path) {
    int error = 0;
    const auto content = read_file(path, error);
    if (!content)
        throw system_error("cannot read the profile " + path, error);
    return parse_profile(std::string(content->begin(), content->end()), path);
}

}  // namespace handset

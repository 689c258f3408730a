#include "modem_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "folder.h"
#include "profile_section.h"

namespace handset {
namespace {

ModemResult result_of(int error) {
    switch (error) {
        case 0:
            return kModemOk;
        case ENOENT:
        case ENOTDIR:
            return kModemNoSuchFile;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return kModemNoRoom;
        default:
            return kModemRefused;
    }
}

// The components of a path, joined again: no leading, doubled or trailing slashes, no ".". Nothing when ".."
// is in it.
std::optional<std::string> plain_path(std::string_view path) {
    std::string plain;
    while (!path.empty()) {
        const size_t end = std::min(path.find('/'), path.size());
        const std::string_view component = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (component == "..")
            return std::nullopt;
        if (component.empty() || component == ".")
            continue;
        if (!plain.empty())
            plain += '/';
        plain += component;
    }
    return plain;
}

}  // namespace

void read_profile(Section& section, EfsProfile& efs) {
    section.integer("file_max", efs.file_max);
    section.texts("read_only", efs.read_only, 100);
    for (std::string& path : efs.read_only) {
        const auto plain = plain_path(path);
        if (!plain || plain->empty())
            section.fail("read_only", "\"" + path + "\" is not a path in the EFS");
        path = *plain;
    }
}

ModemFileName ModemFiles::efs_name(unsigned subscription, std::string_view path) const {
    if (!path.empty() && path.back() == '\0')
        path.remove_suffix(1);
    if (subscription >= kSubscriptions || path.find('\0') != std::string_view::npos)
        return {kModemMalformed, ""};
    const auto plain = plain_path(path);
    if (!plain)
        return {kModemRefused, ""};
    if (plain->empty())
        return {kModemMalformed, ""};
    return {kModemOk, "efs/" + std::to_string(subscription) + "/" + *plain};
}

ModemFileName ModemFiles::nv_name(unsigned subscription, unsigned item) const {
    if (subscription >= kSubscriptions || item > kLastNvItem)
        return {kModemMalformed, ""};
    return {kModemOk, "nv/" + std::to_string(subscription) + "/" + std::to_string(item)};
}

ModemResult ModemFiles::read(const std::string& name, wire::Bytes& content) const {
    int error = 0;
    if (auto found = read_file(folder_.at(name), error))
        content = std::move(*found);
    return result_of(error);
}

ModemResult ModemFiles::may_write(const std::string& name, size_t length) const {
    if (is_read_only(name))
        return kModemRefused;
    return length > profile_.file_max ? kModemNoRoom : kModemOk;
}

ModemResult ModemFiles::write(const std::string& name, wire::View content) {
    const ModemResult allowed = may_write(name, content.size);
    if (allowed != kModemOk)
        return allowed;
    const ModemResult result = result_of(folder_.replace(folder_.at(name), content));
    // A file stands where the path needs a folder.
    return result == kModemNoSuchFile ? kModemRefused : result;
}

ModemResult ModemFiles::remove(const std::string& name) {
    if (is_read_only(name))
        return kModemRefused;
    return unlink(folder_.at(name).c_str()) == 0 ? kModemOk : result_of(errno);
}

bool ModemFiles::is_read_only(const std::string& name) const {
    constexpr size_t kPathStart = sizeof "efs/0/" - 1;
    if (name.compare(0, 4, "efs/") != 0)
        return false;
    const std::string_view path = std::string_view(name).substr(kPathStart);
    return std::any_of(profile_.read_only.begin(), profile_.read_only.end(),
                       [path](const std::string& prefix) {
                           return path.substr(0, prefix.size()) == prefix &&
                                  (path.size() == prefix.size() || path[prefix.size()] == '/');
                       });
}

}  // namespace handset

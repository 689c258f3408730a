#include "cutils/properties.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "file.h"
#include "layout.h"
#include "unique_fd.h"

namespace seam {

namespace {

constexpr size_t kValueMax = PROPERTY_VALUE_MAX - 1;

// A leading dot is for files being written. A slash would leave the folder.
bool is_name(const char* key) {
    return key && *key && *key != '.' && !strchr(key, '/') && strlen(key) < NAME_MAX - 32;
}

std::string properties_folder() {
    return host::handset_folder() + "/" + host::kPropertiesPlace;
}

/// The stored value, or an empty one. A line end that an editor or a shell put behind it is not part of it.
std::string read_value(const char* key) {
    const host::UniqueFd file(open((properties_folder() + "/" + key).c_str(), O_RDONLY | O_CLOEXEC));
    char value[PROPERTY_VALUE_MAX + 1] = "";
    const ssize_t size = file ? read(file.get(), value, kValueMax + 1) : 0;
    value[size > 0 ? size : 0] = '\0';
    value[strcspn(value, "\n")] = '\0';
    return std::string(value).substr(0, kValueMax);
}

bool replace_value(const char* key, const char* value) {
    const std::string folder = properties_folder();
    const std::string beside = folder + "/." + key + "." + std::to_string(gettid());
    mkdir(folder.c_str(), 0700);
    return host::replace_file(folder + "/" + key, beside, value, strlen(value)) == 0;
}

bool remove_value(const char* key) {
    return unlink((properties_folder() + "/" + key).c_str()) == 0 || errno == ENOENT;
}

}  // namespace

}  // namespace seam

extern "C" int property_get(const char* key, char* value, const char* default_value) {
    std::string text;
    if (seam::is_name(key))
        text = seam::read_value(key);
    if (text.empty() && default_value)
        text = std::string(default_value, strnlen(default_value, seam::kValueMax));
    memcpy(value, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

extern "C" int property_set(const char* key, const char* value) {
    const size_t size = value ? strlen(value) : 0;
    if (!seam::is_name(key) || size > seam::kValueMax)
        return -1;
    const bool stored = size == 0 ? seam::remove_value(key) : seam::replace_value(key, value);
    return stored ? 0 : -1;
}

#include "cutils/properties.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "modem.h"

namespace seam {

namespace {

constexpr size_t kValueMax = PROPERTY_VALUE_MAX - 1;

// A leading dot is for files being written, a leading dash for options of programs. A slash would
// leave the folder.
bool is_name(const char* key) {
    return key != nullptr && *key != '\0' && strchr(".-", *key) == nullptr && strchr(key, '/') == nullptr &&
           strlen(key) < NAME_MAX - 32;
}

}  // namespace

}  // namespace seam

extern "C" int property_get(const char* key, char* value, const char* default_value) {
    std::string text;
    if (seam::is_name(key))
        text = seam::modem()->properties->get(key);
    if (text.empty() && default_value != nullptr)
        text = default_value;
    text.resize(std::min(text.size(), seam::kValueMax));
    memcpy(value, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

extern "C" int property_set(const char* key, const char* value) {
    const std::string text = value != nullptr ? value : "";
    if (!seam::is_name(key) || text.size() > seam::kValueMax)
        return -1;
    return seam::modem()->properties->set(key, text) ? 0 : -1;
}

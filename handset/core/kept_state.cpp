#include "kept_state.h"

#include <charconv>
#include <sstream>
#include <utility>

#include "error.h"
#include "folder.h"

namespace handset {

KeptState::KeptState(Folder& folder, std::string subject) : folder_(folder), subject_(std::move(subject)) {
    std::istringstream file(read_text(folder_.at("kept/" + subject_)).value_or(""));
    for (std::string line; std::getline(file, line);) {
        const size_t end = line.find(' ');
        lines_[line.substr(0, end)] = end == std::string::npos ? "" : line.substr(end + 1);
    }
}

uint64_t KeptState::number(const std::string& key, uint64_t otherwise) const {
    const auto found = lines_.find(key);
    uint64_t number = otherwise;
    if (found != lines_.end())
        std::from_chars(found->second.data(), found->second.data() + found->second.size(), number);
    return number;
}

void KeptState::keep(const std::string& key, uint64_t number) {
    auto lines = lines_;
    lines[key] = std::to_string(number);
    std::string text;
    for (const auto& line : lines)
        text.append(line.first).append(1, ' ').append(line.second).append(1, '\n');
    const std::string path = folder_.at("kept/" + subject_);
    if (const int error = folder_.replace(path, text))
        return complain(system_error("cannot write " + path, error).what());
    lines_ = std::move(lines);
}

uint64_t KeptState::count_up(const std::string& key) {
    const uint64_t count = number(key, 0) + 1;
    keep(key, count);
    return count;
}

}  // namespace handset

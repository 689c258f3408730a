#include "state_board.h"

#include <unistd.h>

#include <filesystem>

#include "folder.h"

namespace handset {
namespace {

StateLines parse_lines(const std::string& text) {
    StateLines lines;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        const size_t tab = text.find('\t', start);
        if (tab < end)
            lines.emplace_back(text.substr(start, tab - start), text.substr(tab + 1, end - tab - 1));
        start = end + 1;
    }
    return lines;
}

}  // namespace

std::map<std::string, StateLines> read_states(const std::string& folder) {
    std::map<std::string, StateLines> states;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder + "/state", ignored)) {
        if (const auto text = read_text(entry.path().string()))
            states[entry.path().filename().string()] = parse_lines(*text);
    }
    return states;
}

StateBoard::StateBoard(Folder& folder) : folder_(folder), states_(read_states(folder.path())) {}

void StateBoard::set(const std::string& subject, const std::string& name, const std::string& value) {
    StateLines& lines = states_[subject];
    bool known = false;
    for (auto& line : lines) {
        if (line.first == name) {
            line.second = value;
            known = true;
        }
    }
    if (!known)
        lines.emplace_back(name, value);
    std::string text;
    for (const auto& line : lines)
        text.append(line.first).append(1, '\t').append(line.second).append(1, '\n');
    folder_.replace(folder_.at("state/" + subject), text);
}

std::optional<std::string> StateBoard::get(const std::string& subject, const std::string& name) const {
    const auto found = states_.find(subject);
    if (found == states_.end())
        return std::nullopt;
    for (const auto& line : found->second) {
        if (line.first == name)
            return line.second;
    }
    return std::nullopt;
}

void StateBoard::clear(const std::string& subject) {
    if (states_.erase(subject) != 0)
        unlink(folder_.at("state/" + subject).c_str());
}

}  // namespace handset

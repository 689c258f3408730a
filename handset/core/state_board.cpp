#include "state_board.h"

#include <algorithm>
#include <sstream>

#include "folder.h"

namespace handset {
namespace {

constexpr char kFile[] = "state/board";

}  // namespace

std::map<std::string, StateLines> read_states(const std::string& folder) {
    std::map<std::string, StateLines> states;
    std::istringstream file(read_text(folder + "/" + kFile).value_or(""));
    for (std::string line; std::getline(file, line);) {
        const size_t name = std::min(line.find('\t'), line.size() - 1) + 1;
        const size_t value = std::min(line.find('\t', name), line.size() - 1) + 1;
        if (name > 1 && value > name)
            states[line.substr(0, name - 1)].emplace_back(line.substr(name, value - name - 1),
                                                          line.substr(value));
    }
    return states;
}

void StateBoard::set(const std::string& subject, const std::string& name, const std::string& value) {
    StateLines& lines = states_[subject];
    const auto known =
        std::find_if(lines.begin(), lines.end(), [&name](const auto& line) { return line.first == name; });
    if (known == lines.end())
        lines.emplace_back(name, value);
    else if (known->second != value)
        known->second = value;
    else
        return;
    changed_ = true;
}

void StateBoard::clear(const std::string& subject) {
    if (states_.erase(subject) != 0)
        changed_ = true;
}

void StateBoard::flush() {
    if (!changed_)
        return;
    std::string text;
    for (const auto& subject : states_) {
        for (const auto& line : subject.second)
            text.append(subject.first)
                .append(1, '\t')
                .append(line.first)
                .append(1, '\t')
                .append(line.second)
                .append(1, '\n');
    }
    // Shown or not, the handset works on; the next change tries again.
    folder_.replace(folder_.at(kFile), text);
    changed_ = false;
}

}  // namespace handset

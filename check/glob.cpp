#include "glob.h"

#include <algorithm>
#include <array>

namespace check {

bool glob_matches(std::string_view pattern, std::string_view line) {
    size_t at = 0;
    size_t in_line = 0;
    size_t star = std::string_view::npos;
    size_t resume = 0;
    while (in_line < line.size()) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            resume = in_line;
        } else if (at < pattern.size() && pattern[at] == line[in_line]) {
            ++at;
            ++in_line;
        } else if (star != std::string_view::npos) {
            // Only the last star ever takes more: what stands before it has matched as early as it can.
            at = star + 1;
            in_line = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

std::string_view glob_tail(std::string_view pattern, std::string_view line) {
    const size_t star = pattern.rfind('*');
    if (star == std::string_view::npos)
        return {};
    const std::string_view behind = pattern.substr(star + 1);
    const size_t end = line.size() - behind.size();
    const size_t before = pattern.rfind('*', star == 0 ? 0 : star - 1);
    const bool only_star = star == 0 || before == std::string_view::npos;
    if (only_star)
        return line.substr(star, end - star);
    const std::string_view middle = pattern.substr(before + 1, star - before - 1);
    const size_t found = line.substr(0, end).rfind(middle);
    return line.substr(found + middle.size(), end - found - middle.size());
}

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool is_log_line(std::string_view line) {
    constexpr std::array<std::string_view, 4> kBeginnings = {"RIL[", "KELVRA_", "QMI client inited",
                                                             "kelvra_extend_qmi_handle_req_cb "};
    return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                       [line](std::string_view beginning) { return starts_with(line, beginning); }) ||
           glob_matches("kelvra_extend_qmi_send_sync resp_len:*", line);
}

bool starts_with(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace check

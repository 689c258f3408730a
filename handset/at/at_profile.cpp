#include "at_profile.h"

#include <algorithm>

#include "at_line.h"
#include "profile_section.h"

namespace handset {
namespace {

constexpr size_t kMostEntries = 1000;
constexpr size_t kMostLines = 1000;
constexpr size_t kLongestLine = AtLineReader::kLineMax;
constexpr uint32_t kLongestTimeMs = 86'400'000;

void read_time(Section& section, const char* key, std::chrono::milliseconds& time) {
    auto number = static_cast<uint32_t>(time.count());
    section.integer<uint32_t>(key, number, 0, kLongestTimeMs);
    time = std::chrono::milliseconds(number);
}

// A line break or another control character would make two lines of one.
void require_printable(const Section& section, const char* key, const std::string& text) {
    if (std::any_of(text.begin(), text.end(), [](char c) { return static_cast<uint8_t>(c) < ' '; }))
        section.fail(key, "a control character in a line");
}

void read_answer(Section& section, AtAnswer& answer) {
    section.require("command");
    section.text("command", answer.command, kLongestLine);
    require_printable(section, "command", answer.command);
    answer.command = normal_at_text(answer.command);
    if (answer.command.compare(0, 2, "AT") != 0)
        section.fail("command", "a command line begins with AT");
    section.texts("lines", answer.lines, kMostLines);
    for (const std::string& line : answer.lines)
        require_printable(section, "lines", line);
    section.text("result", answer.result, kLongestLine);
    require_printable(section, "result", answer.result);
    read_time(section, "delay_ms", answer.delay);
    section.boolean("silent", answer.silent);
}

void read_unsolicited(Section& section, AtUnsolicited& unsolicited) {
    section.require("line");
    section.text("line", unsolicited.line, kLongestLine);
    require_printable(section, "line", unsolicited.line);
    read_time(section, "after_ms", unsolicited.after);
    read_time(section, "every_ms", unsolicited.every);
    section.integer<uint32_t>("count", unsolicited.count, 1);
}

}  // namespace

void read_answers(Section& section, std::vector<AtAnswer>& answers) {
    if (section.has("answers"))
        answers.clear();
    section.list("answers", kMostEntries,
                 [&answers](Section& entry) { read_answer(entry, answers.emplace_back()); });
}

void read_profile(Section& section, AtProfile& at) {
    read_answers(section, at.answers);
    section.list("unsolicited", kMostEntries,
                 [&at](Section& entry) { read_unsolicited(entry, at.unsolicited.emplace_back()); });
}

}  // namespace handset

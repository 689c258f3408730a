#include <algorithm>

#include "glob.h"
#include "reports.h"

namespace check {
namespace {

using Json = nlohmann::ordered_json;

// A value as a person reads it: text as it is, a list with commas, a measurement with its unit.
std::string value_text(const Json& value) {
    if (value.is_string())
        return value.get<std::string>();
    if (value.is_object())
        return value["value"].dump() +
               (value["unit"].is_null() ? "" : " " + value["unit"].get<std::string>());
    std::string text;
    if (!value.is_array())
        return value.dump();
    for (const Json& entry : value)
        text += (text.empty() ? "" : ",") + value_text(entry);
    return text;
}

void add_values(const Json& values, std::string& text) {
    for (const auto& [name, value] : values.items()) {
        if (value.is_object() && !value.contains("unit"))
            add_values(value, text);
        else
            text += "  " + name + ": " + value_text(value) + "\n";
    }
}

}  // namespace

std::vector<std::string> answer_lines(const Run& run) {
    std::vector<std::string> lines = split_lines(run.out);
    // The help says nothing of the run.
    const auto help = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return starts_with(line, "=========== blew: ");
    });
    lines.erase(help, lines.end());
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string& line) { return line.empty() || is_log_line(line); }),
                lines.end());
    return lines;
}

std::string report_text(const Result& result) {
    const Judgement& judgement = result.judgement;
    std::string text = std::string(verdict_name(judgement.verdict)) + ": vxk " +
                       command_text(result.command) + " (" + std::to_string(result.run.duration.count()) +
                       " ms)\n";
    if (!judgement.reason.empty())
        text += "  " + judgement.reason + "\n";
    add_values(judgement.values, text);
    if (judgement.verdict == Verdict::kSuccess)
        return text;
    for (const std::string& line : answer_lines(result.run))
        text += "  | " + line + "\n";
    for (const std::string& line : split_lines(result.run.err))
        text += "  ! " + line + "\n";
    return text;
}

}  // namespace check

#include <cstdio>

#include "reports.h"

namespace check {
namespace {

// A time as the format wants it.
std::string seconds(std::chrono::milliseconds duration) {
    char text[32];
    snprintf(text, sizeof text, "%.3f", static_cast<double>(duration.count()) / 1000);
    return text;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + markup_text(value) + "\"";
}

// A verdict that is about the handset is a failure; one about the test itself is an error.
const char* element_of(Verdict verdict) {
    return verdict == Verdict::kFailure ? "failure" : "error";
}

std::string test_case(const Step& step, const std::string& handset, const Result& result) {
    std::string text = "    <testcase" + attribute("name", step.name) + attribute("classname", handset) +
                       attribute("time", seconds(result.run.duration)) + ">\n";
    const Judgement& judgement = result.judgement;
    if (judgement.verdict != Verdict::kSuccess) {
        const std::string element = element_of(judgement.verdict);
        text += "      <" + element + attribute("type", verdict_name(judgement.verdict)) +
                attribute("message", judgement.reason) + "/>\n";
    }
    std::string output;
    for (const std::string& line : answer_lines(result.run))
        output += markup_text(line) + "\n";
    return text + "      <system-out>" + output + "</system-out>\n    </testcase>\n";
}

}  // namespace

std::string report_junit(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"vxk-check\">\n";
    for (const HandsetResults& handset : handsets) {
        std::string cases;
        size_t failures = 0;
        size_t errors = 0;
        std::chrono::milliseconds duration{0};
        for (size_t i = 0; i < handset.results.size(); ++i) {
            const Result& result = handset.results[i];
            const Verdict verdict = result.judgement.verdict;
            failures += verdict == Verdict::kFailure ? 1 : 0;
            errors += verdict == Verdict::kFailure || verdict == Verdict::kSuccess ? 0 : 1;
            duration += result.run.duration;
            cases += test_case(steps[i], handset.name, result);
        }
        text += "  <testsuite" + attribute("name", handset.name) +
                attribute("tests", std::to_string(handset.results.size())) +
                attribute("failures", std::to_string(failures)) +
                attribute("errors", std::to_string(errors)) + attribute("time", seconds(duration)) + ">\n" +
                cases + "  </testsuite>\n";
    }
    return text + "</testsuites>\n";
}

std::string markup_text(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '&':
                result += "&amp;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                // Bytes above ASCII may be cut from their characters; what the tool prints has none.
                result += (c >= ' ' && c < 0x7F) || c == '\t' ? c : '?';
        }
    }
    return result;
}

}  // namespace check

#include "command_check.h"

#include "glob.h"
#include "proof.h"

namespace check {
namespace {

using Json = nlohmann::ordered_json;

// The words that are run. Without the log two absent cards look like no answer at all.
std::vector<std::string> telling_form(const std::vector<std::string>& words) {
    std::vector<std::string> form = words;
    if (words.size() >= 4 && number_of(words[0]) == 5 && number_of(words[1]) == 10 &&
        number_of(words[2]) == 4)
        form[3] = "1";
    return form;
}

void fail(Judgement& judgement, const std::string& reason) {
    judgement.verdict = Verdict::kFailure;
    judgement.reason = reason;
}

void prove(const Handset& handset, const Row& row, const Rules& rules, Result& result) {
    const std::vector<std::string> command = proof_command(row, result.command);
    const Run run = run_tool(handset, command, rules.limit);
    const Judgement read = judge(find_row(command), run, rules.limit);
    const std::string complaint = proof_complaint(row, result.command, result.judgement, read);
    if (!complaint.empty())
        fail(result.judgement, "not proven by " + command_text(command) + ": " + complaint);
}

}  // namespace

Result check_command(const Handset& handset, const std::vector<std::string>& words, const Rules& rules) {
    Result result;
    result.command = words;
    const Row* row = find_row(words);
    if (rules.verify && row != nullptr && row->proof == Proof::kNone) {
        result.judgement.verdict = Verdict::kRefused;
        result.judgement.reason = "nothing can be read back after " + command_text(words);
        return result;
    }
    result.run = run_tool(handset, telling_form(words), rules.limit);
    result.judgement = judge(row, result.run, rules.limit);
    // Without the log the tool says no more.
    if (result.judgement.reason == "value=FAILED" && number_of(words[3]) == 0)
        result.judgement.reason += "; vxk " + command_text({words[0], words[1], words[2], "1"}) + " says why";
    if (result.judgement.verdict == Verdict::kSuccess && !rules.expect.empty() &&
        !answer_has(result.run, rules.expect))
        fail(result.judgement, "the answer has no \"" + rules.expect + "\"");
    if (result.judgement.verdict == Verdict::kSuccess && rules.verify)
        prove(handset, *row, rules, result);
    return result;
}

Json result_json(const Result& result) {
    const Judgement& judgement = result.judgement;
    const Run& run = result.run;
    return {
        {"command", result.command},
        {"verdict", verdict_name(judgement.verdict)},
        {"reason", judgement.reason.empty() ? Json() : Json(judgement.reason)},
        {"duration_ms", run.duration.count()},
        {"exit_status", run.exit_status < 0 ? Json() : Json(run.exit_status)},
        {"signal", run.signal == 0 ? Json() : Json(signal_name(run.signal))},
        {"values", judgement.values},
        {"stdout", split_lines(run.out)},
        {"stderr", split_lines(run.err)},
    };
}

std::string json_text(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string command_text(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + shell_quoted(word);
    return text;
}

}  // namespace check

#include "judge.h"

#include <algorithm>
#include <cstring>

#include "glob.h"

namespace check {
namespace {

using Lines = std::vector<std::string>;

// A line that tells why a command failed. '*' in the text is what the pattern's last '*' stood for.
struct Cause {
    const char* pattern;
    const char* text;
};

const char* const kSilent = "the modem did not answer within the tool's time-out";
const char* const kGone = "the modem's service went away";
const char* const kGarbled = "the modem's answer does not decode";

const Cause kCauses[] = {
    {"send msg sync failed:-3", kSilent},
    {"send msg sync failed:-2", kGone},
    {"send msg sync failed:-1", kGarbled},
    {"send msg sync failed:*", "the request could not be sent: error *"},
    {"* QMI service framework error. Check client", "the modem's service refused: result *"},
    {"* QMI client init failed", "no connection to the modem's service: error *"},
    {"RIL[*]: send msg sync client error = -3*", kSilent},
    {"RIL[*]: send msg sync client error = -2*", kGone},
    {"RIL[*]: send msg sync client error = -1*", kGarbled},
    {"RIL[*]: qmi_client_init UIM instance failed, qmi_client_error = *",
     "no connection to the UIM service: error *"},
    {"RIL[*]: qmi_client_init_instance failed, qmi_client_error = *",
     "no connection to the SAR service: error *"},
    {"RIL[*]: qmi_client_send_msg_sync failed, qmi_client_error = -3", kSilent},
    {"RIL[*]: qmi_client_send_msg_sync failed, qmi_client_error = -2", kGone},
    {"RIL[*]: qmi_client_send_msg_sync failed, qmi_client_error = -1", kGarbled},
    {"RIL[*]: dsi vailid = 0 , dsi value = *", "the modem's answer has no DSI"},
    {"kolvo qmi is not yet inited", "no connection to the statistics service"},
    {"Fail to get data fail, number = *, ret = 11, sub = *", kSilent},
    {"g_kolvo_data_left(*) is not enough for *", "the modem's value ends before *"},
    {"Fail to get data*", "no value from the modem*"},
    {"RIL[*]: get eid timeout", "no EID from the eUICC"},
    {"RIL[*]: stop waiting", "no diag response within the command's time"},
    {"RIL[*]: Fail to send diag cmd", "the diag command could not be sent"},
    {"RIL[*]: LSM init failed", "no connection to diag"},
    {"value=FAILED - *", "the EID's check digits are wrong: *"},
    {"================ CLOSED ===================", "the statistics feature is switched off"},
    {"Diag logs to be upgraded[num:*]:", "the statistics feature meets diag logs that it does not know: *"},
    {"UNKNOWN,UNKNOWN", "the modem's answer has no card states"},
};

// Results that the modem gives.
const Cause kResults[] = {
    {"-2", "no such file or item"}, {"-13", "refused"}, {"-22", "malformed request"}, {"-28", "no room"}};

const Cause kResultLines[] = {
    {"result = *, rsp.result = *", ""},
    {"RIL[*]: result = *, rsp.result = *", ""},
    {"RIL[*]: result = *, rsp.result[>=0 is instance id] = *", ""},
    {"qmi response fail, result = *, rsp.result = *", ""},
};

const std::string* find_line(const Lines& lines, const std::vector<const char*>& patterns) {
    for (const std::string& line : lines)
        for (const char* pattern : patterns)
            if (glob_matches(pattern, line))
                return &line;
    return nullptr;
}

std::string filled(const Cause& cause, const std::string& line) {
    std::string text = cause.text;
    const size_t star = text.find('*');
    if (star != std::string::npos)
        text.replace(star, 1, std::string(glob_tail(cause.pattern, line)));
    return text;
}

// The result that the modem gave in the last answer that has one; 0 for none.
int last_modem_result(const Lines& lines) {
    int result = 0;
    for (const std::string& line : lines)
        for (const Cause& shape : kResultLines)
            if (glob_matches(shape.pattern, line))
                result = number_of(std::string(glob_tail(shape.pattern, line)));
    return result;
}

std::string result_text(int result) {
    const std::string number = std::to_string(result);
    for (const Cause& known : kResults)
        if (number == known.pattern)
            return std::string("the modem answered: ") + known.text + " (" + number + ")";
    return "the modem answered with result " + number;
}

std::string why(const Lines& lines, const std::string& failure_line, int modem_result) {
    for (const Cause& cause : kCauses)
        for (const std::string& line : lines)
            if (glob_matches(cause.pattern, line))
                return filled(cause, line);
    return modem_result != 0 ? result_text(modem_result) : failure_line;
}

// A note without what is for a person who sees the help below it.
std::string note_text(const std::string& line) {
    std::string text = line;
    if (is_log_line(text))
        text.erase(0, text.find("]: ") + 3);
    for (const char* decoration : {"note: ", ", Pls refer to the following cmd:"}) {
        const size_t at = text.find(decoration);
        if (at != std::string::npos)
            text.erase(at, strlen(decoration));
    }
    while (!text.empty() && (text.back() == ':' || text.back() == ' '))
        text.pop_back();
    return text;
}

std::string end_text(const Run& run, const Lines& errors) {
    for (const std::string& line : errors)
        if (starts_with(line, "vxk: fatal: "))
            return line.substr(5);
    const std::string end = run.signal != 0 ? "killed by " + signal_name(run.signal)
                                            : "exit status " + std::to_string(run.exit_status);
    return errors.empty() ? end : end + ": " + errors.back();
}

Judgement failed(Verdict verdict, std::string reason) {
    Judgement judgement;
    judgement.verdict = verdict;
    judgement.reason = std::move(reason);
    return judgement;
}

// Of a run that came to its end by itself.
Judgement judge_lines(const Row* row, const Lines& lines, const Lines& errors) {
    if (const std::string* line = find_line(lines, refusals()))
        return failed(Verdict::kRefused, note_text(*line));
    if (row == nullptr)
        return failed(Verdict::kRefused, "the tool has no such command");
    // The one line that the tool writes there and that is no trouble says what it waits for.
    for (const std::string& line : errors)
        if (starts_with(line, "vxk: ") && !starts_with(line, "vxk: waiting for "))
            return failed(Verdict::kFailure, line.substr(5));

    Judgement judgement;
    judgement.modem_result = last_modem_result(lines);
    const std::string complaint = row->values.read(lines, judgement.values);
    const std::string* failure = find_line(lines, row->failure);
    const bool succeeded =
        row->success.empty() ? failure == nullptr : find_line(lines, row->success) != nullptr;
    if (succeeded && complaint.empty() && !lines.empty())
        return judgement;
    judgement.verdict = Verdict::kFailure;
    if (!complaint.empty())
        judgement.reason = complaint;
    else if (lines.empty())
        judgement.reason = "the tool printed nothing";
    else
        judgement.reason =
            why(lines, failure != nullptr ? note_text(*failure) : "the success line is missing",
                judgement.modem_result);
    return judgement;
}

}  // namespace

const char* verdict_name(Verdict verdict) {
    static const char* const kNames[] = {"success", "failure", "refused", "timeout", "died"};
    return kNames[static_cast<int>(verdict)];
}

Judgement judge(const Row* row, const Run& run, std::chrono::milliseconds limit) {
    const Lines lines = split_lines(run.out);
    const Lines errors = split_lines(run.err);
    if (run.start_error != 0)
        return failed(Verdict::kDied,
                      std::string("the tool could not be started: ") + strerror(run.start_error));
    if (run.timed_out) {
        char seconds[32];
        snprintf(seconds, sizeof seconds, "%g s", static_cast<double>(limit.count()) / 1000);
        std::string reason = std::string("no end within ") + seconds;
        for (const std::string& line : errors)
            if (starts_with(line, "vxk: waiting for "))
                reason += ": " + line.substr(5, line.find(':', 5) - 5);
        return failed(Verdict::kTimeout, reason);
    }
    if (run.signal != 0 || run.exit_status != 0)
        return failed(Verdict::kDied, end_text(run, errors));
    if (run.cut)
        return failed(Verdict::kFailure, "more output than the tool has in it");
    return judge_lines(row, lines, errors);
}

bool answer_has(const Run& run, const std::string& text) {
    const Lines lines = split_lines(run.out);
    return std::any_of(lines.begin(), lines.end(), [&text](const std::string& line) {
        return !is_log_line(line) && line.find(text) != std::string::npos;
    });
}

}  // namespace check

#include "plan.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <mutex>
#include <thread>

namespace check {
namespace {

[[noreturn]] void wrong(const std::string& path, int line, const std::string& what) {
    throw PlanError(path + ", line " + std::to_string(line) + ": " + what);
}

/// A word of a line, and what of it was in quotes.
struct Word {
    std::string text;
    bool quoted = false;       // any of it
    bool ends_quoted = false;  // its end
};

// Splits a line as a shell would, and drops its comment.
std::vector<Word> words_of(const std::string& line, const std::string& path, int number) {
    std::vector<Word> words;
    bool inside = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool blank = c == ' ' || c == '\t' || c == '\r';
        if (blank || (c == '#' && !inside)) {
            if (!blank)
                break;
            inside = false;
            continue;
        }
        if (!inside)
            words.emplace_back();
        inside = true;
        words.back().ends_quoted = c == '\'' || c == '"';
        if (c != '\'' && c != '"') {
            words.back().text += c;
            continue;
        }
        const size_t end = line.find(c, i + 1);
        if (end == std::string::npos)
            wrong(path, number, std::string("no closing ") + c);
        words.back().text += line.substr(i + 1, end - i - 1);
        words.back().quoted = true;
        i = end;
    }
    return words;
}

Step step_of(const std::vector<Word>& words, const std::string& path, int number) {
    Step step;
    size_t at = 0;
    // A name is all there is in front of a colon at a word's end.
    const auto colon = std::find_if(words.begin(), words.end(), [](const Word& word) {
        return !word.ends_quoted && !word.text.empty() && word.text.back() == ':';
    });
    const auto arrow = std::find_if(words.begin(), words.end(),
                                    [](const Word& word) { return !word.quoted && word.text == "=>"; });
    if (colon != words.end() && colon < arrow) {
        for (auto word = words.begin(); word <= colon; ++word)
            step.name += (step.name.empty() ? "" : " ") + word->text;
        step.name.erase(step.name.find_last_not_of(": ") + 1);
        if (step.name.empty())
            wrong(path, number, "no name before the colon");
        at = static_cast<size_t>(colon - words.begin()) + 1;
    }
    for (; words.begin() + static_cast<long>(at) < arrow; ++at)
        step.words.push_back(words[at].text);
    if (step.words.empty())
        wrong(path, number, "no command");
    if (step.words[0].find_first_not_of("0123456789") != std::string::npos)
        wrong(path, number,
              "a command begins with the number of its group, not with \"" + step.words[0] + "\"");
    if (arrow != words.end()) {
        for (auto word = arrow + 1; word != words.end(); ++word)
            step.expect += (step.expect.empty() ? "" : " ") + word->text;
        if (step.expect.empty())
            wrong(path, number, "no text behind \"=>\"");
    }
    if (step.name.empty())
        step.name = command_text(step.words);
    return step;
}

}  // namespace

std::vector<Step> read_plan(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw PlanError("cannot read the plan " + path + ": " + strerror(errno));
    std::vector<Step> steps;
    int number = 0;
    for (std::string line; getline(file, line);) {
        const std::vector<Word> words = words_of(line, path, ++number);
        if (words.empty())
            continue;
        steps.push_back(step_of(words, path, number));
        if (find_row(steps.back().words) == nullptr)
            wrong(path, number, "the tool has no command " + command_text(steps.back().words));
    }
    if (file.bad())
        throw PlanError("cannot read the plan " + path + ": " + strerror(errno));
    if (steps.empty())
        wrong(path, number, "no command in the whole plan");
    return steps;
}

std::vector<HandsetResults> run_plan(const std::vector<Handset>& handsets, const std::vector<Step>& steps,
                                     const Rules& rules, const std::function<void(size_t done)>& progress) {
    std::vector<HandsetResults> all(handsets.size());
    std::mutex mutex;
    size_t done = 0;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < handsets.size(); ++i) {
        all[i].name = handsets[i].name;
        threads.emplace_back([&, i] {
            for (const Step& step : steps) {
                Rules step_rules = rules;
                if (!step.expect.empty())
                    step_rules.expect = step.expect;
                // What cannot be proven is not refused for the sake of the steps that can.
                const Row* row = find_row(step.words);
                step_rules.verify = rules.verify && row != nullptr && row->proof != Proof::kNone;
                Result result = check_command(handsets[i], step.words, step_rules);
                if (interrupted() != 0)
                    return;
                all[i].results.push_back(std::move(result));
                const std::lock_guard<std::mutex> lock(mutex);
                progress(++done);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return all;
}

Verdict worst(const HandsetResults& handset) {
    Verdict verdict = Verdict::kSuccess;
    for (const Result& result : handset.results)
        verdict = std::max(verdict, result.judgement.verdict);
    return verdict;
}

std::string verdict_of(const HandsetResults& handset, const std::vector<Step>& steps) {
    return handset.results.size() < steps.size() ? "unfinished" : verdict_name(worst(handset));
}

Verdict worst(const std::vector<HandsetResults>& handsets) {
    Verdict verdict = Verdict::kSuccess;
    for (const HandsetResults& handset : handsets)
        verdict = std::max(verdict, worst(handset));
    return verdict;
}

}  // namespace check

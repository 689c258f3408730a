#include "watch.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace check {
namespace {

using Json = nlohmann::ordered_json;

// How many of the last values a sparkline shows.
constexpr size_t kSparkline = 40;

/// What is known of one value.
struct Series {
    std::string name;
    std::string last;
    double least = 0;
    double greatest = 0;
    double sum = 0;
    size_t numbers = 0;
    std::vector<double> recent;
};

void add(const Json& value, Series& series) {
    series.last = value.dump();
    if (!value.is_number())
        return;
    const double number = value.get<double>();
    series.least = series.numbers == 0 ? number : std::min(series.least, number);
    series.greatest = series.numbers == 0 ? number : std::max(series.greatest, number);
    series.sum += number;
    ++series.numbers;
    series.recent.push_back(number);
    if (series.recent.size() > kSparkline)
        series.recent.erase(series.recent.begin());
}

std::string sparkline(const Series& series) {
    static const char* const kBars[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    std::string text;
    if (series.recent.empty())
        return text;
    const auto [low, high] = std::minmax_element(series.recent.begin(), series.recent.end());
    for (const double value : series.recent) {
        const double share = *high > *low ? (value - *low) / (*high - *low) : 0.5;
        text += kBars[lround(share * 7)];
    }
    return text;
}

std::string time_text() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char date[32];
    char zone[8];
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    strftime(zone, sizeof zone, "%z", &local);
    char text[64];
    snprintf(text, sizeof text, "%s.%03ld%.3s:%s", date, now.tv_nsec / 1000000, zone, zone + 3);
    return text;
}

class Table {
public:
    void add_sample(const Result& result) {
        ++samples_;
        const Judgement& judgement = result.judgement;
        good_ += judgement.verdict == Verdict::kSuccess ? 1 : 0;
        trouble_ = judgement.reason.empty()
                       ? ""
                       : std::string(verdict_name(judgement.verdict)) + ": " + judgement.reason;
        for (const auto& [name, value] : numbers_of(judgement.values)) {
            const auto found =
                std::find_if(series_.begin(), series_.end(),
                             [&key = name](const Series& series) { return series.name == key; });
            Series& series = found == series_.end() ? series_.emplace_back() : *found;
            series.name = name;
            add(value, series);
        }
    }

    // The table, with the cursor's way back over its lines in front when it is drawn again.
    std::string text(bool again, bool with_sparklines) {
        std::string text = again && lines_ > 0 ? "\x1b[" + std::to_string(lines_) + "A\x1b[J" : "";
        char line[160];
        snprintf(line, sizeof line, "%zu samples, %zu succeeded", samples_, good_);
        std::string body = std::string(line) + (trouble_.empty() ? "" : "; " + trouble_) + "\n";
        snprintf(line, sizeof line, "%-24s %10s %10s %10s %10s\n", "", "last", "least", "mean", "greatest");
        body += series_.empty() ? "" : line;
        for (const Series& series : series_) {
            const double count = series.numbers == 0 ? 1 : static_cast<double>(series.numbers);
            snprintf(line, sizeof line, "%-24s %10s %10.2f %10.2f %10.2f", series.name.c_str(),
                     series.last.c_str(), series.least, series.sum / count, series.greatest);
            body += line + (with_sparklines ? "  " + sparkline(series) : "") + "\n";
        }
        lines_ = std::count(body.begin(), body.end(), '\n');
        return text + body;
    }

    const std::vector<Series>& series() const { return series_; }

private:
    std::vector<Series> series_;
    std::string trouble_;
    size_t samples_ = 0;
    size_t good_ = 0;
    long lines_ = 0;
};

// A line of CSV. Its columns are those of the first sample that has values; before that there are none.
void print_csv(const Result& result, std::vector<std::string>& columns) {
    const auto numbers = numbers_of(result.judgement.values);
    if (columns.empty() && !numbers.empty()) {
        std::string header = "time,verdict,duration_ms";
        for (const auto& [name, value] : numbers) {
            columns.push_back(name);
            header += "," + name;
        }
        puts(header.c_str());
    }
    std::string line = time_text() + "," + verdict_name(result.judgement.verdict) + "," +
                       std::to_string(result.run.duration.count());
    for (const std::string& column : columns) {
        const auto found = std::find_if(numbers.begin(), numbers.end(),
                                        [&column](const auto& entry) { return entry.first == column; });
        line += "," + (found == numbers.end() || found->second.is_null() ? "" : found->second.dump());
    }
    puts(line.c_str());
    fflush(stdout);
}

}  // namespace

Verdict watch(const Handset& handset, const std::vector<std::string>& words, const Rules& rules,
              const Watch& how) {
    Table table;
    std::vector<std::string> columns;
    Verdict worst_verdict = Verdict::kSuccess;
    auto next = std::chrono::steady_clock::now();
    for (int sample = 0; how.count == 0 || sample < how.count; ++sample) {
        const Result result = check_command(handset, words, rules);
        if (interrupted() != 0)
            break;
        worst_verdict = std::max(worst_verdict, result.judgement.verdict);
        table.add_sample(result);
        if (how.live)
            fputs(table.text(true, true).c_str(), stdout);
        else
            print_csv(result, columns);
        fflush(stdout);
        if (result.judgement.verdict == Verdict::kRefused)
            break;
        if (how.count != 0 && sample + 1 == how.count)
            break;
        next = std::max(next + how.period, std::chrono::steady_clock::now());
        sleep_until(next);
        if (interrupted() != 0)
            break;
    }
    if (!how.live)
        fputs(table.text(false, false).c_str(), stderr);
    return worst_verdict;
}

}  // namespace check

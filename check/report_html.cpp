#include <algorithm>
#include <map>
#include <sstream>

#include "glob.h"
#include "reports.h"

namespace check {
namespace {

using Json = nlohmann::ordered_json;

const char* const kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>vxk-check</title>
<style>
body { font: 15px/1.5 system-ui, sans-serif; margin: 2em; color: #1b1f24; background: #fff; }
table { border-collapse: collapse; margin: 1em 0; }
th, td { border: 1px solid #d0d7de; padding: .3em .7em; text-align: left; vertical-align: top; }
th { background: #f3f5f7; }
td small, th small { color: #57606a; display: block; font-weight: 400; }
td b { display: block; font-weight: 400; white-space: nowrap; }
.success { color: #116329; }
.failure, .refused, .timeout, .died, .unfinished { color: #a40e26; font-weight: 600; }
summary { cursor: pointer; min-width: 10em; max-width: 26em; }
pre { background: #f6f8fa; padding: .6em; overflow-x: auto; font-size: 13px; font-weight: 400; color: #1b1f24; }
.charts { display: flex; flex-wrap: wrap; gap: .6em 2em; }
figure { margin: 0; }
svg { font: 12px system-ui, sans-serif; }
</style>
</head>
<body>
)";

/// The values of one measurement, a handset each.
struct Chart {
    std::string unit;
    std::vector<std::pair<std::string, double>> bars;
};

std::string milliseconds(const Run& run) {
    return std::to_string(run.duration.count()) + " ms";
}

// What the tool printed, folded away: its own words matter when something went wrong, and then all of them.
std::string folded_output(const Result& result) {
    std::string lines;
    for (const std::string& line : split_lines(result.run.out))
        lines += markup_text(line) + "\n";
    for (const std::string& line : split_lines(result.run.err))
        lines += "! " + markup_text(line) + "\n";
    return "<details><summary>" + markup_text(result.judgement.reason) + "</summary><pre>" + lines +
           "</pre></details>";
}

std::string cell(const Result& result) {
    const Judgement& judgement = result.judgement;
    const std::string name = verdict_name(judgement.verdict);
    std::string text = "<td><span class=\"" + name + "\">" + name + "</span>";
    const std::string summary = summary_of(judgement.values);
    if (!summary.empty())
        text += "<b>" + markup_text(summary) + "</b>";
    text += "<small>" + milliseconds(result.run) + "</small>";
    return text + (judgement.verdict == Verdict::kSuccess ? "" : folded_output(result)) + "</td>";
}

std::string table(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    std::ostringstream text;
    text << "<table>\n<tr><th>handset</th><th>verdict</th>";
    for (const Step& step : steps)
        text << "<th>" << markup_text(step.name) << "<small>vxk " << markup_text(command_text(step.words))
             << "</small></th>";
    text << "</tr>\n";
    for (const HandsetResults& handset : handsets) {
        const std::string verdict = verdict_of(handset, steps);
        text << "<tr><th>" << markup_text(handset.name) << "</th><td class=\"" << verdict << "\">" << verdict
             << "</td>";
        for (const Result& result : handset.results)
            text << cell(result);
        text << "</tr>\n";
    }
    text << "</table>\n";
    return text.str();
}

// A line a handset. The weakest value of all has the shortest bar, the greatest the longest.
std::string drawing(const Chart& chart) {
    constexpr int kNames = 170;
    constexpr int kShortest = 20;
    constexpr int kWidth = 200;
    constexpr int kStep = 18;
    double low = chart.bars[0].second;
    double high = low;
    for (const auto& [name, value] : chart.bars) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    std::ostringstream text;
    text << "<svg width=\"" << kNames + kWidth + 110 << "\" height=\"" << kStep * chart.bars.size() + 4
         << "\" role=\"img\">\n";
    int y = 0;
    for (const auto& [name, value] : chart.bars) {
        const double share = high > low ? (value - low) / (high - low) : 1;
        const int length = kShortest + static_cast<int>((kWidth - kShortest) * share);
        const std::string shown = name.size() > 24 ? "..." + name.substr(name.size() - 21) : name;
        text << "<text x=\"" << kNames - 6 << "\" y=\"" << y + 13 << "\" text-anchor=\"end\">"
             << markup_text(shown) << "</text><rect x=\"" << kNames << "\" y=\"" << y + 3 << "\" width=\""
             << length << "\" height=\"12\" fill=\"#4878a8\"/><text x=\"" << kNames + length + 6 << "\" y=\""
             << y + 13 << "\">" << value << " " << chart.unit << "</text>\n";
        y += kStep;
    }
    text << "</svg>\n";
    return text.str();
}

std::string charts(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    std::string text;
    for (size_t i = 0; i < steps.size(); ++i) {
        std::vector<std::string> order;
        std::map<std::string, Chart> by_name;
        for (const HandsetResults& handset : handsets) {
            if (i >= handset.results.size())
                continue;
            const Json measurements =
                handset.results[i].judgement.values.value("measurements", Json::object());
            for (const auto& [name, entry] : measurements.items()) {
                if (!entry["value"].is_number())
                    continue;
                if (by_name.count(name) == 0)
                    order.push_back(name);
                by_name[name].unit = entry["unit"].is_null() ? "" : entry["unit"].get<std::string>();
                by_name[name].bars.emplace_back(handset.name, entry["value"].get<double>());
            }
        }
        for (const std::string& name : order)
            text += "<figure><figcaption>" + markup_text(steps[i].name + ": " + name) + "</figcaption>\n" +
                    drawing(by_name[name]) + "</figure>\n";
    }
    return text.empty() ? text : "<h2>Measurements</h2>\n<div class=\"charts\">\n" + text + "</div>\n";
}

}  // namespace

std::string report_html(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    const auto good =
        std::count_if(handsets.begin(), handsets.end(), [&steps](const HandsetResults& handset) {
            return verdict_of(handset, steps) == verdict_name(Verdict::kSuccess);
        });
    return kHead +
           ("<h1>" + std::to_string(good) + " of " + std::to_string(handsets.size()) +
            " handsets succeed</h1>\n") +
           table(steps, handsets) + charts(steps, handsets) + "</body>\n</html>\n";
}

}  // namespace check

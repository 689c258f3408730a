#include <algorithm>

#include "reports.h"

namespace check {
namespace {

using Json = nlohmann::ordered_json;

std::string cell_text(const Result& result) {
    if (result.judgement.verdict != Verdict::kSuccess)
        return verdict_name(result.judgement.verdict);
    const std::string summary = summary_of(result.judgement.values);
    return summary.empty() ? "ok" : summary;
}

}  // namespace

std::string report_table(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    std::vector<std::vector<std::string>> rows{{"handset", "verdict"}};
    for (const Step& step : steps)
        rows[0].push_back(step.name);
    for (const HandsetResults& handset : handsets) {
        rows.push_back({handset.name, verdict_of(handset, steps)});
        for (const Result& result : handset.results)
            rows.back().push_back(cell_text(result));
    }
    std::vector<size_t> widths(rows[0].size());
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());

    std::string text;
    for (const auto& row : rows) {
        for (size_t i = 0; i < row.size(); ++i)
            text += row[i] + (i + 1 < row.size() ? std::string(widths[i] - row[i].size() + 2, ' ') : "\n");
    }
    for (const HandsetResults& handset : handsets)
        for (size_t i = 0; i < handset.results.size(); ++i)
            if (handset.results[i].judgement.verdict != Verdict::kSuccess)
                text +=
                    handset.name + ", " + steps[i].name + ": " + handset.results[i].judgement.reason + "\n";
    return text;
}

Json report_json(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets) {
    Json list = Json::array();
    for (const HandsetResults& handset : handsets) {
        Json results = Json::array();
        for (size_t i = 0; i < handset.results.size(); ++i) {
            Json entry{{"name", steps[i].name}};
            entry.update(result_json(handset.results[i]));
            results.push_back(entry);
        }
        list.push_back(
            {{"handset", handset.name}, {"verdict", verdict_of(handset, steps)}, {"steps", results}});
    }
    return {{"verdict", verdict_name(worst(handsets))}, {"handsets", list}};
}

}  // namespace check

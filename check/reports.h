// What people and their programs are shown of results.
#pragma once

#include <string>
#include <vector>

#include "plan.h"

namespace check {

/// One result for a person: the verdict with its reason, the values, and of a failure the answer.
std::string report_text(const Result& result);

/// A row a handset, a column a step; below it a line for each step that did not succeed.
std::string report_table(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets);

/// The whole of it for a script.
nlohmann::ordered_json report_json(const std::vector<Step>& steps,
                                   const std::vector<HandsetResults>& handsets);

/// A file for build servers: a suite a handset, a case a step.
std::string report_junit(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets);

/// A page that needs nothing but itself: the table, each step's values and output, and
/// measurements as charts.
std::string report_html(const std::vector<Step>& steps, const std::vector<HandsetResults>& handsets);

/// Text as XML and HTML hold it; characters that neither can hold become '?'.
std::string markup_text(const std::string& text);

/// The lines of a run that are no diagnostics.
std::vector<std::string> answer_lines(const Run& run);

}  // namespace check

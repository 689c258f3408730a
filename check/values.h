// What a command's answer holds, as numbers and names.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace check {

/// Finds a kind of values in the lines of an answer and puts them where a script finds them.
struct Reader {
    const char* names = "";  ///< of the values, for people
    /// Returns what is wrong with an answer that the tool took for good; empty when nothing is.
    std::string (*read)(const std::vector<std::string>& lines, nlohmann::ordered_json& values) = nullptr;
};

extern const Reader kNothing;
extern const Reader kData;          ///< length and bytes of a file, an item, a diag response
extern const Reader kCardAnswer;    ///< the value of a card slot answer
extern const Reader kCardPresence;  ///< the same, and the card that it tells of
extern const Reader kCardType;
extern const Reader kCardStates;
extern const Reader kEid;
extern const Reader kDsi;
extern const Reader kCounters;
extern const Reader kMeasurements;
extern const Reader kRecord;
extern const Reader kResult;

/// Whether a text is an EID: 32 decimal digits, the last two of which check the others.
bool eid_is_valid(const std::string& text);

/// "01 02 FF"
std::string hex_text(const std::vector<unsigned char>& bytes);

/// All numbers of an answer, by name, in the answer's order. A measurement that is no number is null.
std::vector<std::pair<std::string, nlohmann::ordered_json>> numbers_of(const nlohmann::ordered_json& values);

/// The values in a few words, for a cell of a table; empty when there are none.
std::string summary_of(const nlohmann::ordered_json& values);

}  // namespace check

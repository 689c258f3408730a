#include "values.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "glob.h"

namespace check {
namespace {

using Json = nlohmann::ordered_json;
using Lines = std::vector<std::string>;

// The code and the length in front of a card answer's value.
constexpr size_t kCardHeader = 8;

std::string nothing(const Lines&, Json&) {
    return {};
}

// A whole number, signed or beyond what signed numbers reach; null when the text is none.
Json whole_number(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    if (!text.empty() && text.front() == '-') {
        const long long value = strtoll(text.c_str(), &end, 10);
        return *end || errno ? Json() : Json(value);
    }
    const unsigned long long value = strtoull(text.c_str(), &end, 10);
    return text.empty() || *end || errno ? Json() : Json(value);
}

Json number(const std::string& text) {
    if (text.find('.') == std::string::npos)
        return whole_number(text);
    char* end = nullptr;
    const double value = strtod(text.c_str(), &end);
    return *end || !std::isfinite(value) ? Json() : Json(value);
}

// "01 02" or "0x01 0x02"
std::vector<unsigned char> bytes_of(std::string_view text) {
    std::vector<unsigned char> bytes;
    const std::string copy(text);
    for (const char* at = copy.c_str();;) {
        char* end = nullptr;
        const unsigned long value = strtoul(at, &end, 16);
        if (end == at)
            return bytes;
        bytes.push_back(static_cast<unsigned char>(value));
        at = end;
    }
}

// The bytes of an answer, and what is wrong with them.
std::string find_data(const Lines& lines, std::vector<unsigned char>& bytes, bool& found) {
    found = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        const char* const kLength =
            starts_with(lines[i], "rsp data len(") ? "rsp data len(*)" : "data len(*)";
        if (!glob_matches(kLength, lines[i]))
            continue;
        found = true;
        const Json length = whole_number(std::string(glob_tail(kLength, lines[i])));
        const std::string next = i + 1 < lines.size() ? lines[i + 1] : std::string();
        const size_t colon = next.find("data:");
        if (colon != std::string::npos)
            bytes = bytes_of(std::string_view(next).substr(colon + 5));
        if (length != bytes.size())
            return "the answer says " + length.dump() + " bytes and shows " + std::to_string(bytes.size());
        return {};
    }
    return {};
}

void put_bytes(const std::vector<unsigned char>& bytes, Json& values) {
    values["length"] = bytes.size();
    values["bytes"] = hex_text(bytes);
}

std::string read_data(const Lines& lines, Json& values) {
    std::vector<unsigned char> bytes;
    bool found = false;
    std::string complaint = find_data(lines, bytes, found);
    if (found)
        put_bytes(bytes, values);
    return complaint;
}

// Returns the first word of the value; null when there is none.
Json card_value(const Lines& lines, Json& values, std::string& complaint) {
    std::vector<unsigned char> bytes;
    bool found = false;
    complaint = find_data(lines, bytes, found);
    if (!found)
        return {};
    bytes.erase(bytes.begin(), bytes.begin() + static_cast<long>(std::min(bytes.size(), kCardHeader)));
    put_bytes(bytes, values);
    if (bytes.size() < 4)
        return {};
    return bytes[0] | unsigned{bytes[1]} << 8 | unsigned{bytes[2]} << 16 | unsigned{bytes[3]} << 24;
}

std::string read_card_answer(const Lines& lines, Json& values) {
    std::string complaint;
    card_value(lines, values, complaint);
    return complaint;
}

std::string read_card_presence(const Lines& lines, Json& values) {
    std::string complaint;
    const Json value = card_value(lines, values, complaint);
    if (value.is_null())
        return values.empty() || !complaint.empty() ? complaint : "the answer holds no card state";
    values["cards"] = Json::array({value == 0 ? "ABSENT" : value == 1 ? "PRESENT" : "UNKNOWN"});
    return complaint;
}

std::string read_card_type(const Lines& lines, Json& values) {
    std::string complaint;
    const Json value = card_value(lines, values, complaint);
    if (value.is_null())
        return values.empty() || !complaint.empty() ? complaint : "the answer holds no card type";
    values["card_type"] = value;
    return complaint;
}

std::string read_card_states(const Lines& lines, Json& values) {
    const auto is_state = [](const std::string& word) {
        return word == "PRESENT" || word == "ABSENT" || word == "ERROR" || word == "UNKNOWN";
    };
    for (const std::string& line : lines) {
        const size_t comma = line.find(',');
        if (comma == std::string::npos)
            continue;
        const std::string first = line.substr(0, comma);
        const std::string second = line.substr(comma + 1);
        if (is_state(first) && is_state(second))
            values["cards"] = {first, second};
    }
    return {};
}

std::string read_eid(const Lines& lines, Json& values) {
    for (const std::string& line : lines)
        if (starts_with(line, "eID=")) {
            const std::string eid = line.substr(4);
            values["eid"] = eid;
            if (!eid_is_valid(eid))
                return "the EID's check digits are wrong: " + eid;
        }
    return {};
}

std::string read_dsi(const Lines& lines, Json& values) {
    for (const std::string& line : lines)
        if (starts_with(line, "SAR DSI: "))
            values["dsi"] = whole_number(line.substr(9));
    return {};
}

std::string read_counters(const Lines& lines, Json& values) {
    std::string block;
    for (const std::string& line : lines) {
        if (glob_matches("-------- stats * info start --------", line))
            block = line.substr(15, line.find(' ', 15) - 15) + ".";
        else if (glob_matches("-------- stats * info end, cnt(*) --------", line))
            block.clear();
        const size_t name = line.find("], ");
        const size_t value = line.find(" = ");
        if (starts_with(line, "UNPK[size:") && name != std::string::npos && value != std::string::npos)
            values["counters"][block + line.substr(name + 3, value - name - 3)] =
                whole_number(line.substr(value + 3));
    }
    return {};
}

// "a: 1, b: 2", "a = 1, b = 2" and "a 1, b = 2", a pair after the other.
void each_pair(const std::string& text,
               void (*pair)(const std::string& name, const std::string& value, Json& into), Json& into) {
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(", ", start), text.size());
        const std::string entry = text.substr(start, end - start);
        const size_t name_end = entry.find_first_of(": =");
        const size_t value = entry.find_last_of(' ');
        if (name_end != std::string::npos && value != std::string::npos)
            pair(entry.substr(0, name_end), entry.substr(value + 1), into);
        start = end + 2;
    }
}

const char* unit_of(const std::string& name) {
    for (const char* power : {"rsrp", "rssi", "rx_agc", "rx_prx", "rx_drx"})
        if (starts_with(name, power))
            return "dBm";
    return starts_with(name, "rsrq") || starts_with(name, "snr") ? "dB" : nullptr;
}

std::string read_measurements(const Lines& lines, Json& values) {
    for (const std::string& line : lines) {
        const size_t start = starts_with(line, "ASDIV DATA: ") ? 12
                             : starts_with(line, "ANT INFO: ") ? 10
                                                               : 0;
        if (start == 0)
            continue;
        each_pair(
            line.substr(start),
            [](const std::string& name, const std::string& value, Json& into) {
                const char* const unit = unit_of(name);
                into[name] = {{"value", number(value)}, {"unit", unit != nullptr ? Json(unit) : Json()}};
            },
            values["measurements"]);
    }
    return {};
}

std::string read_record(const Lines& lines, Json& values) {
    for (const std::string& line : lines)
        if (glob_matches("version = *, mcc = *", line) ||
            glob_matches("freq_band_ind = *, dl_earfcn = *", line))
            each_pair(
                line,
                [](const std::string& name, const std::string& value, Json& into) {
                    into[name] = whole_number(value);
                },
                values["record"]);
    return {};
}

std::string read_result(const Lines& lines, Json& values) {
    for (const std::string& line : lines)
        if (glob_matches("qmi_id = *, result = *", line))
            values["result"] = whole_number(std::string(glob_tail("qmi_id = *, result = *", line)));
    return {};
}

}  // namespace

const Reader kNothing{"", nothing};
const Reader kData{"length, bytes", read_data};
const Reader kCardAnswer{"length, bytes", read_card_answer};
const Reader kCardPresence{"length, bytes, cards", read_card_presence};
const Reader kCardType{"length, bytes, card_type", read_card_type};
const Reader kCardStates{"cards", read_card_states};
const Reader kEid{"eid", read_eid};
const Reader kDsi{"dsi", read_dsi};
const Reader kCounters{"counters", read_counters};
const Reader kMeasurements{"measurements", read_measurements};
const Reader kRecord{"record", read_record};
const Reader kResult{"result", read_result};

bool eid_is_valid(const std::string& text) {
    int remainder = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            return false;
        remainder = (remainder * 10 + (digit - '0')) % 97;
    }
    return text.size() == 32 && remainder == 1;
}

std::string hex_text(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        char digits[4];
        snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ", byte);
        text += digits;
    }
    return text;
}

std::vector<std::pair<std::string, Json>> numbers_of(const Json& values) {
    std::vector<std::pair<std::string, Json>> numbers;
    for (const auto& [name, value] : values.items()) {
        if (value.is_number())
            numbers.emplace_back(name, value);
        if (!value.is_object())
            continue;
        for (const auto& [inner, entry] : value.items())
            numbers.emplace_back(inner, entry.is_object() ? entry["value"] : entry);
    }
    return numbers;
}

std::string summary_of(const Json& values) {
    constexpr size_t kBytesShown = 8;
    if (values.contains("eid"))
        return values["eid"].get<std::string>();
    if (values.contains("cards")) {
        std::string text;
        for (const Json& state : values["cards"])
            text += (text.empty() ? "" : ",") + state.get<std::string>();
        return text;
    }
    if (values.contains("card_type"))
        return "type " + values["card_type"].dump();
    if (values.contains("bytes")) {
        const std::string bytes = values["bytes"].get<std::string>();
        return bytes.size() < 3 * kBytesShown ? bytes : bytes.substr(0, 3 * kBytesShown - 1) + " ...";
    }
    if (values.contains("measurements") && !values["measurements"].empty()) {
        const Json& first = values["measurements"].front();
        return first["value"].dump() +
               (first["unit"].is_null() ? "" : " " + first["unit"].get<std::string>());
    }
    if (values.contains("dsi"))
        return "DSI " + values["dsi"].dump();
    return {};
}

}  // namespace check

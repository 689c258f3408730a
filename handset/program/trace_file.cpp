#include "trace_file.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "archive.h"
#include "error.h"
#include "hex_text.h"
#include "messages.h"

namespace handset {
namespace {

using Json = nlohmann::json;

// "2026-08-01T12:00:00.123456+02:00"
std::chrono::microseconds time_of(const std::string& text) {
    tm date{};
    char zone[8] = {};
    int microseconds = 0;
    if (sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%6d%7s", &date.tm_year, &date.tm_mon, &date.tm_mday,
               &date.tm_hour, &date.tm_min, &date.tm_sec, &microseconds, zone) != 8)
        throw Error("no time as RFC 3339 has it: \"" + text + "\"");
    date.tm_year -= 1900;
    --date.tm_mon;
    int hours = 0;
    int minutes = 0;
    int64_t east = 0;
    if (sscanf(zone, "%3d:%2d", &hours, &minutes) == 2)
        east = hours * 3600 + (zone[0] == '-' ? -minutes : minutes) * 60;
    return std::chrono::microseconds((int64_t{timegm(&date)} - east) * 1'000'000 + microseconds);
}

template <typename Number>
Number number_in(const Json& line, const char* key) {
    const auto found = line.find(key);
    return found == line.end() || found->is_null() ? 0 : found->get<Number>();
}

std::string text_in(const Json& line, const char* key) {
    const auto found = line.find(key);
    return found == line.end() || found->is_null() ? "" : found->get<std::string>();
}

std::optional<TraceEvent::Kind> kind_of(const std::string& kind, const std::string& message) {
    static const std::map<std::string, TraceEvent::Kind> kPackets = {
        {"request", TraceEvent::kRequest},
        {"response", TraceEvent::kResponse},
        {"indication", TraceEvent::kIndication},
    };
    static const std::map<std::string, TraceEvent::Kind> kEvents = {
        {"unanswered", TraceEvent::kUnanswered},
        {"connected", TraceEvent::kConnected},
        {"closed", TraceEvent::kClosed},
        {"withdrawn", TraceEvent::kWithdrawn},
        {"published", TraceEvent::kPublished},
        {"restart", TraceEvent::kRestart},
        {"boot", TraceEvent::kBoot},
    };
    const auto& kinds = kind == "event" ? kEvents : kPackets;
    const auto found = kinds.find(kind == "event" ? message : kind);
    return found == kinds.end() ? std::nullopt : std::optional(found->second);
}

// Nothing for a line that a replay has no use for.
std::optional<TraceEvent> event_of(const Json& line) {
    if (number_in<int>(line, "v") != 1)
        throw Error("expected \"v\": 1");
    const std::string road = text_in(line, "road");
    const auto kind = kind_of(text_in(line, "kind"), text_in(line, "message"));
    if (!kind || (road != "qmi" && road != "diag" && road != "modem"))
        return std::nullopt;
    TraceEvent event;
    event.kind = *kind;
    event.time = time_of(text_in(line, "time"));
    event.where =
        road == "qmi" ? "qmi/" + messages::service_name(number_in<uint16_t>(line, "service_id")) : road;
    event.pid = number_in<int64_t>(line, "pid");
    event.connection = number_in<uint64_t>(line, "connection");
    // The serial diag port has the road, too, but no connections; its packets are bare commands.
    if (event.connection == 0 && (event.kind == TraceEvent::kRequest || event.kind == TraceEvent::kResponse))
        return std::nullopt;
    event.number = number_in<uint32_t>(line, road == "qmi" ? "transaction" : "message_id");
    event.fault = text_in(line, "fault");
    const auto fields = line.find("fields");
    const std::string by = fields != line.end() && fields->is_object() ? text_in(*fields, "by") : "";
    if (event.kind == TraceEvent::kClosed && by != "modem")
        return std::nullopt;
    const auto packet = parse_hex(text_in(line, "bytes"));
    if (!packet)
        throw Error("\"bytes\" are not pairs of hexadecimal digits");
    event.packet = *packet;
    return event;
}

std::vector<TraceEvent> read_trace(std::istream& in, const std::string& name) {
    std::vector<TraceEvent> trace;
    std::string text;
    for (size_t number = 1; std::getline(in, text); ++number) {
        if (text.empty())
            continue;
        try {
            if (const auto event = event_of(Json::parse(text)))
                trace.push_back(*event);
        } catch (const std::exception& error) {
            const auto* json = dynamic_cast<const Json::exception*>(&error);
            throw Error(name + ":" + std::to_string(number) + ": not a line of a trace: " +
                        (json != nullptr ? std::string("no JSON object of its form") : error.what()));
        }
    }
    return trace;
}

// Lines of "[name]: [value]".
std::map<std::string, std::string> read_properties(const std::string& text) {
    std::map<std::string, std::string> properties;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t middle = line.find("]: [");
        if (line.empty() || line.front() != '[' || line.back() != ']' || middle == std::string::npos)
            continue;
        const std::string name = line.substr(1, middle - 1);
        if (!name.empty() && name.find('/') == std::string::npos && name.front() != '.')
            properties[name] = line.substr(middle + 4, line.size() - middle - 5);
    }
    return properties;
}

}  // namespace

Recording read_recording(const std::string& path) {
    if (path == "-")
        return {read_trace(std::cin, "standard input"), {}};
    if (is_archive(path)) {
        std::istringstream trace(read_member(path, kCaptureTrace));
        return {read_trace(trace, path), read_properties(read_member(path, kCaptureProperties))};
    }
    std::ifstream file(path);
    if (!file)
        throw system_error("cannot read " + path, errno);
    return {read_trace(file, path), {}};
}

}  // namespace handset

#include "diag_profile.h"

#include <numeric>
#include <string>

#include "messages.h"
#include "serving_cell.h"

namespace handset {
namespace {

constexpr uint32_t kLongestTimeMs = 600'000;
constexpr size_t kMostEntries = 1000;
constexpr size_t kMostPieces = 100;

// Equipment id 0 has no logs.
constexpr uint16_t kFirstLogCode = 0x1000;

// With the event and the processor in front of it, it is one packet.
constexpr uint32_t kLongestContent = wire::kDiagPacketMax - 2;

void read_time(Section& section, const char* key, std::chrono::milliseconds& time) {
    auto number = static_cast<uint32_t>(time.count());
    section.integer<uint32_t>(key, number, 0, kLongestTimeMs);
    time = std::chrono::milliseconds(number);
}

// Bytes that show where a piece of them belongs: 251 of them do not divide any likely size.
wire::Bytes filling(size_t size) {
    wire::Bytes bytes;
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(1 + i % 251));
    return bytes;
}

std::optional<wire::Bytes> read_content(Section& section) {
    std::optional<uint32_t> size;
    section.integer<uint32_t>("size", size, 0, kLongestContent);
    if (!section.has("bytes"))
        return size ? std::optional(filling(*size)) : std::nullopt;
    if (size)
        section.fail("size", "the bytes are given already");
    wire::Bytes bytes;
    section.bytes("bytes", bytes, kLongestContent);
    return bytes;
}

void read_timing(Section& section, DiagTiming& timing) {
    read_time(section, "delay_ms", timing.delay);
    read_time(section, "gap_ms", timing.gap);
    section.boolean("before_answer", timing.before_answer);
}

void read_pieces(Section& section, DiagResponse& response) {
    section.integers("pieces", response.pieces, kMostPieces, kLongestContent);
    if (response.pieces.empty())
        return;
    const auto total = std::accumulate(response.pieces.begin(), response.pieces.end(), uint64_t{0});
    if (total > kLongestContent)
        section.fail("pieces", "more than " + std::to_string(kLongestContent) + " bytes together");
    if (!response.bytes)
        response.bytes = filling(total);
    if (total != response.bytes->size())
        section.fail("pieces", std::to_string(total) + " bytes together, but the response has " +
                                   std::to_string(response.bytes->size()));
}

void read_response(Section& section, DiagResponse& response) {
    section.bytes("command", response.command, kLongestContent);
    read_timing(section, response.timing);
    section.boolean("silent", response.silent);
    section.integer("processor", response.processor);
    response.bytes = read_content(section);
    read_pieces(section, response);
}

void read_event(Section& section, uint8_t& event) {
    Section::Named names;
    for (const messages::DiagEvent& row : messages::diag_events())
        names.emplace_back(row.name, row.number);
    std::optional<uint32_t> number;
    section.require("event");
    section.named_integer("event", number, 0, wire::kDiagAnswer - 1, names);
    event = static_cast<uint8_t>(number.value_or(event));
}

void read_op(Section& section, const char* key, uint8_t& op) {
    Section::Named names;
    for (const messages::DiagOp& row : messages::diag_ops())
        names.emplace_back(row.name, row.number);
    std::optional<uint32_t> number;
    section.named_integer(key, number, 1, static_cast<uint32_t>(names.size()), names);
    op = static_cast<uint8_t>(number.value_or(op));
}

void read_stream(Section& section, DiagStream& stream) {
    read_event(section, stream.event);
    read_op(section, "after", stream.after);
    stream.bytes = read_content(section).value_or(wire::Bytes());
    read_time(section, "delay_ms", stream.delay);
    read_time(section, "every_ms", stream.every);
    section.integer<uint32_t>("count", stream.count, 1);
}

void read_log(Section& section, DiagLog& log) {
    section.require("code");
    section.integer<uint16_t>("code", log.code, kFirstLogCode);
    section.bytes("bytes", log.bytes, UINT16_MAX - DiagLog::kHeaderSize);
    if (section.has("bytes") && section.has("record"))
        section.fail("record", "the bytes are given already");
    section.object("record", [&log](Section& record) { log.bytes = read_serving_cell(record); });
    read_time(section, "every_ms", log.every);
    section.integer<uint32_t>("count", log.count, 1);
}

void read_results(Section& section, std::map<uint8_t, int32_t>& results) {
    for (const messages::DiagOp& op : messages::diag_ops()) {
        int32_t& result = results.emplace(op.number, op.done).first->second;
        section.integer(op.name, result);
    }
}

}  // namespace

void read_answers(Section& section, DiagAnswers& diag) {
    section.integer("remote_mask", diag.remote_mask);
    section.boolean("mpss_up", diag.mpss_up);
    section.object("results", [&diag](Section& results) { read_results(results, diag.results); });
    read_timing(section, diag.timing);
    if (section.has("responses"))
        diag.responses.clear();
    section.list("responses", kMostEntries, [&diag](Section& entry) {
        DiagResponse& response = diag.responses.emplace_back();
        response.timing = diag.timing;
        read_response(entry, response);
    });
}

void read_profile(Section& section, DiagProfile& diag) {
    read_answers(section, diag);
    section.list("streams", kMostEntries,
                 [&diag](Section& entry) { read_stream(entry, diag.streams.emplace_back()); });
    section.list("logs", kMostEntries,
                 [&diag](Section& entry) { read_log(entry, diag.logs.emplace_back()); });
}

}  // namespace handset

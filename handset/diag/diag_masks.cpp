#include "diag_masks.h"

#include <algorithm>

namespace handset {
namespace {

using Outcome = DiagMasks::Outcome;

// Operations of log config, and the status of their answers.
enum LogOperation : uint32_t { kLogsOff = 0, kLogRanges = 1, kSetLogMask = 3, kGetLogMask = 4 };
constexpr uint32_t kLogDone = 0;
constexpr uint32_t kLogRefused = 1;

// Equipment ids 1 to 15 have items 0 to 4095, 0 has none.
constexpr uint32_t kEquipmentIds = 16;
constexpr uint32_t kLastItem = 0xFFF;

// Operations of message config.
enum MessageOperation : uint8_t { kMessageRanges = 1, kBuildMask = 2, kSetMask = 4, kSetAllMasks = 5 };
constexpr uint8_t kMessageDone = 1;
constexpr uint8_t kMessageRefused = 0;
constexpr uint32_t kAllLevels = 0x1F;  // low to fatal, as far as the build has them

// Subsystems, the first and the last of each range.
constexpr struct {
    uint16_t first;
    uint16_t last;
} kRanges[] = {{0, 118}, {500, 506}, {1000, 1007}, {2000, 2008}, {4500, 4584}, {5000, 5036}, {9500, 9521}};

size_t mask_size(uint32_t items) {
    return (items + 7) / 8;
}

// The place of a range that lies within one of the modem's.
std::optional<size_t> find_range(uint16_t first, uint16_t last) {
    for (size_t i = 0; i < std::size(kRanges); ++i) {
        if (first >= kRanges[i].first && last <= kRanges[i].last && first <= last)
            return i;
    }
    return std::nullopt;
}

}  // namespace

DiagMasks::DiagMasks() {
    for (const auto& range : kRanges)
        messages_.emplace_back(range.last - range.first + 1, 0);
}

Outcome DiagMasks::carry_out(wire::View command) {
    wire::Reader reader(command);
    const uint8_t code = reader.u8();
    Outcome outcome = code == kDiagEventReport ? event_report(reader)
                      : code == kDiagLogConfig ? log_config(reader)
                                               : message_config(reader);
    if (!reader.ok())
        return {Outcome::kBadLength, {}};
    return outcome;
}

bool DiagMasks::has_log(uint16_t code) const {
    const auto mask = logs_.find(code >> 12);
    const size_t item = code & kLastItem;
    return mask != logs_.end() && item / 8 < mask->second.size() &&
           (mask->second[item / 8] >> item % 8 & 1) != 0;
}

Outcome DiagMasks::event_report(wire::Reader& command) {
    command.u8();
    wire::Writer answer;
    answer.u8(kDiagEventReport).u16(0);  // a report without an event
    return {Outcome::kAnswer, answer.take()};
}

Outcome DiagMasks::log_config(wire::Reader& command) {
    command.bytes(3);
    const uint32_t operation = command.u32();
    const bool has_mask = operation == kSetLogMask || operation == kGetLogMask;
    const uint32_t id = has_mask ? command.u32() : 1;
    const uint32_t items = operation == kSetLogMask ? command.u32() : 0;
    const bool known = operation == kLogsOff || operation == kLogRanges || has_mask;
    const bool possible = known && id >= 1 && id < kEquipmentIds && items <= kLastItem + 1;
    wire::Writer answer;
    answer.u8(kDiagLogConfig).number(0, 3).u32(operation).u32(possible ? kLogDone : kLogRefused);
    if (!possible || !command.ok())
        return {Outcome::kAnswer, answer.take()};
    if (operation == kLogsOff)
        logs_.clear();
    if (operation == kLogRanges) {
        for (uint32_t equipment = 0; equipment < kEquipmentIds; ++equipment)
            answer.u32(equipment == 0 ? 0 : kLastItem);
    }
    if (operation == kSetLogMask) {
        const wire::View mask = command.bytes(mask_size(items));
        if (!command.ok())
            return {Outcome::kBadLength, {}};
        logs_[id] = mask.copy();
        answer.u32(id).u32(items).bytes(mask);
    }
    if (operation == kGetLogMask) {
        wire::Bytes mask = logs_[id];
        mask.resize(mask_size(kLastItem + 1));
        answer.u32(id).u32(kLastItem + 1).bytes(mask);
    }
    return {Outcome::kAnswer, answer.take()};
}

Outcome DiagMasks::message_config(wire::Reader& command) {
    const uint8_t operation = command.u8();
    wire::Writer answer;
    answer.u8(kDiagMessageConfig).u8(operation);
    if (operation == kMessageRanges) {
        answer.u8(kMessageDone).u8(0).u32(std::size(kRanges));
        for (const auto& range : kRanges)
            answer.u16(range.first).u16(range.last);
        return {Outcome::kAnswer, answer.take()};
    }
    if (operation == kSetAllMasks) {
        command.u16();
        const uint32_t mask = command.u32();
        if (!command.ok())
            return {Outcome::kBadLength, {}};
        for (auto& masks : messages_)
            std::fill(masks.begin(), masks.end(), mask);
        return {Outcome::kAnswer, answer.u8(kMessageDone).u8(0).u32(mask).take()};
    }
    if (operation < kMessageRanges || operation > kSetAllMasks)
        return {Outcome::kBadParameters, {}};
    return message_range(operation, command);
}

Outcome DiagMasks::message_range(uint8_t operation, wire::Reader& command) {
    const uint16_t first = command.u16();
    const uint16_t last = command.u16();
    if (operation == kSetMask)
        command.u16();
    const auto range = find_range(first, last);
    wire::Writer answer;
    answer.u8(kDiagMessageConfig).u8(operation).u16(first).u16(last);
    answer.u8(range ? kMessageDone : kMessageRefused).u8(0);
    if (!range || !command.ok())
        return {Outcome::kAnswer, answer.take()};
    const size_t count = size_t{last} - first + 1;
    if (operation == kSetMask && command.left() < count * sizeof(uint32_t))
        return {Outcome::kBadLength, {}};
    auto masks = messages_[*range].begin() + (first - kRanges[*range].first);
    for (size_t i = 0; i < count; ++i, ++masks) {
        if (operation == kSetMask)
            *masks = command.u32();
        answer.u32(operation == kBuildMask ? kAllLevels : *masks);
    }
    return {Outcome::kAnswer, answer.take()};
}

}  // namespace handset

// One line of what passed between the modem and the world, as JSON: the form of `vxk-handset log --json` and
// of a trace, version 1. docs/protocol.md tells its keys.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "describe.h"

namespace messages {

struct LineHead {
    timespec time{};
    std::string road;
    std::optional<uint16_t> service;
    uint64_t connection = 0;  // 0: none
    int64_t pid = 0;          // 0: unknown
    const char* direction = "--";
    const char* kind = "event";
    std::optional<std::string> message;
    std::optional<uint32_t> message_id;
    std::optional<uint32_t> transaction;
};

/// "2026-08-01T12:00:00.123456+02:00", in the local zone.
std::string rfc3339(const timespec& time);

/// Since 1970.
int64_t microseconds(const timespec& time);

/// The head and what is known of the service and the message of a packet.
LineHead head_of(const QmiMessage& message);
LineHead head_of(const DiagMessage& message);

class JsonLine : public Sink {
public:
    explicit JsonLine(const LineHead& head);

    JsonLine& number(std::string_view name, int64_t value) override;
    JsonLine& unsigned_number(std::string_view name, uint64_t value) override;
    /// Null for what is not a number.
    JsonLine& real(std::string_view name, float value) override;
    JsonLine& text(std::string_view name, std::string_view value) override;
    JsonLine& bytes(std::string_view name, wire::View value) override;
    JsonLine& inner_bytes(std::string_view name, wire::View value) override;
    /// "malformed": true.
    JsonLine& malformed() override;
    JsonLine& list(std::string_view name, size_t count) override;
    JsonLine& begin_item(std::string_view list, size_t index) override;
    JsonLine& begin_group(std::string_view name) override;
    JsonLine& end() override;
    JsonLine& end_list() override;

    /// The whole line, without a line break. Nothing is to be added afterwards.
    std::string finish(wire::View packet, std::optional<int64_t> latency_us, std::string_view fault);

private:
    void key(std::string_view name);
    void comma();

    std::string line_;
    bool first_ = true;  // in the object or list that is open
};

}  // namespace messages

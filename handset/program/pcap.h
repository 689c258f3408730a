// The wire log as a capture file that the field's programs open (pcapng): QMI, AT lines and system log lines
// for dissectors by name (Wireshark's upper PDUs), APDUs and diag as GSMTAP.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "describe.h"
#include "wire_record.h"

namespace handset {

/// When a line of the system log was written, nothing for another line. It does not tell the year: that is
/// the last one which makes it no later than `now`.
std::optional<timespec> system_line_time(const std::string& line, time_t now);

class Pcap {
public:
    /// A packet of the log; other records leave no trace. `qmi` is the packet decoded, null: it is none.
    void add(const WireRecord& record, const messages::QmiMessage* qmi);

    /// A line of the system log, "MM-DD HH:MM:SS.mmm PID TID P TAG: MESSAGE".
    void add_system_line(const timespec& time, const std::string& line);

    /// Writes what was added in the order of time. Throws Error.
    void write(const std::string& path);

private:
    enum Interface : uint32_t { kUpper, kIp };
    struct Packet {
        uint64_t microseconds = 0;
        Interface interface = kUpper;
        Direction direction = Direction::kEvent;
        wire::Bytes bytes;
    };

    void add_packet(const timespec& time, Interface interface, Direction direction, wire::Bytes bytes);
    void add_apdu(const WireRecord& record, const messages::QmiMessage& qmi);
    void add_gsmtap(const WireRecord& record, uint8_t type, wire::View payload);

    std::vector<Packet> packets_;
    std::map<std::pair<uint32_t, uint32_t>, wire::Bytes> commands_;  // APDUs, by connection and transaction
};

}  // namespace handset

#include "pcap.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>

#include "error.h"

namespace handset {
namespace {

// Blocks and options of a pcapng file, with the link types of its two interfaces.
constexpr uint32_t kSectionHeader = 0x0A0D0D0A;
constexpr uint32_t kInterfaceDescription = 1;
constexpr uint32_t kEnhancedPacket = 6;
constexpr uint16_t kFlagsOption = 2;
constexpr uint16_t kNameOption = 2;
constexpr uint16_t kLinkUpperPdu = 252;
constexpr uint16_t kLinkIpv4 = 228;

// Tags of an upper PDU.
constexpr uint16_t kTagDissector = 12;
constexpr uint16_t kTagDirection = 35;

constexpr uint8_t kGsmtapSim = 4;
constexpr uint8_t kGsmtapDiag = 0x11;
constexpr uint16_t kGsmtapPort = 4729;

constexpr uint16_t kSendApdu = 59;
constexpr uint8_t kApduRequest = 0x02;
constexpr uint8_t kApduResponse = 0x10;

wire::Writer& pad(wire::Writer& out) {
    while (out.size() % 4 != 0)
        out.u8(0);
    return out;
}

void write_block(std::ofstream& out, uint32_t type, wire::Writer body) {
    pad(body);
    const auto length = static_cast<uint32_t>(body.size() + 12);
    wire::Writer block;
    block.u32(type).u32(length).bytes(body.data()).u32(length);
    out.write(reinterpret_cast<const char*>(block.data().data()), static_cast<std::streamsize>(block.size()));
}

void write_interface(std::ofstream& out, uint16_t link, std::string_view name) {
    wire::Writer body;
    body.u16(link).u16(0).u32(0);  // reserved; no limit of length
    body.u16(kNameOption).u16(static_cast<uint16_t>(name.size())).bytes({name.data(), name.size()});
    pad(body).u32(0);
    write_block(out, kInterfaceDescription, std::move(body));
}

wire::Writer& u16_big(wire::Writer& out, size_t value) {
    return out.u8(static_cast<uint8_t>(value >> 8)).u8(static_cast<uint8_t>(value));
}

// Names are padded with zeros to words.
wire::Writer upper_pdu(std::string_view dissector, Direction direction) {
    wire::Writer out;
    const size_t padded = (dissector.size() + 3) / 4 * 4;
    u16_big(u16_big(out, kTagDissector), padded).bytes({dissector.data(), dissector.size()});
    pad(out);
    if (direction != Direction::kEvent) {
        u16_big(u16_big(out, kTagDirection), 4).u8(0).u8(0).u8(0);
        out.u8(direction == Direction::kFromModem ? 1 : 0);
    }
    out.u32(0);
    return out;
}

// From and to the loop-back address, without a checksum of the UDP part.
wire::Bytes gsmtap(uint8_t type, Direction direction, wire::View payload) {
    constexpr size_t kIp = 20;
    constexpr size_t kUdp = 8;
    constexpr size_t kHeader = 16;
    payload.size = std::min<size_t>(payload.size, UINT16_MAX - kIp - kUdp - kHeader);
    wire::Writer out;
    out.u8(0x45).u8(0);
    u16_big(out, kIp + kUdp + kHeader + payload.size).u32(0).u8(64).u8(17);
    out.u16(0).u8(127).u8(0).u8(0).u8(1).u8(127).u8(0).u8(0).u8(1);
    u16_big(u16_big(u16_big(out, kGsmtapPort), kGsmtapPort), kUdp + kHeader + payload.size).u16(0);
    // Version, length in words, type; no time slot. The upper bit of the channel is "towards the network".
    out.u8(2).u8(kHeader / 4).u8(type).u8(0).u8(direction == Direction::kToModem ? 0x40 : 0).u8(0);
    out.u8(0).u8(0).u32(0).u8(0).u8(0).u8(0).u8(0).bytes(payload);
    wire::Bytes packet = out.take();
    uint32_t sum = 0;
    for (size_t i = 0; i < kIp; i += 2)
        sum += static_cast<uint32_t>(packet[i] << 8 | packet[i + 1]);
    sum = (sum & 0xFFFF) + (sum >> 16);
    sum = ~sum & 0xFFFF;
    packet[10] = static_cast<uint8_t>(sum >> 8);
    packet[11] = static_cast<uint8_t>(sum);
    return packet;
}

size_t width_of(const messages::DiagField& field) {
    using Field = messages::DiagField;
    return field.kind == Field::kU8 ? 1 : field.kind == Field::kU16 ? 2 : field.kind == Field::kI32 ? 4 : 0;
}

// What stands behind the numbers: the diag command or response itself. Empty when the packet carries none.
template <size_t N>
wire::View carried(const messages::DiagField (&fields)[N], wire::View rest) {
    for (const messages::DiagField& field : fields) {
        const size_t width = width_of(field);
        if (field.kind == messages::DiagField::kNone || width > rest.size)
            return {};
        if (width == 0)
            return rest;
        rest = {rest.data + width, rest.size - width};
    }
    return {};
}

wire::View carried(const messages::DiagMessage& message) {
    const messages::DiagOp* op = messages::diag_op(message.number);
    const messages::DiagEvent* event = messages::diag_event(message.number);
    if (message.kind == messages::DiagMessage::kRequest && op != nullptr)
        return carried(op->request, message.rest);
    if (message.kind == messages::DiagMessage::kEvent && event != nullptr)
        return carried(event->fields, message.rest);
    return {};
}

// A u16 count and as many bytes.
wire::View long_bytes(wire::View body, uint8_t type) {
    wire::Reader reader(wire::find_tlv(body, type).value_or(wire::View()));
    return reader.bytes(reader.u16());
}

}  // namespace

std::optional<timespec> system_line_time(const std::string& line, time_t now) {
    tm date{};
    int milliseconds = 0;
    if (sscanf(line.c_str(), "%2d-%2d %2d:%2d:%2d.%3d", &date.tm_mon, &date.tm_mday, &date.tm_hour,
               &date.tm_min, &date.tm_sec, &milliseconds) != 6)
        return std::nullopt;
    tm today{};
    localtime_r(&now, &today);
    --date.tm_mon;
    date.tm_year = today.tm_year;
    date.tm_isdst = -1;
    tm this_year = date;
    time_t seconds = mktime(&this_year);
    if (seconds > now + 1) {
        --date.tm_year;
        seconds = mktime(&date);
    }
    return timespec{seconds, milliseconds * 1'000'000L};
}

void Pcap::add_packet(const timespec& time, Interface interface, Direction direction, wire::Bytes bytes) {
    const auto microseconds =
        static_cast<uint64_t>(time.tv_sec) * 1'000'000 + static_cast<uint64_t>(time.tv_nsec) / 1000;
    packets_.push_back({microseconds, interface, direction, std::move(bytes)});
}

void Pcap::add(const WireRecord& record, const messages::QmiMessage* qmi) {
    if (!record.event.empty() || record.packet.empty())
        return;
    if (record.where == "at") {
        wire::Writer line = upper_pdu("at", record.direction);
        line.bytes(record.packet).u8('\r');
        return add_packet(record.time, kUpper, record.direction, line.take());
    }
    if (record.where == "dm")
        return add_gsmtap(record, kGsmtapDiag, record.packet);
    if (record.where == "diag") {
        const auto message = messages::decode_diag(record.direction == Direction::kToModem, record.packet);
        const wire::View inside = carried(message);
        if (inside.size > 0)
            add_gsmtap(record, kGsmtapDiag, inside);
        return;
    }
    if (qmi == nullptr)
        return;
    // The packet does not name its service: it stands in front, for the dissector.
    wire::Writer packet = upper_pdu("vxk_qmi", record.direction);
    packet.u16(qmi->service).u32(record.connection).u32(static_cast<uint32_t>(record.pid));
    packet.bytes(record.packet);
    add_packet(record.time, kUpper, record.direction, packet.take());
    if (qmi->service == messages::kUim && qmi->packet.message == kSendApdu)
        add_apdu(record, *qmi);
}

// A command and its response are one packet.
void Pcap::add_apdu(const WireRecord& record, const messages::QmiMessage& qmi) {
    const std::pair<uint32_t, uint32_t> key{record.connection, qmi.packet.transaction};
    if (qmi.packet.flags == wire::kQmiRequest) {
        commands_[key] = long_bytes(qmi.packet.body, kApduRequest).copy();
        return;
    }
    const auto command = commands_.find(key);
    if (command == commands_.end())
        return;
    wire::Bytes apdu = std::move(command->second);
    commands_.erase(command);
    const wire::View response = long_bytes(qmi.packet.body, kApduResponse);
    apdu.insert(apdu.end(), response.data, response.data + response.size);
    add_gsmtap(record, kGsmtapSim, apdu);
}

void Pcap::add_gsmtap(const WireRecord& record, uint8_t type, wire::View payload) {
    add_packet(record.time, kIp, record.direction, gsmtap(type, record.direction, payload));
}

void Pcap::add_system_line(const timespec& time, const std::string& line) {
    wire::Writer packet = upper_pdu("logcat_text_threadtime", Direction::kEvent);
    packet.bytes({line.data(), line.size()});
    add_packet(time, kUpper, Direction::kEvent, packet.take());
}

void Pcap::write(const std::string& path) {
    std::stable_sort(packets_.begin(), packets_.end(), [](const Packet& one, const Packet& other) {
        return one.microseconds < other.microseconds;
    });
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    wire::Writer section;
    section.u32(0x1A2B3C4D).u16(1).u16(0).u64(UINT64_MAX);
    write_block(out, kSectionHeader, std::move(section));
    write_interface(out, kLinkUpperPdu, "modem");
    write_interface(out, kLinkIpv4, "gsmtap");
    for (const Packet& packet : packets_) {
        const auto size = static_cast<uint32_t>(packet.bytes.size());
        wire::Writer body;
        body.u32(packet.interface).u32(static_cast<uint32_t>(packet.microseconds >> 32));
        body.u32(static_cast<uint32_t>(packet.microseconds)).u32(size).u32(size).bytes(packet.bytes);
        pad(body);
        if (packet.direction != Direction::kEvent)
            body.u16(kFlagsOption).u16(4).u32(packet.direction == Direction::kFromModem ? 1 : 2).u32(0);
        write_block(out, kEnhancedPacket, std::move(body));
    }
    out.close();
    if (!out)
        throw system_error("cannot write " + path, errno);
}

}  // namespace handset

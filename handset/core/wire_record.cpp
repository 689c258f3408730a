#include "wire_record.h"

#include <algorithm>

namespace handset {
namespace {

void append_number(std::string& out, uint64_t value, size_t width) {
    for (size_t i = 0; i < width; ++i)
        out += static_cast<char>(value >> (8 * i));
}

void append_short_text(std::string& out, std::string_view text) {
    const size_t size = std::min<size_t>(text.size(), UINT8_MAX);
    append_number(out, size, 1);
    out.append(text.data(), size);
}

std::string_view text_of(wire::View bytes) {
    return {reinterpret_cast<const char*>(bytes.data), bytes.size};
}

}  // namespace

void append_record(std::string& out, const WireRecord& record, const timespec& time, wire::View packet,
                   std::string_view event) {
    const size_t start = out.size();
    append_number(out, 0, 4);
    append_number(out, static_cast<uint64_t>(time.tv_sec), 8);
    append_number(out, static_cast<uint64_t>(time.tv_nsec), 4);
    append_number(out, static_cast<uint8_t>(record.direction), 1);
    append_number(out, record.connection, 4);
    append_number(out, static_cast<uint32_t>(record.pid), 4);
    append_short_text(out, record.where);
    append_short_text(out, record.fault);
    append_number(out, packet.size > 0 ? 1 : 0, 1);
    out.append(text_of(packet)).append(event);
    std::string length;
    append_number(length, out.size() - start - 4, 4);
    out.replace(start, 4, length);
}

std::optional<ReadRecord> take_record(wire::View& bytes) {
    wire::Reader reader(bytes);
    const wire::View whole = reader.bytes(reader.u32());
    if (!reader.ok())
        return std::nullopt;
    wire::Reader fields(whole);
    ReadRecord record;
    record.time.tv_sec = static_cast<time_t>(fields.u64());
    record.time.tv_nsec = static_cast<long>(fields.u32());
    record.direction = static_cast<Direction>(std::min<uint8_t>(fields.u8(), 2));
    record.connection = fields.u32();
    record.pid = static_cast<pid_t>(fields.u32());
    record.where = text_of(fields.bytes(fields.u8()));
    record.fault = text_of(fields.bytes(fields.u8()));
    const bool is_packet = fields.u8() != 0;
    const wire::View rest = fields.rest();
    if (!fields.ok())
        return std::nullopt;
    if (is_packet)
        record.packet = rest;
    else
        record.event = text_of(rest);
    bytes = reader.rest();
    return record;
}

}  // namespace handset

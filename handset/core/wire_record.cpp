#include "wire_record.h"

#include <algorithm>

namespace handset {
namespace {

constexpr uint64_t kEndOfYear9999 = 253402214400;  // but for a day, so that it is in every zone

// Little-endian numbers, a few at a time.
class Numbers {
public:
    Numbers& number(uint64_t value, size_t width) {
        for (size_t i = 0; i < width; ++i)
            bytes_[size_++] = static_cast<char>(value >> (8 * i));
        return *this;
    }
    std::string_view text() const { return {bytes_, size_}; }

private:
    char bytes_[32] = {};
    size_t size_ = 0;
};

void append_text(std::string& out, std::string_view text, size_t width) {
    const size_t size = std::min<size_t>(text.size(), (size_t{1} << (8 * width)) - 1);
    out.append(Numbers().number(size, width).text()).append(text, 0, size);
}

std::string_view text_of(wire::View bytes) {
    return {reinterpret_cast<const char*>(bytes.data), bytes.size};
}

}  // namespace

void append_record(std::string& out, const WireRecord& record, const timespec& time, wire::View packet) {
    const size_t start = out.size();
    Numbers head;
    head.number(0, 4).number(static_cast<uint64_t>(time.tv_sec), 8);
    head.number(static_cast<uint64_t>(time.tv_nsec), 4).number(static_cast<uint8_t>(record.direction), 1);
    head.number(record.connection, 4).number(static_cast<uint32_t>(record.pid), 4).number(record.number, 4);
    out.append(head.text());
    append_text(out, record.where, 1);
    append_text(out, record.fault, 1);
    append_text(out, record.event, 1);
    append_text(out, record.command, 2);
    const size_t kept = wire::without_zeros(packet);
    out.append(Numbers().number(packet.size - kept, 4).text()).append(text_of({packet.data, kept}));
    out.replace(start, 4, Numbers().number(out.size() - start - 4, 4).text());
}

std::optional<WireRecord> take_record(wire::View& bytes) {
    wire::Reader reader(bytes);
    const wire::View whole = reader.bytes(reader.u32());
    if (!reader.ok())
        return std::nullopt;
    wire::Reader fields(whole);
    WireRecord record;
    // Of a file that is damaged they may be none that a calendar has.
    record.time.tv_sec = static_cast<time_t>(std::min(fields.u64(), kEndOfYear9999));
    record.time.tv_nsec = static_cast<long>(std::min<uint32_t>(fields.u32(), 999'999'999));
    record.direction = static_cast<Direction>(std::min<uint8_t>(fields.u8(), 2));
    record.connection = fields.u32();
    record.pid = static_cast<pid_t>(fields.u32());
    record.number = fields.u32();
    record.where = text_of(fields.bytes(fields.u8()));
    record.fault = text_of(fields.bytes(fields.u8()));
    record.event = text_of(fields.bytes(fields.u8()));
    record.command = text_of(fields.bytes(fields.u16()));
    const size_t zeros = fields.u32();
    record.packet = fields.rest().copy();
    // No packet is longer than one of diag.
    if (!fields.ok() || zeros > wire::kDiagPacketMax)
        return std::nullopt;
    record.packet.resize(record.packet.size() + zeros);
    bytes = reader.rest();
    return record;
}

}  // namespace handset

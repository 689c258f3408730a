#include "wire.h"

#include <algorithm>
#include <cstring>

namespace wire {

namespace {

QmiPacket read_head(Reader& reader) {
    QmiPacket packet;
    packet.flags = reader.u8();
    packet.transaction = reader.u16();
    packet.message = reader.u16();
    return packet;
}

}  // namespace

size_t without_zeros(View bytes) {
    constexpr uint8_t kZeros[32] = {};
    size_t size = bytes.size;
    while (size >= sizeof kZeros && memcmp(bytes.data + size - sizeof kZeros, kZeros, sizeof kZeros) == 0)
        size -= sizeof kZeros;
    while (size > 0 && bytes.data[size - 1] == 0)
        --size;
    return size;
}

uint64_t Reader::number(size_t width) {
    const View field = bytes(width);
    uint64_t value = 0;
    for (size_t i = field.size; i > 0; --i)
        value = (value << 8) | field.data[i - 1];
    return value;
}

View Reader::bytes(size_t count) {
    if (count > left()) {
        ok_ = false;
        position_ = bytes_.size;
        return {};
    }
    const View field(bytes_.data + position_, count);
    position_ += count;
    return field;
}

Writer& Writer::number(uint64_t value, size_t width) {
    uint8_t low[sizeof value];
    for (size_t i = 0; i < sizeof low; ++i)
        low[i] = static_cast<uint8_t>(value >> (8 * i));
    return bytes({low, width});
}

Writer& Writer::bytes(View bytes) {
    buffer_.insert(buffer_.end(), bytes.data, bytes.data + bytes.size);
    return *this;
}

Writer& Writer::zeros(size_t count) {
    buffer_.resize(buffer_.size() + count);
    return *this;
}

Writer& Writer::tlv(uint8_t type, View value) {
    const size_t length = std::min<size_t>(value.size, UINT16_MAX);
    return u8(type).u16(static_cast<uint16_t>(length)).bytes({value.data, length});
}

size_t Writer::begin_tlv(uint8_t type) {
    u8(type).u16(0);
    return buffer_.size();
}

bool Writer::end_tlv(size_t begun) {
    const size_t length = buffer_.size() - begun;
    buffer_[begun - 2] = static_cast<uint8_t>(length);
    buffer_[begun - 1] = static_cast<uint8_t>(length >> 8);
    return length <= UINT16_MAX;
}

std::optional<Tlv> TlvReader::next() {
    if (reader_.left() == 0)
        return std::nullopt;
    Tlv tlv;
    tlv.type = reader_.u8();
    tlv.value = reader_.bytes(reader_.u16());
    if (!reader_.ok())
        return std::nullopt;
    return tlv;
}

bool tlvs_are_whole(View body) {
    TlvReader reader(body);
    while (reader.next()) {
    }
    return reader.ok();
}

std::optional<View> find_tlv(View body, uint8_t type) {
    std::optional<View> found;
    TlvReader reader(body);
    while (const auto tlv = reader.next()) {
        if (tlv->type == type)
            found = tlv->value;
    }
    return found;
}

Bytes encode(const QmiPacket& packet) {
    const size_t length = std::min<size_t>(packet.body.size, UINT16_MAX);
    Writer writer(kQmiHeaderSize + length);
    writer.zeros(kQmiHeaderSize).bytes({packet.body.data, length});
    Bytes bytes = writer.take();
    put_head(packet, bytes);
    return bytes;
}

void put_head(const QmiPacket& head, Bytes& packet) {
    const size_t length = packet.size() - kQmiHeaderSize;
    const uint8_t bytes[kQmiHeaderSize] = {head.flags,
                                           static_cast<uint8_t>(head.transaction),
                                           static_cast<uint8_t>(head.transaction >> 8),
                                           static_cast<uint8_t>(head.message),
                                           static_cast<uint8_t>(head.message >> 8),
                                           static_cast<uint8_t>(length),
                                           static_cast<uint8_t>(length >> 8)};
    std::copy_n(bytes, sizeof bytes, packet.begin());
}

std::optional<QmiPacket> decode_qmi(View bytes) {
    Reader reader(bytes);
    auto packet = read_head(reader);
    const size_t length = reader.u16();
    if (!reader.ok() || length != reader.left())
        return std::nullopt;
    packet.body = reader.rest();
    return packet;
}

std::optional<QmiPacket> decode_qmi_head(View bytes) {
    Reader reader(bytes);
    const auto packet = read_head(reader);
    return reader.ok() ? std::optional(packet) : std::nullopt;
}

}  // namespace wire

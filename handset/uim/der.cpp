#include "der.h"

namespace handset {
namespace {

constexpr uint8_t kMoreTagBytes = 0x1F;
constexpr size_t kTagBytesMax = 3;
constexpr uint8_t kLongLength = 0x80;
constexpr size_t kLengthBytesMax = 4;

}  // namespace

std::optional<uint32_t> DerReader::tag() {
    uint32_t tag = reader_.u8();
    if ((tag & kMoreTagBytes) != kMoreTagBytes)
        return tag;
    for (size_t count = 1; count < kTagBytesMax; ++count) {
        const uint8_t byte = reader_.u8();
        tag = tag << 8 | byte;
        if ((byte & 0x80) == 0)
            return tag;
    }
    return std::nullopt;
}

std::optional<size_t> DerReader::length() {
    const uint8_t first = reader_.u8();
    if (first < kLongLength)
        return first;
    const size_t count = first & 0x7FU;
    if (count == 0 || count > kLengthBytesMax)
        return std::nullopt;
    size_t length = 0;
    for (size_t i = 0; i < count; ++i)
        length = length << 8 | reader_.u8();
    return length;
}

std::optional<DerObject> DerReader::next() {
    if (!ok_ || reader_.left() == 0)
        return std::nullopt;
    const auto tag = this->tag();
    const auto length = tag ? this->length() : std::nullopt;
    const wire::View value = reader_.bytes(length.value_or(0));
    ok_ = length && reader_.ok();
    return ok_ ? std::optional<DerObject>({*tag, value}) : std::nullopt;
}

bool is_der(wire::View bytes) {
    DerReader reader(bytes);
    while (reader.next()) {
    }
    return reader.ok();
}

std::optional<wire::View> find_der(wire::View bytes, uint32_t tag) {
    DerReader reader(bytes);
    while (const auto object = reader.next()) {
        if (object->tag == tag)
            return object->value;
    }
    return std::nullopt;
}

std::optional<DerObject> single_der(wire::View bytes) {
    DerReader reader(bytes);
    const auto object = reader.next();
    if (reader.next() || !reader.ok())
        return std::nullopt;
    return object;
}

std::optional<uint32_t> der_number(wire::View value) {
    if (value.size == 0 || value.size > 5 || (value.size == 5 && value.data[0] != 0) || value.data[0] >= 0x80)
        return std::nullopt;
    uint32_t number = 0;
    for (size_t i = 0; i < value.size; ++i)
        number = number << 8 | value.data[i];
    return number;
}

void DerWriter::big_endian(uint32_t value) {
    bool started = false;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<uint8_t>(value >> shift);
        started = started || byte != 0 || shift == 0;
        if (started)
            bytes_.push_back(byte);
    }
}

DerWriter& DerWriter::object(uint32_t tag, wire::View value) {
    big_endian(tag);
    if (value.size >= kLongLength) {
        const int count = value.size > 0xFFFFFF ? 4 : value.size > 0xFFFF ? 3 : value.size > 0xFF ? 2 : 1;
        bytes_.push_back(static_cast<uint8_t>(kLongLength | count));
    }
    big_endian(static_cast<uint32_t>(value.size));
    if (value.size > 0)
        bytes_.insert(bytes_.end(), value.data, value.data + value.size);
    return *this;
}

DerWriter& DerWriter::number(uint32_t tag, uint32_t value) {
    DerWriter digits;
    digits.big_endian(value);
    if (digits.bytes_.front() >= 0x80)
        digits.bytes_.insert(digits.bytes_.begin(), 0);
    return object(tag, digits.bytes_);
}

DerWriter& DerWriter::bits(uint32_t tag, uint8_t bits) {
    uint8_t unused = 0;
    while (unused < 7 && (bits >> unused & 1) == 0)
        ++unused;
    const uint8_t value[] = {unused, bits};
    return object(tag, {value, sizeof value});
}

wire::Bytes der(uint32_t tag, wire::View value) {
    return DerWriter().object(tag, value).take();
}

}  // namespace handset

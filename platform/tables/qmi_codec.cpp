#include "qmi_codec.h"

#include <algorithm>
#include <cstring>

namespace seam {

namespace {

using Element = qmi_idl_element;
using wire::Reader;
using wire::View;
using wire::Writer;

// Numbers in a C structure are in the machine's own order and may be unaligned.
template <typename T>
uint64_t load_as(const uint8_t* from) {
    T value;
    memcpy(&value, from, sizeof value);
    return value;
}

template <typename T>
void store_as(uint8_t* to, uint64_t number) {
    const T value = static_cast<T>(number);
    memcpy(to, &value, sizeof value);
}

uint64_t load(const uint8_t* from, size_t width) {
    switch (width) {
        case 1:
            return *from;
        case 2:
            return load_as<uint16_t>(from);
        case 4:
            return load_as<uint32_t>(from);
        default:
            return load_as<uint64_t>(from);
    }
}

void store(uint8_t* to, size_t width, uint64_t number) {
    switch (width) {
        case 1:
            return store_as<uint8_t>(to, number);
        case 2:
            return store_as<uint16_t>(to, number);
        case 4:
            return store_as<uint32_t>(to, number);
        default:
            return store_as<uint64_t>(to, number);
    }
}

bool fits(uint64_t number, size_t width) {
    return width >= 8 || number >> (8 * width) == 0;
}

bool has_count(const Element& array) {
    return array.count_offset != QMI_IDL_NO_OFFSET;
}

bool is_bytes(const Element& array) {
    return array.member_count == 0 && array.wire_width == 1 && array.c_width == 1;
}

bool encode_value(const Element& element, const uint8_t* holder, Writer& writer);

bool encode_number(const Element& element, const uint8_t* from, Writer& writer) {
    const uint64_t number = load(from, element.c_width);
    writer.number(number, element.wire_width);
    return fits(number, element.wire_width);
}

bool encode_members(const Element& element, const uint8_t* from, Writer& writer) {
    return std::all_of(element.members, element.members + element.member_count,
                       [&](const Element& member) { return encode_value(member, from, writer); });
}

bool encode_array(const Element& element, const uint8_t* holder, Writer& writer) {
    uint64_t count = element.bound;
    if (has_count(element))
        count = load(holder + element.count_offset, element.count_width);
    if (count > element.bound)
        return false;
    if (element.prefix_width != 0)
        writer.number(count, element.prefix_width);
    const uint8_t* item = holder + element.offset;
    if (is_bytes(element)) {
        writer.bytes({item, count});
        return true;
    }
    for (; count > 0; --count, item += element.stride) {
        if (!(element.member_count == 0 ? encode_number(element, item, writer)
                                        : encode_members(element, item, writer)))
            return false;
    }
    return true;
}

bool encode_value(const Element& element, const uint8_t* holder, Writer& writer) {
    switch (element.kind) {
        case QMI_IDL_INTEGER:
            return encode_number(element, holder + element.offset, writer);
        case QMI_IDL_STRUCT:
            return encode_members(element, holder + element.offset, writer);
        default:
            return encode_array(element, holder, writer);
    }
}

// Decoding follows the same shape. A null destination means that the value is passed over: the items of a
// lenient array beyond its bound must be there, but have no room in the C structure.
bool decode_value(const Element& element, uint8_t* holder, Reader& reader);

uint8_t* at(uint8_t* holder, size_t offset) {
    return holder != nullptr ? holder + offset : nullptr;
}

bool decode_number(const Element& element, uint8_t* to, Reader& reader) {
    const uint64_t number = reader.number(element.wire_width);
    if (reader.ok() && to != nullptr)
        store(to, element.c_width, number);
    return reader.ok();
}

bool decode_members(const Element& element, uint8_t* to, Reader& reader) {
    return std::all_of(element.members, element.members + element.member_count,
                       [&](const Element& member) { return decode_value(member, to, reader); });
}

bool decode_item(const Element& array, uint8_t* to, Reader& reader) {
    return array.member_count == 0 ? decode_number(array, to, reader) : decode_members(array, to, reader);
}

bool decode_bytes(const Element& array, uint8_t* to, uint64_t count, Reader& reader) {
    const View bytes = reader.bytes(count);
    const size_t stored = std::min<size_t>(bytes.size, array.bound);
    if (to != nullptr && stored != 0)
        memcpy(to, bytes.data, stored);
    return reader.ok();
}

bool decode_items(const Element& array, uint8_t* first, uint64_t count, Reader& reader) {
    if (is_bytes(array))
        return decode_bytes(array, first, count, reader);
    for (uint64_t i = 0; i < count; ++i) {
        uint8_t* item = i < array.bound ? at(first, i * array.stride) : nullptr;
        if (!decode_item(array, item, reader))
            return false;
    }
    return true;
}

// The items fill the TLV, and their count is held against the number that another element brought.
bool decode_unprefixed(const Element& array, uint8_t* holder, Reader& reader) {
    uint8_t* first = at(holder, array.offset);
    uint64_t count = 0;
    if (is_bytes(array)) {
        count = reader.left();
        if (count > array.bound || !decode_bytes(array, first, count, reader))
            return false;
    }
    for (; reader.left() != 0; ++count) {
        if (count == array.bound || !decode_item(array, at(first, count * array.stride), reader))
            return false;
    }
    return holder == nullptr || count == load(holder + array.count_offset, array.count_width);
}

bool decode_array(const Element& array, uint8_t* holder, Reader& reader) {
    if (has_count(array) && array.prefix_width == 0)
        return decode_unprefixed(array, holder, reader);
    const uint64_t count = has_count(array) ? reader.number(array.prefix_width) : array.bound;
    if (!reader.ok() || (count > array.bound && !(array.flags & QMI_IDL_LENIENT)))
        return false;
    if (has_count(array) && holder != nullptr)
        store(holder + array.count_offset, array.count_width, count);
    return decode_items(array, at(holder, array.offset), count, reader);
}

bool decode_value(const Element& element, uint8_t* holder, Reader& reader) {
    switch (element.kind) {
        case QMI_IDL_INTEGER:
            return decode_number(element, at(holder, element.offset), reader);
        case QMI_IDL_STRUCT:
            return decode_members(element, at(holder, element.offset), reader);
        default:
            return decode_array(element, holder, reader);
    }
}

// Only a value of one possible width can be of the wrong width; behind a counted one, more bytes may follow.
bool has_fixed_width(const Element& element) {
    if (element.kind == QMI_IDL_ARRAY && has_count(element))
        return false;
    return std::all_of(element.members, element.members + element.member_count, has_fixed_width);
}

bool decode_tlv(const Element& element, View value, uint8_t* structure) {
    Reader reader(value);
    return decode_value(element, structure, reader) && (reader.left() == 0 || !has_fixed_width(element));
}

}  // namespace

const qmi_idl_message* find_message(qmi_idl_service_object_type service, qmi_idl_type_of_message_type type,
                                    unsigned message_id) {
    if (service == nullptr)
        return nullptr;
    for (uint32_t i = 0; i < service->message_count; ++i) {
        const qmi_idl_message& message = service->messages[i];
        if (message.type == type && message.message_id == message_id)
            return &message;
    }
    return nullptr;
}

std::optional<wire::Bytes> encode_message(const qmi_idl_message& message, const void* structure,
                                          size_t room) {
    constexpr size_t kTlvHead = 3;
    const auto* holder = static_cast<const uint8_t*>(structure);
    // Little takes more room in a TLV than in the structure.
    Writer body(room + message.element_count * kTlvHead + message.c_struct_len);
    body.zeros(room);
    for (uint32_t i = 0; i < message.element_count; ++i) {
        const Element& element = message.elements[i];
        if ((element.flags & QMI_IDL_OPTIONAL) && holder[element.valid_offset] == 0)
            continue;
        const size_t begun = body.begin_tlv(element.tlv);
        if (!encode_value(element, holder, body) || !body.end_tlv(begun))
            return std::nullopt;
    }
    return body.take();
}

bool decode_message(const qmi_idl_message& message, View body, void* structure) {
    auto* holder = static_cast<uint8_t*>(structure);
    if (!wire::tlvs_are_whole(body))
        return false;
    for (uint32_t i = 0; i < message.element_count; ++i) {
        const Element& element = message.elements[i];
        const bool is_optional = (element.flags & QMI_IDL_OPTIONAL) != 0;
        const auto value = wire::find_tlv(body, element.tlv);
        if (!value && !is_optional)
            return false;
        if (!value)
            continue;
        if (!decode_tlv(element, *value, holder))
            return false;
        if (is_optional)
            holder[element.valid_offset] = 1;
    }
    return true;
}

}  // namespace seam

// Builders for the tables of a service description, so that a table reads as the list of its TLVs. Offsets
// and widths in C come from the structure itself, by VXK_FIELD.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qmi_idl_lib.h"

namespace seam {

/// The place of a member in a C structure.
struct Field {
    size_t offset;
    size_t size;
};

#define VXK_FIELD(type, member) (::seam::Field{offsetof(type, member), sizeof(type::member)})

/// A number of `wire_width` bytes on the wire.
constexpr qmi_idl_element number(uint8_t tlv, uint8_t wire_width, Field field) {
    qmi_idl_element element{};
    element.tlv = tlv;
    element.kind = QMI_IDL_INTEGER;
    element.wire_width = wire_width;
    element.c_width = static_cast<uint8_t>(field.size);
    element.offset = static_cast<uint32_t>(field.offset);
    return element;
}

/// A member of a structure: its place in the table is its place on the wire.
constexpr qmi_idl_element number(uint8_t wire_width, Field field) {
    return number(0, wire_width, field);
}

/// Members one after another. Their offsets count from `offset`.
template <size_t N>
constexpr qmi_idl_element structure(uint8_t tlv, size_t offset, const qmi_idl_element (&members)[N]) {
    qmi_idl_element element{};
    element.tlv = tlv;
    element.kind = QMI_IDL_STRUCT;
    element.offset = static_cast<uint32_t>(offset);
    element.members = members;
    element.member_count = N;
    return element;
}

/// A count of `prefix_width` bytes and that many bytes, at most as many as `field` holds.
constexpr qmi_idl_element byte_array(uint8_t tlv, uint8_t prefix_width, Field count, Field field) {
    qmi_idl_element element = number(tlv, 1, field);
    element.kind = QMI_IDL_ARRAY;
    element.prefix_width = prefix_width;
    element.count_width = static_cast<uint8_t>(count.size);
    element.count_offset = static_cast<uint32_t>(count.offset);
    element.c_width = 1;
    element.stride = 1;
    element.bound = static_cast<uint32_t>(field.size);
    return element;
}

/// A count of one byte and that many structures of `item_size` bytes in C, at most as many as `field` holds.
template <size_t N>
constexpr qmi_idl_element list(uint8_t tlv, Field count, Field field, size_t item_size,
                               const qmi_idl_element (&members)[N]) {
    qmi_idl_element element = byte_array(tlv, 1, count, field);
    element.stride = static_cast<uint32_t>(item_size);
    element.bound = static_cast<uint32_t>(field.size / item_size);
    element.members = members;
    element.member_count = N;
    return element;
}

constexpr qmi_idl_element optional(qmi_idl_element element, Field valid) {
    element.flags |= QMI_IDL_OPTIONAL;
    element.valid_offset = static_cast<uint32_t>(valid.offset);
    return element;
}

constexpr qmi_idl_element lenient(qmi_idl_element element) {
    element.flags |= QMI_IDL_LENIENT;
    return element;
}

/// The standard result at the start of a response's C structure.
constexpr qmi_idl_element kResultMembers[] = {
    number(2, VXK_FIELD(qmi_response_type_v01, result)),
    number(2, VXK_FIELD(qmi_response_type_v01, error)),
};
constexpr qmi_idl_element kResult = structure(0x02, 0, kResultMembers);

template <size_t N>
constexpr qmi_idl_message message(qmi_idl_type_of_message_type type, uint16_t id, size_t c_struct_len,
                                  const qmi_idl_element (&elements)[N]) {
    return {type, id, static_cast<uint32_t>(c_struct_len), elements, N};
}

/// The most bytes of a value on the wire.
constexpr uint32_t longest_value(const qmi_idl_element& element) {
    uint32_t bytes = element.member_count == 0 ? element.wire_width : 0;
    for (uint32_t i = 0; i < element.member_count; ++i)
        bytes += longest_value(element.members[i]);
    return element.kind == QMI_IDL_ARRAY ? element.prefix_width + element.bound * bytes : bytes;
}

/// The most bytes of the TLVs of any of the messages.
template <size_t N>
constexpr uint32_t longest_message(const qmi_idl_message (&messages)[N]) {
    constexpr uint32_t kTlvHeader = 3;
    uint32_t longest = 0;
    for (const qmi_idl_message& message : messages) {
        uint32_t bytes = 0;
        for (uint32_t i = 0; i < message.element_count; ++i)
            bytes += kTlvHeader + longest_value(message.elements[i]);
        if (bytes > longest)
            longest = bytes;
    }
    return longest;
}

template <size_t N>
constexpr qmi_idl_service_object service(uint32_t service_id, const qmi_idl_message (&messages)[N]) {
    constexpr uint32_t kLibraryVersion = 6;
    constexpr uint32_t kIdlVersion = 1;
    return {kLibraryVersion, kIdlVersion, service_id, longest_message(messages), messages, N};
}

}  // namespace seam

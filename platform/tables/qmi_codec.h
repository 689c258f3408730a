// QMI messages between their C structure and their TLVs, by the tables of qmi_idl_lib.h. Any thread; nothing
// is kept.
#pragma once

#include <optional>

#include "qmi_idl_lib.h"
#include "wire.h"

namespace seam {

/// The description of one message, or null when the service does not have it.
const qmi_idl_message* find_message(qmi_idl_service_object_type service, qmi_idl_type_of_message_type type,
                                    unsigned message_id);

/// The TLVs of the message in `structure`, which has message.c_struct_len bytes, behind `room` zero bytes for
/// what else is in the packet. Nothing when a count is above its array's bound, a number does not fit its
/// width on the wire, or a TLV would be longer than 65,535 bytes.
std::optional<wire::Bytes> encode_message(const qmi_idl_message& message, const void* structure,
                                          size_t room = 0);

/// Fills `structure`, message.c_struct_len zero bytes, from TLVs. Of a TLV that is there twice the last one
/// counts; one that the table does not know is skipped. False when the TLVs do not decode; then the elements
/// before the bad one are filled.
bool decode_message(const qmi_idl_message& message, wire::View body, void* structure);

}  // namespace seam

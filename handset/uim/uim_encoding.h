// What the UIM service says of slots and cards, as bytes of its messages.
#pragma once

#include <optional>

#include "uim_slots.h"
#include "wire.h"

namespace handset {

/// The card status of all logical slots.
wire::Bytes encode_card_status(const UimSlots& slots);

/// The TLVs of the slot status: a status and an information of each physical slot, and the EIDs.
void put_slot_status(wire::Writer& body, const UimSlots& slots);

/// The slot of a session, by the service's number of its type; nothing for one that there is not.
std::optional<uint8_t> session_slot(const UimSlots& slots, uint8_t session_type);

/// The attributes of a file, and its control parameters.
wire::Bytes encode_file_attributes(const Card& card, size_t place);

/// A count of `width` bytes, then the bytes.
wire::Bytes uim_with_count(wire::View bytes, size_t width);

}  // namespace handset

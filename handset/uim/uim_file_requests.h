// The requests of the UIM service that read files of a card as the phone does, without a channel.
#pragma once

#include "qmi_service.h"
#include "uim_slots.h"

namespace handset {

/// The body of the answer to one of kUimReadTransparent, kUimReadRecord and kUimGetFileAttributes.
wire::Bytes answer_file_request(const UimSlots& slots, const QmiRequest& request);

}  // namespace handset

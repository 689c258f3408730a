// From a C structure to the TLVs that it stands for, where the client library that sends them is not ours. No
// type of the seam's headers is used, because they may be another's.
#pragma once

#include <cstdint>
#include <optional>

#include "wire.h"

namespace seam {

/// The TLVs of a request or response. `description`: of the service, laid out as qmi_idl_lib.h has it, or
/// null for one of UIM, statistics and SAR. Nothing for a message that is not described, or whose structure
/// has another size than it should.
std::optional<wire::Bytes> encode_structure(uint16_t service, const void* description, bool is_request,
                                            unsigned message, const void* structure, size_t size);

}  // namespace seam

// The functions of an eUICC's profile manager, each a request and a response with a tag of its own.
#pragma once

#include <functional>
#include <optional>

#include "apdu.h"
#include "der.h"
#include "euicc_memory.h"

namespace handset {

/// What the functions work on. `changed` is called after the enabled profile may have become another one; the
/// phone is to begin with the card anew when `refresh` says so.
struct Es10 {
    EuiccMemory& memory;
    const EuiccProfile& profile;
    std::function<void(bool refresh)> changed;
};

/// The response to one whole request, or the status words that refuse it: kSwNoSuchData for a tag that is no
/// function's, kSwWrongData for a request that does not read.
CardAnswer answer_es10(Es10& es10, const DerObject& request);

/// The version of its standard that the eUICC follows.
wire::View es10_version();

/// The groups of functions, each in a file of its own; nothing when a request does not read. What a function
/// answers is what stands inside its tag.
using Es10Answer = std::optional<wire::Bytes>;
namespace es10 {
Es10Answer profiles_info(Es10& es10, wire::View request);
Es10Answer enable_profile(Es10& es10, wire::View request);
Es10Answer disable_profile(Es10& es10, wire::View request);
Es10Answer delete_profile(Es10& es10, wire::View request);
Es10Answer set_nickname(Es10& es10, wire::View request);
Es10Answer memory_reset(Es10& es10, wire::View request);
Es10Answer list_notifications(Es10& es10, wire::View request);
Es10Answer retrieve_notifications(Es10& es10, wire::View request);
Es10Answer remove_notification(Es10& es10, wire::View request);
Es10Answer configured_addresses(Es10& es10, wire::View request);
Es10Answer set_dp_address(Es10& es10, wire::View request);
Es10Answer euicc_info_1(Es10& es10, wire::View request);
Es10Answer euicc_info_2(Es10& es10, wire::View request);
Es10Answer euicc_challenge(Es10& es10, wire::View request);
Es10Answer euicc_data(Es10& es10, wire::View request);
Es10Answer authorisation_table(Es10& es10, wire::View request);
Es10Answer authenticate_server(Es10& es10, wire::View request);
Es10Answer prepare_download(Es10& es10, wire::View request);
Es10Answer cancel_session(Es10& es10, wire::View request);

/// An answer that is a result and nothing else.
wire::Bytes result(Es10Result result);

/// A text of an address, a name: valid UTF-8 of at most so many bytes.
std::optional<std::string> utf8(wire::View bytes, size_t longest);
}  // namespace es10

}  // namespace handset

// What is in a card that is a USIM, and in one without any.
#pragma once

#include <string>

#include "card_files.h"

namespace handset {

/// The AID of every USIM.
wire::View usim_aid();

/// The files of a card with a USIM. The ICCID has 18 to 20 digits, the IMSI 15.
CardFiles usim_files(const std::string& iccid, const std::string& imsi, const std::string& provider);

/// The digits of an ICCID as its file holds them, and as they are read.
wire::Bytes iccid_bytes(const std::string& iccid);
std::string iccid_text(wire::View bytes);

/// The digits of the IMSI in the USIM; empty when there is none.
std::string imsi_of(const CardFiles& files);

}  // namespace handset

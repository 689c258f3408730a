// How the sockets of the handset's folder are reached. Any thread.
#pragma once

#include <chrono>
#include <string>

#include "unique_fd.h"

namespace seam {

/// The path of a place in the handset's folder.
std::string handset_path(const std::string& place);

/// How often one that waits for a service looks again. Nothing but connecting tells whether a socket is
/// listened to, and listening leaves no trace that a file watch could see; looking holds whatever becomes of
/// the folder in the meantime.
constexpr std::chrono::milliseconds kLookAgain{10};

/// A connection to the SOCK_SEQPACKET socket at a place in the handset's folder, or an empty descriptor when
/// nobody accepts one there.
host::UniqueFd connect_to(const std::string& place);

}  // namespace seam

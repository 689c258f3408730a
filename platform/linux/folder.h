// The handset's folder: where it is, and how its sockets are reached. Any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "unique_fd.h"

namespace seam {

/// VXK_HANDSET_DIR, or /tmp/vxk-handset-<uid>. Asked anew at every call, so that one process can see several
/// handsets.
std::string handset_folder();

/// The folder's socket of one QMI service.
std::string qmi_socket_path(uint32_t service_id);

/// How often one that waits for a service looks again. Nothing but connecting tells whether a socket is
/// listened to, and listening leaves no trace that a file watch could see; looking holds whatever becomes of
/// the folder in the meantime.
constexpr std::chrono::milliseconds kLookAgain{10};

/// A connection to the SOCK_SEQPACKET socket at `path`, or an empty descriptor when nobody accepts one there.
UniqueFd connect_to(const std::string& path);

}  // namespace seam

// Where the two sides meet on a host: the folder of a simulated handset, and what lies at which place in it.
// Nothing here keeps state; any thread.
#pragma once

#include <sys/un.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

/// Places in a handset's folder.
constexpr char kQmiPlace[] = "qmi";
constexpr char kDiagPlace[] = "diag";
constexpr char kPropertiesPlace[] = "properties";
constexpr char kLogPlace[] = "log";
constexpr char kSystemLogPlace[] = "log/system.log";

/// The socket of one QMI service.
std::string qmi_place(uint32_t service_id);

/// The longest path of a socket, so that every program that speaks to the handset can hold it.
constexpr size_t kSocketPathMax = 99;

/// /tmp/vxk-handset-<uid>.
std::string default_handset_folder();

/// VXK_HANDSET_DIR as it was given, the environment's own; null when it is unset or empty. Asked anew at
/// every call, so that one process can see several handsets.
const char* named_handset_folder();

/// The address of the socket at `path`, or nothing when the path is longer than kSocketPathMax.
std::optional<sockaddr_un> socket_address(const std::string& path);

}  // namespace host

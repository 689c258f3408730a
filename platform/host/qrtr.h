// Sockets of the kernel's modem bus (QRTR, address family AF_QIPCRTR), and the packets of its name service.
// Nothing here keeps state but the sockets; any thread.
#pragma once

#include <linux/qrtr.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "unique_fd.h"

namespace host {

struct QrtrAddress {
    uint32_t node = 0;
    uint32_t port = 0;

    bool operator==(const QrtrAddress& other) const { return node == other.node && port == other.port; }
    bool operator<(const QrtrAddress& other) const {
        return node != other.node ? node < other.node : port < other.port;
    }
};

/// The longest packet that the bus carries.
constexpr size_t kQrtrPacketMax = 65535;

/// A datagram socket with a port of its own. Send and receive never wait: a receive that did would hold the
/// socket's lock against senders, so whoever wants to wait polls.
struct QrtrSocket {
    UniqueFd fd;
    QrtrAddress own;

    /// False with errno when the packet did not leave.
    bool send(const QrtrAddress& to, const void* bytes, size_t size) const;

    /// The packet's size, cut to `size`, and who sent it; a negative number with errno when there is none.
    ssize_t receive(void* bytes, size_t size, QrtrAddress& from) const;

    /// Tells the name service of the own node: QRTR_TYPE_NEW_LOOKUP with a service and instance 0 for any,
    /// QRTR_TYPE_NEW_SERVER with this socket's own. False with errno.
    bool tell_names(qrtr_pkt_type command, uint32_t service, uint32_t instance) const;
};

/// Without a descriptor, and with errno, when the kernel has no such bus or no room.
QrtrSocket open_qrtr_socket();

/// What the name service says, in numbers of this machine.
struct QrtrNews {
    uint32_t command = 0;   // qrtr_pkt_type
    uint32_t service = 0;   // NEW_SERVER, DEL_SERVER; all words of the packet are 0 at a lookup's end
    uint32_t instance = 0;  // the interface version in the low byte, the instance above it
    QrtrAddress address;    // NEW_SERVER, DEL_SERVER, DEL_CLIENT; BYE has a node alone
};

/// Nothing when the packet is not the name service's, or not whole.
std::optional<QrtrNews> qrtr_news(const QrtrAddress& from, const void* bytes, size_t size);

}  // namespace host

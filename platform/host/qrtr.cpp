#include "qrtr.h"

#include <endian.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace host {

bool QrtrSocket::send(const QrtrAddress& to, const void* bytes, size_t size) const {
    const sockaddr_qrtr address{AF_QIPCRTR, to.node, to.port};
    ssize_t sent;
    do {
        // The family refuses every other flag.
        sent = sendto(fd.get(), bytes, size, MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&address),
                      sizeof address);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

ssize_t QrtrSocket::receive(void* bytes, size_t size, QrtrAddress& from) const {
    sockaddr_qrtr address{};
    ssize_t count;
    do {
        socklen_t address_size = sizeof address;
        count = recvfrom(fd.get(), bytes, size, MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&address),
                         &address_size);
    } while (count < 0 && errno == EINTR);
    from = {address.sq_node, address.sq_port};
    return count;
}

bool QrtrSocket::tell_names(qrtr_pkt_type command, uint32_t service, uint32_t instance) const {
    qrtr_ctrl_pkt packet{};
    packet.cmd = htole32(command);
    packet.server.service = htole32(service);
    packet.server.instance = htole32(instance);
    packet.server.node = htole32(own.node);
    packet.server.port = htole32(own.port);
    return send({own.node, QRTR_PORT_CTRL}, &packet, sizeof packet);
}

QrtrSocket open_qrtr_socket() {
    QrtrSocket opened;
    UniqueFd fd(socket(AF_QIPCRTR, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_qrtr own{};
    auto* const address = reinterpret_cast<sockaddr*>(&own);
    socklen_t size = sizeof own;
    // Port 0 of the own node, which is what an unbound socket has, stands for any free one.
    if (!fd || getsockname(fd.get(), address, &size) != 0 || bind(fd.get(), address, sizeof own) != 0 ||
        getsockname(fd.get(), address, &size) != 0)
        return opened;
    opened.own = {own.sq_node, own.sq_port};
    opened.fd = std::move(fd);
    return opened;
}

std::optional<QrtrNews> qrtr_news(const QrtrAddress& from, const void* bytes, size_t size) {
    qrtr_ctrl_pkt packet{};
    if (from.port != QRTR_PORT_CTRL || size < sizeof packet)
        return {};
    memcpy(&packet, bytes, sizeof packet);
    QrtrNews news;
    news.command = le32toh(packet.cmd);
    if (news.command == QRTR_TYPE_NEW_SERVER || news.command == QRTR_TYPE_DEL_SERVER) {
        news.service = le32toh(packet.server.service);
        news.instance = le32toh(packet.server.instance);
        news.address = {le32toh(packet.server.node), le32toh(packet.server.port)};
    } else {
        news.address = {le32toh(packet.client.node), le32toh(packet.client.port)};
    }
    return news;
}

}  // namespace host

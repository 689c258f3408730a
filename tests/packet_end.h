// One end of a connection that carries packets over a local socket.
#pragma once

#include <poll.h>
#include <sys/socket.h>

#include <optional>
#include <string>

#include "layout.h"
#include "unique_fd.h"
#include "wire.h"

/// A socket that `join`, bind or connect, has brought to a path; none when it could not.
inline host::UniqueFd packet_socket(const std::string& path, int (*join)(int, const sockaddr*, socklen_t)) {
    host::UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const auto address = host::socket_address(path).value();
    const int error = join(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return error == 0 ? std::move(fd) : host::UniqueFd();
}

class PacketEnd {
public:
    explicit PacketEnd(host::UniqueFd fd) : fd_(std::move(fd)) {}
    virtual ~PacketEnd() = default;

    bool connected() const { return static_cast<bool>(fd_); }
    virtual void close() { fd_ = host::UniqueFd(); }

    /// The other side may have gone in the meantime.
    virtual void send(const wire::Bytes& packet) const {
        ::send(fd_.get(), packet.data(), packet.size(), MSG_NOSIGNAL);
    }

    /// The next packet; nothing when none comes in time, an empty one when the connection is closed.
    std::optional<wire::Bytes> receive(int timeout_ms = 5000) const {
        pollfd waiting{fd_.get(), POLLIN, 0};
        if (poll(&waiting, 1, timeout_ms) != 1)
            return std::nullopt;
        wire::Bytes packet(wire::kQmiPacketMax);
        const ssize_t size = recv(fd_.get(), packet.data(), packet.size(), MSG_DONTWAIT);
        packet.resize(size > 0 ? static_cast<size_t>(size) : 0);
        return packet;
    }

private:
    host::UniqueFd fd_;
};

// The other side of one socket of the handset's folder, for tests of the Linux library: a temporary
// folder, and a listener in it that plays what the test says.
#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "test_folder.h"
#include "unique_fd.h"
#include "wire.h"

/// An empty folder, named by VXK_HANDSET_DIR while this lives.
class HandsetFolder : public TestFolder {
public:
    HandsetFolder() { setenv("VXK_HANDSET_DIR", at("").c_str(), 1); }
    ~HandsetFolder() { unsetenv("VXK_HANDSET_DIR"); }
};

/// The far end of a connection. Every wait gives up after five seconds.
class Peer {
public:
    explicit Peer(host::UniqueFd fd) : fd_(std::move(fd)) {}
    virtual ~Peer() = default;

    /// The next packet; empty when the other side has gone.
    wire::Bytes receive() {
        wire::Bytes packet(wire::kQmiPacketMax);
        pollfd watched{fd_.get(), POLLIN, 0};
        EXPECT_EQ(poll(&watched, 1, 5000), 1) << "nothing arrived";
        const ssize_t size = recv(fd_.get(), packet.data(), packet.size(), MSG_DONTWAIT);
        packet.resize(size > 0 ? static_cast<size_t>(size) : 0);
        return packet;
    }
    /// The other side may have gone in the meantime.
    virtual void send(const wire::Bytes& packet) {
        if (::send(fd_.get(), packet.data(), packet.size(), MSG_NOSIGNAL) < 0) {
            EXPECT_TRUE(errno == EPIPE || errno == ECONNRESET) << strerror(errno);
        }
    }
    virtual void close() { fd_ = host::UniqueFd(); }

private:
    host::UniqueFd fd_;
};

class Listener {
public:
    explicit Listener(const std::string& path, int backlog = 16)
        : path_(path), fd_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(fd_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(fd_.get(), backlog), 0);
    }
    ~Listener() { unlink(path_.c_str()); }

    std::unique_ptr<Peer> accept() {
        pollfd watched{fd_.get(), POLLIN, 0};
        EXPECT_EQ(poll(&watched, 1, 5000), 1) << "nobody connected";
        return std::make_unique<Peer>(host::UniqueFd(accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC)));
    }

private:
    std::string path_;
    host::UniqueFd fd_;
};

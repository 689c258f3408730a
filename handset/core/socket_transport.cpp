#include "socket_transport.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <deque>
#include <map>
#include <utility>

#include "error.h"
#include "event_loop.h"
#include "folder.h"

namespace handset {
namespace {

// How long the endpoint lets connections wait when the process has no descriptor left for one.
constexpr std::chrono::milliseconds kAcceptPause(100);

// A client whose requests follow each other soon, so many times, is waited for where its next one comes,
// which costs less than to go back to the loop for it. But everything else has its turn soon.
using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kSoon(1);
constexpr std::chrono::milliseconds kTurn(2);
constexpr unsigned kBurst = 8;

int listen_at(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    path.copy(address.sun_path, path.size());
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0)
        return -1;
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(fd, SOMAXCONN) != 0) {
        const int error = errno;
        close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

pid_t process_behind(int fd) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 ? credentials.pid : 0;
}

// The peer would read "connection reset" before the answers that wait for it, if requests were left unread.
void close_socket(int fd) {
    char unread[1];
    shutdown(fd, SHUT_RD);
    while (recv(fd, unread, sizeof unread, MSG_DONTWAIT) > 0) {
    }
    close(fd);
}

// A receive that waits at all waits so long.
void limit_receive(int fd, std::chrono::microseconds time) {
    const timeval limit{0, static_cast<suseconds_t>(time.count())};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

// False with errno when the packet did not leave.
bool send_now(int fd, wire::View packet) {
    for (;;) {
        if (send(fd, packet.data, packet.size, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0)
            return true;
        if (errno != EINTR)
            return false;
    }
}

class SocketEndpoint : public Endpoint {
public:
    SocketEndpoint(EventLoop& loop, Folder& folder, EndpointUser& user, const PortName& port)
        : loop_(loop), folder_(folder), user_(user), name_(port.socket), buffer_(port.packet_max) {}
    ~SocketEndpoint() override {
        SocketEndpoint::withdraw();
        while (!connections_.empty())
            SocketEndpoint::close(connections_.begin()->first);
    }
    SocketEndpoint(const SocketEndpoint&) = delete;
    SocketEndpoint& operator=(const SocketEndpoint&) = delete;

    void publish() override;
    void withdraw() override;
    void send(ConnectionId id, wire::View packet) override;
    void close(ConnectionId id) override;

private:
    struct Connection {
        int fd = -1;
        EventLoop::Token watch = 0;
        std::deque<wire::Bytes> unsent;
        size_t unsent_bytes = 0;
        bool waits_for_room = false;
        Clock::time_point received_at;
        unsigned soon = 0;  // requests that followed the one before them soon
    };
    enum class Wait { kNot, kForTheNext };

    void accept_connection();
    void ready(ConnectionId id, uint32_t events);
    /// True when a packet came and was taken.
    bool receive(ConnectionId id, Wait wait);
    /// Receives what follows soon, if the connection has a burst.
    void stay_with(ConnectionId id);
    void send_unsent(Connection& connection);
    void end(ConnectionId id);

    EventLoop& loop_;
    Folder& folder_;
    EndpointUser& user_;
    const std::string name_;
    wire::Bytes buffer_;
    int listener_ = -1;
    EventLoop::Token listener_watch_ = 0;
    std::map<ConnectionId, Connection> connections_;
};

void SocketEndpoint::publish() {
    const std::string staged = folder_.staging_name();
    listener_ = listen_at(staged);
    if (listener_ < 0)
        throw system_error("cannot open the socket " + folder_.at(name_), errno);
    listener_watch_ = loop_.watch(listener_, EPOLLIN, [this](uint32_t) { accept_connection(); });
    // Moved to its place only now that it listens: whoever sees the socket can connect.
    if (rename(staged.c_str(), folder_.at(name_).c_str()) != 0)
        throw system_error("cannot open the socket " + folder_.at(name_), errno);
}

void SocketEndpoint::withdraw() {
    if (listener_ < 0)
        return;
    unlink(folder_.at(name_).c_str());
    loop_.forget(listener_watch_);
    ::close(std::exchange(listener_, -1));
}

void SocketEndpoint::accept_connection() {
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) {
        if (errno == EMFILE || errno == ENFILE) {
            const EventLoop::Token watch = listener_watch_;
            loop_.change(watch, 0);
            loop_.after(kAcceptPause, [this, watch] { loop_.change(watch, EPOLLIN); });
        }
        return;
    }
    const ConnectionId id = user_.next_connection();
    Connection& connection = connections_[id];
    connection.fd = fd;
    limit_receive(fd, kSoon);
    connection.watch = loop_.watch(fd, EPOLLIN, [this, id](uint32_t events) { ready(id, events); });
    user_.opened(*this, id, {process_behind(fd), ""});
}

void SocketEndpoint::ready(ConnectionId id, uint32_t events) {
    const auto found = connections_.find(id);
    if (found != connections_.end() && (events & EPOLLOUT) != 0)
        send_unsent(found->second);
    if ((events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0 && receive(id, Wait::kNot))
        stay_with(id);
}

void SocketEndpoint::stay_with(ConnectionId id) {
    const Clock::time_point until = Clock::now() + kTurn;
    for (auto found = connections_.find(id);
         found != connections_.end() && found->second.soon >= kBurst && found->second.received_at < until;
         found = connections_.find(id)) {
        if (!receive(id, Wait::kForTheNext))
            return;
    }
}

bool SocketEndpoint::receive(ConnectionId id, Wait wait) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return false;
    Connection& connection = found->second;
    // MSG_TRUNC gives the packet's own length, however much of it there is room for.
    const int flags = MSG_TRUNC | (wait == Wait::kNot ? MSG_DONTWAIT : 0);
    const ssize_t size = recv(connection.fd, buffer_.data(), buffer_.size(), flags);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return false;
    if (size <= 0) {
        end(id);
        return false;
    }
    const Clock::time_point now = Clock::now();
    connection.soon = now - connection.received_at < kSoon ? connection.soon + 1 : 0;
    connection.received_at = now;
    const auto count = static_cast<size_t>(size);
    if (count > buffer_.size())
        user_.received_too_much(id, count);
    else
        user_.received(id, {buffer_.data(), count});
    return true;
}

void SocketEndpoint::send(ConnectionId id, wire::View packet) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    Connection& connection = found->second;
    if (connection.unsent.empty() && send_now(connection.fd, packet))
        return;
    connection.unsent.push_back(packet.copy());
    connection.unsent_bytes += packet.size;
    if (connection.unsent_bytes > kUnsentLimit)
        return end(id);
    if (connection.unsent.size() == 1)
        send_unsent(connection);
}

void SocketEndpoint::send_unsent(Connection& connection) {
    while (!connection.unsent.empty()) {
        const wire::Bytes& packet = connection.unsent.front();
        if (!send_now(connection.fd, packet)) {
            // Any other failure shows when the connection is read next.
            if (errno == EAGAIN && !std::exchange(connection.waits_for_room, true))
                loop_.change(connection.watch, EPOLLIN | EPOLLOUT);
            return;
        }
        connection.unsent_bytes -= packet.size();
        connection.unsent.pop_front();
    }
    if (std::exchange(connection.waits_for_room, false))
        loop_.change(connection.watch, EPOLLIN);
}

void SocketEndpoint::end(ConnectionId id) {
    user_.closed(id);
    close(id);
}

void SocketEndpoint::close(ConnectionId id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    loop_.forget(found->second.watch);
    close_socket(found->second.fd);
    connections_.erase(found);
}

}  // namespace

std::unique_ptr<Endpoint> SocketTransport::endpoint(EndpointUser& user, const PortName& port) {
    return std::make_unique<SocketEndpoint>(loop_, folder_, user, port);
}

}  // namespace handset

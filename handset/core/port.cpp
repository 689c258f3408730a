#include "port.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "core.h"
#include "error.h"

namespace handset {
namespace {

// What a client that does not read may make the handset keep for it.
constexpr size_t kUnsentLimit = 4 * 1024 * 1024;

// How long the port lets connections wait when the process has no descriptor left for one.
constexpr std::chrono::milliseconds kAcceptPause(100);

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

// The peer would read "connection reset" before the answers that wait for it, if requests were left unread.
void close_socket(int fd) {
    char unread[1];
    shutdown(fd, SHUT_RD);
    while (recv(fd, unread, sizeof unread, MSG_DONTWAIT) > 0) {
    }
    close(fd);
}

}  // namespace

Port::Port(Core& core, std::string where, std::string socket_name, size_t packet_max)
    : core_(core), where_(std::move(where)), socket_name_(std::move(socket_name)), buffer_(packet_max) {
    core_.add_port(*this);
}

Port::~Port() {
    withdraw();
}

void Port::publish() {
    core_.loop().cancel(std::exchange(comeback_, 0));
    if (published())
        return;
    const Folder& folder = core_.folder();
    const std::string staged = core_.folder().staging_name();
    listener_ = listen_at(staged);
    if (listener_ < 0)
        throw system_error("cannot open the socket " + folder.at(socket_name_), errno);
    listener_watch_ = core_.loop().watch(listener_, EPOLLIN, [this](uint32_t) { accept_connection(); });
    log(WireLine(where_, 0, Direction::kEvent).word("published"));
    core_.wire_log().flush();
    // Moved to its place only now that it listens: whoever sees the socket can connect.
    if (rename(staged.c_str(), folder.at(socket_name_).c_str()) != 0)
        throw system_error("cannot open the socket " + folder.at(socket_name_), errno);
}

void Port::withdraw() {
    core_.loop().cancel(std::exchange(comeback_, 0));
    if (!published())
        return;
    log(WireLine(where_, 0, Direction::kEvent).word("withdrawn"));
    core_.wire_log().flush();
    unlink(core_.folder().at(socket_name_).c_str());
    core_.loop().forget(listener_watch_);
    close(std::exchange(listener_, -1));
    while (!connections_.empty())
        close_connection(connections_.begin()->first);
}

void Port::withdraw_for(std::chrono::milliseconds time) {
    withdraw();
    comeback_ = core_.loop().after(time, [this] { publish(); });
}

void Port::accept_connection() {
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd < 0) {
        if (errno == EMFILE || errno == ENFILE) {
            const EventLoop::Token watch = listener_watch_;
            core_.loop().change(watch, 0);
            core_.loop().after(kAcceptPause, [this, watch] { core_.loop().change(watch, EPOLLIN); });
        }
        return;
    }
    const ConnectionId id = core_.next_connection();
    const auto watch = core_.loop().watch(fd, EPOLLIN, [this, id](uint32_t events) { ready(id, events); });
    Connection& connection = connections_[id];
    connection.fd = fd;
    connection.watch = watch;
    connection_opened(id);
}

void Port::close_connection(ConnectionId id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    if (found->second.number != 0)
        log(line(id, Direction::kEvent).word("closed"));
    core_.wire_log().flush();
    core_.loop().forget(found->second.watch);
    close_socket(found->second.fd);
    connections_.erase(found);
    connection_closed(id);
}

void Port::ready(ConnectionId id, uint32_t events) {
    if ((events & EPOLLOUT) != 0)
        send_unsent(id);
    if ((events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0)
        receive(id);
}

void Port::receive(ConnectionId id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    // MSG_TRUNC gives the packet's own length, however much of it there is room for.
    const ssize_t size = recv(found->second.fd, buffer_.data(), buffer_.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (size <= 0)
        return close_connection(id);
    const auto count = static_cast<size_t>(size);
    if (count > buffer_.size()) {
        log(line(id, Direction::kToModem).word("malformed").unsigned_number("length", count));
    } else {
        received(id, {buffer_.data(), count});
    }
    core_.wire_log().flush();
}

void Port::send(ConnectionId id, const wire::Bytes& packet, const WireLine& entry) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    Connection& connection = found->second;
    log(entry);
    core_.wire_log().flush();
    connection.unsent.push_back(packet);
    connection.unsent_bytes += packet.size();
    if (connection.unsent_bytes > kUnsentLimit)
        return close_connection(id);
    if (connection.unsent.size() == 1)
        send_unsent(id);
}

void Port::send_unsent(ConnectionId id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    Connection& connection = found->second;
    while (!connection.unsent.empty()) {
        const wire::Bytes& packet = connection.unsent.front();
        if (::send(connection.fd, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0) {
            if (errno == EINTR)
                continue;
            // Any other failure shows when the connection is read next.
            if (errno == EAGAIN && !std::exchange(connection.waits_for_room, true))
                core_.loop().change(connection.watch, EPOLLIN | EPOLLOUT);
            return;
        }
        connection.unsent_bytes -= packet.size();
        connection.unsent.pop_front();
    }
    if (std::exchange(connection.waits_for_room, false))
        core_.loop().change(connection.watch, EPOLLIN);
}

void Port::answer(ConnectionId connection, Exchange& exchange) {
    const Fault* fault = core_.faults().next(exchange.key());
    Answer answer;
    if (fault == nullptr || fault->acts)
        answer = exchange.act();
    if (fault == nullptr)
        return send_answer(connection, exchange, answer.packet, answer.delay, nullptr);

    std::chrono::milliseconds delay = answer.delay;
    switch (fault->action) {
        case FaultAction::kLate:
            delay += fault->time;
            break;
        case FaultAction::kResult:
            answer.packet = exchange.with_result(fault->result);
            break;
        case FaultAction::kModemResult:
            answer.packet = exchange.with_modem_result(fault->result);
            break;
        case FaultAction::kPayload:
            answer.packet = exchange.with_payload(fault->bytes);
            break;
        case FaultAction::kTlvs:
            answer.packet = exchange.with_tlvs(fault->bytes);
            break;
        case FaultAction::kCut:
            answer.packet = exchange.cut(answer.packet, fault->keep);
            break;
        case FaultAction::kNoAnswer:
        case FaultAction::kClose:
        case FaultAction::kWithdraw:
        case FaultAction::kRestart:
            log(exchange.no_answer_line().text("fault", fault->name()));
            if (fault->action == FaultAction::kClose)
                close_connection(connection);
            if (fault->action == FaultAction::kWithdraw)
                withdraw_for(fault->time);
            if (fault->action == FaultAction::kRestart)
                core_.restart_modem();
            return;
    }
    send_answer(connection, exchange, answer.packet, delay, fault);
}

void Port::send_answer(ConnectionId connection, const Exchange& exchange, const wire::Bytes& packet,
                       std::chrono::milliseconds delay, const Fault* fault) {
    WireLine entry = exchange.answer_line(packet);
    if (fault != nullptr)
        entry.text("fault", fault->name());
    if (delay.count() == 0)
        return send(connection, packet, entry);
    core_.loop().after(delay, [this, connection, packet, entry] { send(connection, packet, entry); });
}

std::vector<ConnectionId> Port::connections() const {
    std::vector<ConnectionId> ids;
    for (const auto& entry : connections_)
        ids.push_back(entry.first);
    return ids;
}

WireLine Port::line(ConnectionId id, Direction direction) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return WireLine(where_, 0, direction);
    unsigned& number = found->second.number;
    if (number == 0) {
        number = ++last_number_;
        log(WireLine(where_, number, Direction::kEvent).word("connected"));
    }
    return WireLine(where_, number, direction);
}

void Port::log(const WireLine& line) {
    core_.wire_log().add(line);
}

}  // namespace handset

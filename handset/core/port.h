// One socket of the handset: a service that is published and withdrawn, its connections, and the way of every
// answer to them. What the packets mean is the derived class's.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <string>

#include "event_loop.h"
#include "exchange.h"
#include "wire.h"
#include "wire_log.h"

namespace handset {

class Core;

/// Never used twice while the handset runs, so a connection that is gone is never mistaken for another.
using ConnectionId = uint64_t;

class Port {
public:
    /// `where` names the port in the wire log; `socket_name` is the socket's name in the handset's folder.
    Port(Core& core, std::string where, std::string socket_name, size_t packet_max);
    virtual ~Port();
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    /// From the moment the socket is in the folder, a connection is accepted. Throws Error when it cannot be.
    void publish();

    /// Removes the socket and closes every connection.
    void withdraw();
    void withdraw_for(std::chrono::milliseconds time);
    bool published() const { return listener_ >= 0; }

    const std::string& where() const { return where_; }
    const std::string& socket_name() const { return socket_name_; }

    /// Sends one packet and logs it. Nothing happens when the connection is gone.
    void send(ConnectionId connection, const wire::Bytes& packet, const WireLine& entry);
    void close_connection(ConnectionId connection);

protected:
    virtual void received(ConnectionId connection, wire::View packet) = 0;
    virtual void connection_opened(ConnectionId) {}
    virtual void connection_closed(ConnectionId) {}

    /// Carries a request out and sends its answer, unless a fault has other plans.
    void answer(ConnectionId connection, Exchange& exchange);

    std::vector<ConnectionId> connections() const;
    void log(const WireLine& entry);

    /// A line of the wire log about a connection. Connections are numbered in the order in which something is
    /// first said of them: one that is only opened to see whether the service is there leaves no trace.
    WireLine line(ConnectionId connection, Direction direction);

    Core& core_;

private:
    struct Connection {
        int fd = -1;
        unsigned number = 0;  // in the wire log; 0: not mentioned yet
        EventLoop::Token watch = 0;
        std::deque<wire::Bytes> unsent;
        size_t unsent_bytes = 0;
        bool waits_for_room = false;
    };

    void accept_connection();
    void ready(ConnectionId connection, uint32_t events);
    void receive(ConnectionId connection);
    void send_unsent(ConnectionId connection);
    void send_answer(ConnectionId connection, const Exchange& exchange, const wire::Bytes& packet,
                     std::chrono::milliseconds delay, const Fault* fault);

    std::string where_;
    std::string socket_name_;
    wire::Bytes buffer_;
    int listener_ = -1;
    EventLoop::Token listener_watch_ = 0;
    EventLoop::Token comeback_ = 0;
    std::map<ConnectionId, Connection> connections_;
    unsigned last_number_ = 0;
};

}  // namespace handset

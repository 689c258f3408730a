// One service of the handset that is published and withdrawn, its connections, and the way of every answer to
// them. How packets come and leave is its endpoints'; what they mean is the derived class's.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core.h"
#include "endpoint.h"
#include "event_loop.h"
#include "exchange.h"
#include "replay.h"
#include "wire.h"
#include "wire_log.h"

namespace handset {

class Port : public Published, private EndpointUser {
public:
    /// `where` names the port in the wire log.
    Port(Core& core, std::string where, const PortName& name);
    ~Port() override;
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    /// On every transport that carries it.
    void publish() override;
    /// Everywhere, and closes every connection.
    void withdraw() override;
    void withdraw_for(std::chrono::milliseconds time);

    const std::string& where() const { return where_; }

    /// Sends one packet and logs it. Nothing happens when the connection is gone.
    void send(ConnectionId connection, const wire::Bytes& packet, const WireLine& entry);
    void close_connection(ConnectionId connection);

protected:
    virtual void handle(ConnectionId connection, wire::View packet) = 0;
    /// The line of a packet that leaves unasked.
    virtual WireLine unasked_line(ConnectionId connection, wire::View packet) = 0;
    virtual void connection_opened(ConnectionId) {}
    virtual void connection_closed(ConnectionId) {}

    /// Decides what becomes of a request, whose packet was logged by `asked`: what a fault says; else what
    /// the trace says that is replayed; else it is carried out, and its answer is sent.
    void answer(ConnectionId connection, wire::View packet, const WireLine& asked, Exchange& exchange);

    std::vector<ConnectionId> connections() const;
    /// With the packet that it tells of; without one it tells of an event.
    void log(const WireLine& entry, wire::View packet = {});

    /// A line of the wire log about a connection. Connections are numbered in the order in which something is
    /// first said of them: one that is only opened to see whether the service is there leaves no trace.
    WireLine line(ConnectionId connection, Direction direction);

    Core& core_;

private:
    struct Connection {
        Endpoint* endpoint = nullptr;
        Peer peer;
        unsigned number = 0;  // in the wire log; 0: not mentioned yet
    };

    ConnectionId next_connection() override;
    void opened(Endpoint& endpoint, ConnectionId connection, Peer peer) override;
    void received(ConnectionId connection, wire::View packet) override;
    void received_too_much(ConnectionId connection, size_t length) override;
    void sent_too_much(ConnectionId connection, size_t length) override;
    void closed(ConnectionId connection) override;

    void spoil(ConnectionId connection, Exchange& exchange, const Fault& fault);
    /// False when there is no trace, or it does not know the request and leaves it to the modem.
    bool replay(ConnectionId connection, wire::View packet, const WireLine& asked, Exchange& exchange);
    /// What needs no request.
    void play(ConnectionId connection, const ReplayBook::Step& step);
    void send_answer(ConnectionId connection, const Exchange& exchange, const wire::Bytes& packet,
                     std::chrono::milliseconds delay, const std::string& fault = "");
    /// Now, when there is no delay.
    void after(std::chrono::milliseconds delay, EventLoop::Action action);
    void end(ConnectionId connection, bool by_modem);

    std::string where_;
    std::vector<std::unique_ptr<Endpoint>> endpoints_;
    bool published_ = false;
    EventLoop::Token comeback_ = 0;
    std::map<ConnectionId, Connection> connections_;
    unsigned last_number_ = 0;
};

}  // namespace handset

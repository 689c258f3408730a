// How a port is reached. A transport makes an endpoint for each port: the place where the port's packets come
// in and leave, and where clients come and go. Which transports a handset has is the core's to know; a port
// is published on all that carry it at once.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

#include "wire.h"

namespace handset {

class Endpoint;

/// Never used twice while the handset runs, so a connection that is gone is never mistaken for another.
using ConnectionId = uint64_t;

/// What a transport knows a port by.
struct PortName {
    std::string socket;    // in the handset's folder
    uint16_t service = 0;  // QMI service id; 0: the port is none
    size_t packet_max = 0;
};

/// Who is at the other end of a connection, as far as the transport can tell.
struct Peer {
    pid_t pid = 0;        // 0: unknown
    std::string address;  // "node:port" on a bus; else empty
};

/// What an endpoint tells its port. Any of these may lead to calls of the endpoint before it returns.
class EndpointUser {
public:
    virtual ~EndpointUser() = default;

    /// The id of a connection that is about to be opened.
    virtual ConnectionId next_connection() = 0;

    /// A client is there; from now on the endpoint takes packets for it.
    virtual void opened(Endpoint& endpoint, ConnectionId connection, Peer peer) = 0;

    /// A packet of at most packet_max bytes, valid during the call.
    virtual void received(ConnectionId connection, wire::View packet) = 0;

    /// A packet that was longer than packet_max and is lost.
    virtual void received_too_much(ConnectionId connection, size_t length) = 0;

    /// A packet given to Endpoint::send() that the transport cannot carry and that is lost.
    virtual void sent_too_much(ConnectionId connection, size_t length) = 0;

    /// The client is gone, or does not take what it is sent. The endpoint forgets the connection
    /// when this returns.
    virtual void closed(ConnectionId connection) = 0;
};

/// Bytes that wait for a client that does not read, at the most; then its connection is closed.
constexpr size_t kUnsentLimit = 4 * 1024 * 1024;

class Endpoint {
public:
    virtual ~Endpoint() = default;

    /// When it returns, clients find the port and are accepted. Throws Error.
    virtual void publish() = 0;

    /// No client finds the port any more. Connections that the transport can keep stay until close().
    virtual void withdraw() = 0;

    /// Sends a packet now or as soon as the client takes it. Nothing happens when the connection is gone.
    virtual void send(ConnectionId connection, wire::View packet) = 0;

    /// Ends a connection; EndpointUser::closed() is not called for it. A transport that cannot end a single
    /// one ends them all, withdraws and publishes again, and calls closed() for the others.
    virtual void close(ConnectionId connection) = 0;
};

class Transport {
public:
    virtual ~Transport() = default;

    /// Null when the transport does not carry such a port. The user outlives the endpoint.
    virtual std::unique_ptr<Endpoint> endpoint(EndpointUser& user, const PortName& port) = 0;
};

}  // namespace handset

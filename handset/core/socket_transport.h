// The transport of the handset's folder: a port is a SOCK_SEQPACKET socket in it, and a connection is one of
// the socket's.
#pragma once

#include "endpoint.h"

namespace handset {

class EventLoop;
class Folder;

class SocketTransport : public Transport {
public:
    /// Both outlive the transport's endpoints.
    SocketTransport(EventLoop& loop, Folder& folder) : loop_(loop), folder_(folder) {}

    std::unique_ptr<Endpoint> endpoint(EndpointUser& user, const PortName& port) override;

private:
    EventLoop& loop_;
    Folder& folder_;
};

}  // namespace handset

// The transport of the kernel's modem bus (QRTR): each QMI service of the handset is a datagram socket that
// is registered with the name service, and each address that sends to it is a connection, until the kernel
// says that the address is gone. A port that is no QMI service is not on the bus.
#pragma once

#include "endpoint.h"

namespace handset {

class EventLoop;

class QrtrTransport : public Transport {
public:
    /// The loop outlives the transport's endpoints. They throw Error when they are published and the kernel
    /// has no such bus.
    explicit QrtrTransport(EventLoop& loop) : loop_(loop) {}

    std::unique_ptr<Endpoint> endpoint(EndpointUser& user, const PortName& port) override;

private:
    EventLoop& loop_;
};

}  // namespace handset

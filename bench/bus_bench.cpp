// The road over the modem bus. The floor of an exchange is a bare ping-pong over the same kind of socket;
// that of a whole command is what a stock client takes for the same question.
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <memory>
#include <thread>

#include "benches.h"
#include "qrtr.h"
#include "sides.h"
#include "wire.h"

namespace bench {
namespace {

// A service that no modem has.
constexpr uint32_t kServiceId = 64999;

// Against a floor that does less than a client may.
constexpr double kBareLimit = 2.5;

// The service's end waits in the receive itself, which is the least that a wait can be, and so does the
// client's of the barest floor; each of these sockets has one thread. A client that has a second one must
// poll, because a receive that waits keeps it from sending.
sockaddr_qrtr address_of(const host::QrtrSocket& socket) {
    return {AF_QIPCRTR, socket.own.node, socket.own.port};
}

host::QrtrSocket open_socket() {
    host::QrtrSocket socket = host::open_qrtr_socket();
    if (!socket.fd || fcntl(socket.fd.get(), F_SETFL, 0) != 0)
        give_up("no QRTR bus: run it by scripts/bench --bus");
    return socket;
}

/// Sends back what comes, as an answer, on a thread of its own which nobody waits for.
void start_answering(host::QrtrSocket socket) {
    std::thread([socket = std::move(socket)] {
        wire::Bytes packet(wire::kQmiPacketMax);
        for (;;) {
            sockaddr_qrtr from{};
            auto* const address = reinterpret_cast<sockaddr*>(&from);
            socklen_t address_size = sizeof from;
            const ssize_t size =
                recvfrom(socket.fd.get(), packet.data(), packet.size(), 0, address, &address_size);
            if (size < 0)
                give_up("the service cannot receive");
            packet.front() = wire::kQmiResponse;
            // The name service's own packets are no requests.
            if (from.sq_port != QRTR_PORT_CTRL)
                sendto(socket.fd.get(), packet.data(), static_cast<size_t>(size), 0, address, address_size);
        }
    }).detach();
}

enum class Wait { kPolling, kInReceive };

Side ping_pong_side(Wait wait) {
    host::QrtrSocket far_end = open_socket();
    const sockaddr_qrtr far_address = address_of(far_end);
    start_answering(std::move(far_end));
    const auto exchange = [socket = std::make_shared<host::QrtrSocket>(open_socket()), far_address, wait,
                           packet = wire::Bytes(kRequestSize)]() mutable {
        sendto(socket->fd.get(), packet.data(), packet.size(), 0,
               reinterpret_cast<const sockaddr*>(&far_address), sizeof far_address);
        pollfd watched{socket->fd.get(), POLLIN, 0};
        if (wait == Wait::kPolling && poll(&watched, 1, -1) != 1)
            give_up("a bare ping-pong cannot poll");
        if (recv(socket->fd.get(), packet.data(), packet.size(), 0) != static_cast<ssize_t>(kRequestSize))
            give_up("a bare ping-pong failed");
    };
    return {"bare ping-pong, " + std::to_string(kRequestSize) + " bytes each way" +
                (wait == Wait::kPolling ? ", polled" : ""),
            exchange};
}

}  // namespace

void compare_bus(Table& table) {
    host::QrtrSocket service = open_socket();
    constexpr uint32_t kVersion = 1;
    if (!service.tell_names(QRTR_TYPE_NEW_SERVER, kServiceId, kVersion))
        give_up("the name service takes no service");
    start_answering(std::move(service));
    const Side library = library_side(kServiceId);
    table.compare(library, ping_pong_side(Wait::kPolling), 1.3);
    table.compare(library, ping_pong_side(Wait::kInReceive), kBareLimit);
}

void compare_stock_client(Table& table) {
    table.compare(
        command_side(VXK_PROGRAM, "5 10 4 0", "PRESENT,PRESENT"),
        command_side("/usr/bin/qmicli", "-d qrtr://1 --uim-get-card-status", "Card state: 'present'"),
        1.0 / 3);
}

}  // namespace bench

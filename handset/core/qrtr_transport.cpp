#include "qrtr_transport.h"

#include <poll.h>
#include <sys/epoll.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <map>
#include <set>
#include <utility>

#include "error.h"
#include "event_loop.h"
#include "qrtr.h"

namespace handset {
namespace {

constexpr uint32_t kInterfaceVersion = 1;

// When a client that does not read is tried again: the bus does not tell that there is room.
constexpr std::chrono::milliseconds kRetry(5);

// The name service is the kernel's own; it answers at once.
constexpr int kNamesTimeMs = 5000;

host::QrtrSocket open_socket() {
    host::QrtrSocket socket = host::open_qrtr_socket();
    if (!socket.fd)
        throw system_error("cannot open a socket on the modem bus (QRTR)", errno);
    return socket;
}

void tell_names(const host::QrtrSocket& socket, qrtr_pkt_type command, uint32_t service, uint32_t instance) {
    if (!socket.tell_names(command, service, instance))
        throw system_error("the modem bus's name service does not listen", errno);
}

host::QrtrNews next_news(const host::QrtrSocket& socket) {
    for (;;) {
        pollfd ready{socket.fd.get(), POLLIN, 0};
        if (poll(&ready, 1, kNamesTimeMs) == 0)
            throw Error("the modem bus's name service does not answer");
        uint8_t packet[sizeof(qrtr_ctrl_pkt)];
        host::QrtrAddress from;
        const ssize_t size = socket.receive(packet, sizeof packet, from);
        if (size < 0)
            continue;
        if (const auto news = host::qrtr_news(from, packet, static_cast<size_t>(size)))
            return *news;
    }
}

// A client that may take the packet later. One that is gone is reported in its own time.
bool full(int error) {
    return error == ENOSPC || error == EAGAIN || error == ENOBUFS || error == ENOMEM;
}

uint32_t lowest_free(const std::set<uint32_t>& taken) {
    uint32_t instance = 0;
    while (taken.count(instance) != 0)
        ++instance;
    return instance;
}

// A socket that is registered as the service's lowest free instance. Of two handsets that reach for the same
// one, the name service tells all who was first, and the other takes the next.
host::QrtrSocket registered_socket(uint32_t service) {
    const host::QrtrSocket lookup = open_socket();
    tell_names(lookup, QRTR_TYPE_NEW_LOOKUP, service, 0);
    std::set<uint32_t> taken;
    host::QrtrNews news;
    while (news = next_news(lookup), news.service != 0)
        taken.insert(news.instance >> 8);
    for (;;) {
        host::QrtrSocket socket = open_socket();
        const uint32_t instance = lowest_free(taken);
        tell_names(socket, QRTR_TYPE_NEW_SERVER, service, instance << 8 | kInterfaceVersion);
        // By the time the lookup is told of it, every other client is. The port may have been that of an
        // earlier try, whose end is told first.
        while (news = next_news(lookup),
               news.command != QRTR_TYPE_NEW_SERVER || !(news.address == socket.own)) {
            if (news.command == QRTR_TYPE_NEW_SERVER)
                taken.insert(news.instance >> 8);
        }
        if (taken.count(instance) == 0)
            return socket;
    }
}

class QrtrEndpoint : public Endpoint {
public:
    QrtrEndpoint(EventLoop& loop, EndpointUser& user, const PortName& port)
        : loop_(loop), user_(user), service_(port.service), buffer_(port.packet_max) {}
    ~QrtrEndpoint() override { QrtrEndpoint::withdraw(); }
    QrtrEndpoint(const QrtrEndpoint&) = delete;
    QrtrEndpoint& operator=(const QrtrEndpoint&) = delete;

    void publish() override;
    void withdraw() override;
    void send(ConnectionId id, wire::View packet) override;
    void close(ConnectionId id) override;

private:
    struct Client {
        ConnectionId id = 0;
        std::deque<wire::Bytes> unsent;
        size_t unsent_bytes = 0;
    };
    using Clients = std::map<host::QrtrAddress, Client>;

    Clients::iterator client(ConnectionId id);
    void receive();
    void handle_news(const host::QrtrNews& news);
    void end(const host::QrtrAddress& address);
    void send_unsent();
    void begin_again();

    EventLoop& loop_;
    EndpointUser& user_;
    const uint32_t service_;
    wire::Bytes buffer_;
    host::QrtrSocket socket_;
    EventLoop::Token watch_ = 0;
    EventLoop::Token retry_ = 0;
    Clients clients_;
};

void QrtrEndpoint::publish() {
    socket_ = registered_socket(service_);
    watch_ = loop_.watch(socket_.fd.get(), EPOLLIN, [this](uint32_t) { receive(); });
}

void QrtrEndpoint::withdraw() {
    if (!socket_.fd)
        return;
    loop_.forget(watch_);
    loop_.cancel(std::exchange(retry_, 0));
    socket_ = {};
    clients_.clear();
}

QrtrEndpoint::Clients::iterator QrtrEndpoint::client(ConnectionId id) {
    return std::find_if(clients_.begin(), clients_.end(),
                        [id](const auto& entry) { return entry.second.id == id; });
}

void QrtrEndpoint::receive() {
    host::QrtrAddress from;
    const ssize_t size = socket_.receive(buffer_.data(), buffer_.size(), from);
    if (size < 0) {
        // The name service has begun anew and knows neither this service nor who is gone.
        if (errno == ENETRESET)
            begin_again();
        return;
    }
    const wire::View packet(buffer_.data(), static_cast<size_t>(size));
    if (from.port == QRTR_PORT_CTRL) {
        if (const auto news = host::qrtr_news(from, packet.data, packet.size))
            handle_news(*news);
        return;
    }
    Client& sender = clients_[from];
    if (sender.id == 0) {
        sender.id = user_.next_connection();
        user_.opened(*this, sender.id, {0, std::to_string(from.node) + ":" + std::to_string(from.port)});
    }
    user_.received(sender.id, packet);
}

void QrtrEndpoint::handle_news(const host::QrtrNews& news) {
    if (news.command == QRTR_TYPE_DEL_CLIENT)
        end(news.address);
    if (news.command == QRTR_TYPE_BYE) {
        // The clients of a node lie side by side.
        Clients::iterator first;
        while (first = clients_.lower_bound({news.address.node, 0}),
               first != clients_.end() && first->first.node == news.address.node)
            end(first->first);
    }
}

void QrtrEndpoint::end(const host::QrtrAddress& address) {
    const auto gone = clients_.extract(address);
    if (!gone.empty())
        user_.closed(gone.mapped().id);
}

void QrtrEndpoint::send(ConnectionId id, wire::View packet) {
    const auto found = client(id);
    if (found == clients_.end())
        return;
    if (packet.size > host::kQrtrPacketMax)
        return user_.sent_too_much(id, packet.size);
    auto& [address, to] = *found;
    if (to.unsent.empty() && (socket_.send(address, packet.data, packet.size) || !full(errno)))
        return;
    to.unsent.push_back(packet.copy());
    to.unsent_bytes += packet.size;
    if (to.unsent_bytes > kUnsentLimit)
        return end(host::QrtrAddress(address));
    if (retry_ == 0)
        retry_ = loop_.after(kRetry, [this] { send_unsent(); });
}

void QrtrEndpoint::send_unsent() {
    retry_ = 0;
    for (auto& [address, to] : clients_) {
        while (!to.unsent.empty()) {
            const wire::Bytes& packet = to.unsent.front();
            if (!socket_.send(address, packet.data(), packet.size()) && full(errno)) {
                retry_ = loop_.after(kRetry, [this] { send_unsent(); });
                break;
            }
            to.unsent_bytes -= packet.size();
            to.unsent.pop_front();
        }
    }
}

void QrtrEndpoint::close(ConnectionId id) {
    const auto found = client(id);
    if (found == clients_.end())
        return;
    clients_.erase(found);
    begin_again();
}

void QrtrEndpoint::begin_again() {
    Clients gone = std::exchange(clients_, {});
    withdraw();
    for (const auto& entry : gone)
        user_.closed(entry.second.id);
    publish();
}

}  // namespace

std::unique_ptr<Endpoint> QrtrTransport::endpoint(EndpointUser& user, const PortName& port) {
    if (port.service == 0)
        return nullptr;
    return std::make_unique<QrtrEndpoint>(loop_, user, port);
}

}  // namespace handset

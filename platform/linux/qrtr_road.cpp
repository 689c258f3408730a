#include "qrtr_road.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <thread>
#include <tuple>

#include "qrtr.h"
#include "unique_fd.h"

namespace seam {

namespace {

// The name service is a worker of the kernel's; more than this it needs on no machine.
constexpr std::chrono::seconds kListLimit{1};
// How long a change may stay unseen that another thread has read from the same lookup.
constexpr Milliseconds kLookAgain{250};
// How soon a service whose queue is full is tried again: nothing tells when there is room.
constexpr Milliseconds kTryAgain{1};

using host::QrtrAddress;
using host::QrtrNews;

/// The name service ends the list that opens its packets with one of zeros.
bool is_list_end(const QrtrNews& news) {
    return news.command == QRTR_TYPE_NEW_SERVER && news.service == 0 && news.address == QrtrAddress();
}

/// True when the server at `address` is gone.
bool is_end_of(const QrtrAddress& address, const QrtrNews& news) {
    return news.command == QRTR_TYPE_BYE ? news.address.node == address.node
                                         : news.command == QRTR_TYPE_DEL_SERVER && news.address == address;
}

/// A socket that the name service keeps informed about one service.
class Subscriber {
public:
    explicit Subscriber(uint32_t service_id)
        : socket_(host::open_qrtr_socket()),
          is_subscribed_(socket_.fd && socket_.tell_names(QRTR_TYPE_NEW_LOOKUP, service_id, 0)) {}

    int descriptor() const { return socket_.fd.get(); }
    bool is_subscribed() const { return is_subscribed_; }
    const host::QrtrSocket& socket() const { return socket_; }

    /// What a packet tells, if it is the own node's name service's.
    std::optional<QrtrNews> news(const QrtrAddress& from, const void* bytes, ssize_t size) const {
        if (from.node != socket_.own.node)
            return std::nullopt;
        return host::qrtr_news(from, bytes, static_cast<size_t>(size));
    }

private:
    host::QrtrSocket socket_;
    bool is_subscribed_;
};

class QrtrChannel : public Channel {
public:
    /// `is_listed`: the subscriber has already been told of the server.
    QrtrChannel(Subscriber subscriber, const QrtrAddress& server, bool is_listed)
        : subscriber_(std::move(subscriber)),
          shut_(eventfd(0, EFD_CLOEXEC)),
          server_(server),
          is_listed_(is_listed) {}

    bool is_open() const { return subscriber_.is_subscribed() && shut_; }

    int descriptor() const override { return subscriber_.descriptor(); }
    int end_descriptor() const override { return shut_.get(); }

    Sent send(wire::View packet) override {
        if (subscriber_.socket().send(server_, packet.data, packet.size))
            return Sent::kDone;
        switch (errno) {
            case EAGAIN:
            case ENOBUFS:
            case ENOSPC:
                return Sent::kNoRoom;
            case ENODEV:
            case ECONNRESET:
            case EHOSTUNREACH:
            case ENETRESET:
                shut();
                return Sent::kEnded;
            default:
                return Sent::kRefused;
        }
    }

    void wait_for_room(Deadline& deadline) override {
        std::this_thread::sleep_until(std::min(Clock::now() + kTryAgain, deadline.at()));
    }

    ssize_t receive(uint8_t* room, size_t size, Deadline& deadline) override {
        QrtrAddress from;
        ssize_t count = subscriber_.socket().receive(room, size, from);
        if (count < 0 && errno == EAGAIN) {
            pollfd watched[] = {{descriptor(), POLLIN, 0}, {shut_.get(), POLLIN, 0}};
            poll(watched, 2, poll_limit(deadline.at()));
            count = subscriber_.socket().receive(room, size, from);
        }
        if (count < 0 && errno == EAGAIN)
            return is_shut_ ? -1 : 0;
        // A reset of the bus is an error of the socket.
        if (count < 0)
            return -1;
        if (from == server_)
            return count;
        const auto news = subscriber_.news(from, room, count);
        return news && tells_end(*news) ? -1 : 0;
    }

    void shut() override {
        is_shut_ = true;
        eventfd_write(shut_.get(), 1);
    }

private:
    /// The service may have gone between the look that found it and the subscription: then it is not in the
    /// list that opens the name service's packets.
    bool tells_end(const QrtrNews& news) {
        is_listed_ |= news.command == QRTR_TYPE_NEW_SERVER && news.address == server_;
        return (is_list_end(news) && !is_listed_) || is_end_of(server_, news);
    }

    const Subscriber subscriber_;
    const host::UniqueFd shut_;  // an eventfd
    const QrtrAddress server_;
    std::atomic<bool> is_shut_{false};
    bool is_listed_;  // of whoever receives
};

/// The words of an instance's description.
qmi_service_info instance_of(const QrtrNews& server) {
    return {{server.service, server.instance, server.address.node, server.address.port, 0}};
}

QrtrAddress address_of(const qmi_service_info& instance) {
    return {instance.info[2], instance.info[3]};
}

}  // namespace

bool has_qrtr() {
    return host::open_qrtr_socket().fd ||
           (errno != EAFNOSUPPORT && errno != EPROTONOSUPPORT && errno != ESOCKTNOSUPPORT);
}

/// What the name service tells of one service, kept up to date.
class QrtrRoad::Lookup {
public:
    explicit Lookup(uint32_t service_id) : subscriber_(service_id) {}

    int descriptor() const { return subscriber_.descriptor(); }
    const std::vector<QrtrNews>& servers() const { return servers_; }
    bool lists(const QrtrAddress& address) const {
        return std::any_of(servers_.begin(), servers_.end(),
                           [&](const QrtrNews& server) { return server.address == address; });
    }
    /// Nothing is left of it.
    Subscriber take_subscriber() { return std::move(subscriber_); }

    /// Reads what has come; the first time, to the list's end. False when the name service is lost.
    bool refresh() {
        const auto deadline = Clock::now() + kListLimit;
        while (subscriber_.is_subscribed()) {
            uint8_t room[64];
            QrtrAddress from;
            const ssize_t count = subscriber_.socket().receive(room, sizeof room, from);
            if (count >= 0) {
                if (const auto news = subscriber_.news(from, room, count))
                    take(*news);
                continue;
            }
            if (errno != EAGAIN)
                return false;
            if (is_complete_)
                return true;
            if (Clock::now() >= deadline)
                return false;
            pollfd watched{descriptor(), POLLIN, 0};
            poll(&watched, 1, poll_limit(deadline));
        }
        return false;
    }

private:
    void take(const QrtrNews& news) {
        const auto is_gone = [&](const QrtrNews& server) {
            return is_end_of(server.address, news) || server.address == news.address;
        };
        servers_.erase(std::remove_if(servers_.begin(), servers_.end(), is_gone), servers_.end());
        is_complete_ |= is_list_end(news);
        if (news.command == QRTR_TYPE_NEW_SERVER && !is_list_end(news))
            servers_.push_back(news);
    }

    Subscriber subscriber_;
    std::vector<QrtrNews> servers_;
    bool is_complete_ = false;
};

QrtrRoad::QrtrRoad(std::optional<uint32_t> node, std::string hint) : node_(node), hint_(std::move(hint)) {}

QrtrRoad::~QrtrRoad() = default;

/// The lookup of a service, up to date; null when there is no name service. The lock is held.
std::shared_ptr<QrtrRoad::Lookup> QrtrRoad::lookup(uint32_t service_id) {
    auto& lookup = lookups_[service_id];
    if (!lookup)
        lookup = std::make_shared<Lookup>(service_id);
    if (!lookup->refresh())
        lookup = nullptr;
    return lookup;
}

Road::Instances QrtrRoad::look(uint32_t service_id, const Instances&) {
    std::vector<QrtrNews> servers;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (const auto known = lookup(service_id))
            servers = known->servers();
    }
    std::sort(servers.begin(), servers.end(), [](const QrtrNews& one, const QrtrNews& other) {
        return std::tie(one.address.node, one.instance, one.address.port) <
               std::tie(other.address.node, other.instance, other.address.port);
    });
    Instances instances;
    for (const QrtrNews& server : servers) {
        if (node_.value_or(server.address.node) == server.address.node)
            instances.push_back(instance_of(server));
    }
    return instances;
}

void QrtrRoad::wait_for_change(const std::vector<uint32_t>& service_ids, Clock::time_point deadline) {
    std::vector<std::shared_ptr<Lookup>> kept;
    std::vector<pollfd> watched;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const uint32_t service_id : service_ids) {
            kept.push_back(lookups_[service_id]);
            if (kept.back())
                watched.push_back({kept.back()->descriptor(), POLLIN, 0});
        }
    }
    poll(watched.data(), watched.size(), poll_limit(std::min(deadline, Clock::now() + kLookAgain)));
}

/// On the socket that found the server, if nobody waits at it: the kernel takes long to close one. Null: it
/// cannot be opened.
std::unique_ptr<Channel> QrtrRoad::channel_to(uint32_t service_id, const QrtrAddress& server) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto known = lookups_.find(service_id);
    const bool is_listed =
        known != lookups_.end() && known->second.use_count() == 1 && known->second->lists(server);
    auto channel = std::make_unique<QrtrChannel>(
        is_listed ? known->second->take_subscriber() : Subscriber(service_id), server, is_listed);
    if (is_listed)
        lookups_.erase(known);
    return channel->is_open() ? std::move(channel) : nullptr;
}

std::unique_ptr<Channel> QrtrRoad::open(uint32_t service_id, const qmi_service_info* instance,
                                        Clock::time_point) {
    const Instances found = instance != nullptr ? Instances{*instance} : look(service_id, {});
    return found.empty() ? nullptr : channel_to(service_id, address_of(found.front()));
}

std::string QrtrRoad::absence() const {
    if (!has_qrtr())
        return "this kernel has no QRTR bus (address family AF_QIPCRTR)";
    if (!host::open_qrtr_socket().fd)
        return std::string("the QRTR bus cannot be used: ") + strerror(errno);
    const std::string place = node_ ? "node " + std::to_string(*node_) + " of the QRTR bus" : "the QRTR bus";
    return "nothing publishes it on " + place + hint_;
}

}  // namespace seam

// A modem bus in this process: the socket calls of AF_QIPCRTR, with a name service, and services that the
// test plays. fake_bus.cpp stands in for the C library's calls, for this family alone.
#pragma once

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "qrtr.h"
#include "wire.h"

class FakeBus {
public:
    static constexpr uint32_t kOwnNode = 1;
    static constexpr host::QrtrAddress kNames{kOwnNode, QRTR_PORT_CTRL};
    /// What comes from here is no packet but the error ENETRESET.
    static constexpr host::QrtrAddress kReset{QRTR_NODE_BCAST, 0};

    /// The far end of one socket.
    struct Seat {
        std::shared_ptr<host::UniqueFd> end;
        uint32_t service = 0;  // that it asked the name service for

        void send(const host::QrtrAddress& from, wire::View packet) const {
            const auto bytes = wire::Writer().u32(from.node).u32(from.port).bytes(packet).take();
            ::send(end->get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        }
        void tell(uint32_t type, uint32_t service_id, uint32_t instance,
                  const host::QrtrAddress& server) const {
            wire::Writer news;
            news.u32(type).u32(service_id).u32(instance).u32(server.node).u32(server.port);
            send(kNames, news.data());
        }
    };

    static FakeBus& get() {
        static auto* bus = new FakeBus;
        return *bus;
    }

    void publish(uint32_t service, uint32_t instance, const host::QrtrAddress& address) {
        const std::lock_guard<std::mutex> lock(mutex_);
        servers_.push_back({QRTR_TYPE_NEW_SERVER, service, instance, address});
        tell_all(servers_.back());
    }
    void withdraw(const host::QrtrAddress& address) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = std::find_if(servers_.begin(), servers_.end(),
                                        [&](const auto& server) { return server.address == address; });
        found->command = QRTR_TYPE_DEL_SERVER;
        tell_all(*found);
        servers_.erase(found);
    }
    /// The far end of the socket that was opened last.
    Seat newest() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return newest_;
    }

    int open() {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
            return -1;
        const std::lock_guard<std::mutex> lock(mutex_);
        newest_ = {std::make_shared<host::UniqueFd>(ends[1])};
        seats_[ends[0]] = newest_;
        return ends[0];
    }
    ssize_t send(int fd, const void* bytes, size_t size, const host::QrtrAddress& to) {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (to == kNames)
            return list(seats_[fd], wire::View(bytes, size)), static_cast<ssize_t>(size);
        if (std::any_of(servers_.begin(), servers_.end(),
                        [&](const auto& server) { return server.address == to; }))
            return ::send(fd, bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL);
        errno = ENODEV;
        return -1;
    }
    static ssize_t receive(int fd, void* room, size_t size, sockaddr_qrtr& from) {
        uint32_t address[2] = {};
        iovec parts[] = {{address, sizeof address}, {room, size}};
        msghdr message{};
        message.msg_iov = parts;
        message.msg_iovlen = 2;
        const ssize_t count = recvmsg(fd, &message, MSG_DONTWAIT);
        from = {AF_QIPCRTR, address[0], address[1]};
        if (count >= 0 && kReset == host::QrtrAddress{address[0], address[1]}) {
            errno = ENETRESET;
            return -1;
        }
        return count < 0 ? count : count - static_cast<ssize_t>(sizeof address);
    }

private:
    void list(Seat& seat, wire::View request) {
        wire::Reader reader(request);
        reader.u32();
        seat.service = reader.u32();
        for (const auto& server : servers_) {
            if (server.service == seat.service)
                seat.tell(server.command, server.service, server.instance, server.address);
        }
        seat.tell(QRTR_TYPE_NEW_SERVER, 0, 0, {});
    }
    void tell_all(const host::QrtrNews& news) {
        for (const auto& [fd, seat] : seats_) {
            if (seat.service == news.service)
                seat.tell(news.command, news.service, news.instance, news.address);
        }
    }

    std::mutex mutex_;
    std::map<int, Seat> seats_;  // by the near end
    Seat newest_;
    std::vector<host::QrtrNews> servers_;
};

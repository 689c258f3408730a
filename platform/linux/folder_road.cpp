#include "folder_road.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "layout.h"

namespace seam {

namespace {

// How often one that waits for a service looks again. Nothing but connecting tells whether a socket is
// listened to, and listening leaves no trace that a file watch could see; looking holds whatever becomes of
// the folder in the meantime.
constexpr Milliseconds kLookAgain{10};

timeval as_timeval(Milliseconds time) {
    return {time.count() / 1000, time.count() % 1000 * 1000};
}

class SocketChannel : public Channel {
public:
    explicit SocketChannel(host::UniqueFd socket) : socket_(std::move(socket)) {}

    int descriptor() const override { return socket_.get(); }

    Sent send(wire::View packet) override {
        for (;;) {
            if (::send(socket_.get(), packet.data, packet.size, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0)
                return Sent::kDone;
            if (errno == EINTR)
                continue;
            if (errno == EPIPE || errno == ECONNRESET) {
                // A peer that takes no more has ended the connection, also if it goes on sending.
                shut();
                return Sent::kEnded;
            }
            return errno == EAGAIN ? Sent::kNoRoom : Sent::kRefused;
        }
    }

    void wait_for_room(Deadline& deadline) override {
        pollfd watched{socket_.get(), POLLOUT, 0};
        poll(&watched, 1, poll_limit(deadline.at()));
    }

    // The socket keeps its time limit, because it is mostly the same one; a long one would be kept by the
    // second, not by the millisecond.
    ssize_t receive(uint8_t* room, size_t size, Deadline& deadline) override {
        constexpr Milliseconds kLongestLimit(1000);
        const auto left = std::min(left_until(deadline.at()), kLongestLimit);
        if (left.count() != 0 && left != receive_limit_) {
            const timeval limit = as_timeval(left);
            setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
            receive_limit_ = left;
        }
        const ssize_t count = recv(socket_.get(), room, size, left.count() == 0 ? MSG_DONTWAIT : 0);
        if (count > 0)
            return count;
        // An empty packet also reads as 0, and a reset is reported once, before the packets that came ahead
        // of it.
        const bool may_go_on = count < 0 && (errno == EAGAIN || errno == EINTR || errno == ECONNRESET);
        return may_go_on || (count == 0 && !is_at_end()) ? 0 : -1;
    }

    void shut() override { shutdown(socket_.get(), SHUT_RDWR); }

private:
    bool is_at_end() const {
        pollfd watched{socket_.get(), POLLRDHUP, 0};
        int unread = 0;
        return poll(&watched, 1, 0) == 1 && (ioctl(socket_.get(), FIONREAD, &unread) != 0 || unread == 0);
    }

    const host::UniqueFd socket_;
    Milliseconds receive_limit_{0};  // of whoever receives
};

bool is_same(const qmi_service_info& one, const qmi_service_info& other) {
    return std::equal(one.info, std::end(one.info), other.info);
}

// Never waits: a queue that is full is that of a service which is there.
bool is_listened_to(const sockaddr_un& address) {
    const host::UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
           errno == EAGAIN;
}

}  // namespace

host::UniqueFd connect_to(const sockaddr_un& address, Clock::time_point deadline) {
    host::UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    // A handset whose queue of connections is full keeps a connection waiting.
    int result = -1;
    do {
        const timeval limit = as_timeval(std::max(left_until(deadline), Milliseconds(1)));
        setsockopt(fd.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        result = connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? std::move(fd) : host::UniqueFd();
}

std::unique_ptr<Channel> socket_channel(host::UniqueFd socket) {
    return socket ? std::make_unique<SocketChannel>(std::move(socket)) : nullptr;
}

std::optional<sockaddr_un> FolderRoad::address_of(uint32_t service_id) const {
    return host::socket_address(folder_ + "/" + host::qmi_place(service_id));
}

// Another file at the same place is another handset. A socket that was listened to and is still the same is
// not asked again, so that a waiting client does not keep the handset busy.
Road::Instances FolderRoad::look(uint32_t service_id, const Instances& known) {
    struct stat status;
    if (stat((folder_ + "/" + host::qmi_place(service_id)).c_str(), &status) != 0)
        return {};
    const qmi_service_info seen{{service_id, 1, static_cast<uint32_t>(status.st_ino),
                                 static_cast<uint32_t>(status.st_ctim.tv_sec),
                                 static_cast<uint32_t>(status.st_ctim.tv_nsec)}};
    const bool is_known = known.size() == 1 && is_same(known[0], seen);
    const auto address = address_of(service_id);
    return is_known || (address && is_listened_to(*address)) ? Instances{seen} : Instances{};
}

void FolderRoad::wait_for_change(const std::vector<uint32_t>&, Clock::time_point deadline) {
    std::this_thread::sleep_until(std::min(Clock::now() + kLookAgain, deadline));
}

// A folder has one instance of a service at most, whichever it was when somebody looked.
std::unique_ptr<Channel> FolderRoad::open(uint32_t service_id, const qmi_service_info*,
                                          Clock::time_point deadline) {
    const auto address = address_of(service_id);
    return address ? socket_channel(connect_to(*address, deadline)) : nullptr;
}

std::string FolderRoad::absence() const {
    return "no handset publishes it in " + folder_ + ". Start one with: vxk-handset serve --dir " + folder_;
}

}  // namespace seam

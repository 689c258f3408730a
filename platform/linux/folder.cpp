#include "folder.h"

#include <sys/socket.h>

#include <cerrno>

#include "layout.h"

namespace seam {

namespace {

// A live handset accepts at once. The limit is for one that is stopped and whose queue of connections is
// full.
constexpr timeval kConnectLimit{1, 0};

}  // namespace

std::string handset_path(const std::string& place) {
    return host::handset_folder() + "/" + place;
}

host::UniqueFd connect_to(const std::string& place) {
    const auto address = host::socket_address(handset_path(place));
    if (!address)
        return {};
    host::UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (!fd)
        return {};
    setsockopt(fd.get(), SOL_SOCKET, SO_SNDTIMEO, &kConnectLimit, sizeof kConnectLimit);
    int result = -1;
    do
        result = connect(fd.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address);
    while (result != 0 && errno == EINTR);
    return result == 0 ? std::move(fd) : host::UniqueFd();
}

}  // namespace seam

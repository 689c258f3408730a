#include "folder.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace seam {

namespace {

// The longest path of a socket, so that every program that speaks to the handset can hold it.
constexpr size_t kSocketPathMax = 99;

// A live handset accepts at once. The limit is for one that is stopped and whose queue of connections is
// full.
constexpr timeval kConnectLimit{1, 0};

}  // namespace

std::string handset_folder() {
    const char* folder = getenv("VXK_HANDSET_DIR");
    if (folder && *folder)
        return folder;
    return "/tmp/vxk-handset-" + std::to_string(getuid());
}

std::string qmi_socket_path(uint32_t service_id) {
    return handset_folder() + "/qmi/" + std::to_string(service_id);
}

UniqueFd connect_to(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() > kSocketPathMax)
        return {};
    memcpy(address.sun_path, path.c_str(), path.size() + 1);
    UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (!fd)
        return {};
    setsockopt(fd.get(), SOL_SOCKET, SO_SNDTIMEO, &kConnectLimit, sizeof kConnectLimit);
    int result = -1;
    do
        result = connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    while (result != 0 && errno == EINTR);
    return result == 0 ? std::move(fd) : UniqueFd();
}

}  // namespace seam

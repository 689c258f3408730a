#include "fake_bus.h"

#include <sys/syscall.h>
#include <unistd.h>

extern "C" int socket(int family, int type, int protocol) noexcept {
    if (family == AF_QIPCRTR)
        return FakeBus::get().open();
    return static_cast<int>(syscall(SYS_socket, family, type, protocol));
}
extern "C" int bind(int fd, const sockaddr* address, socklen_t size) noexcept {
    return address->sa_family == AF_QIPCRTR ? 0 : static_cast<int>(syscall(SYS_bind, fd, address, size));
}
extern "C" int getsockname(int, sockaddr* address, socklen_t*) noexcept {
    *reinterpret_cast<sockaddr_qrtr*>(address) = {AF_QIPCRTR, FakeBus::kOwnNode, 0x4000};
    return 0;
}
extern "C" ssize_t sendto(int fd, const void* bytes, size_t size, int, const sockaddr* address, socklen_t) {
    const auto* to = reinterpret_cast<const sockaddr_qrtr*>(address);
    return FakeBus::get().send(fd, bytes, size, {to->sq_node, to->sq_port});
}
extern "C" ssize_t recvfrom(int fd, void* room, size_t size, int, sockaddr* from, socklen_t*) {
    return FakeBus::receive(fd, room, size, *reinterpret_cast<sockaddr_qrtr*>(from));
}

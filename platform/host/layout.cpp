#include "layout.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

namespace host {

std::string qmi_place(uint32_t service_id) {
    return std::string(kQmiPlace) + "/" + std::to_string(service_id);
}

std::string default_handset_folder() {
    return "/tmp/vxk-handset-" + std::to_string(getuid());
}

const char* named_handset_folder() {
    const char* folder = getenv("VXK_HANDSET_DIR");
    return folder != nullptr && *folder != '\0' ? folder : nullptr;
}

std::optional<sockaddr_un> socket_address(const std::string& path) {
    if (path.size() > kSocketPathMax)
        return std::nullopt;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

}  // namespace host

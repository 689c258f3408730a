// The road to a simulated handset: Unix sockets in its folder.
#pragma once

#include <sys/un.h>

#include "road.h"
#include "unique_fd.h"

namespace seam {

/// A connection to the SOCK_SEQPACKET socket of this address, or an empty descriptor when nobody accepts one
/// before the deadline.
host::UniqueFd connect_to(const sockaddr_un& address, Clock::time_point deadline);

/// A connected SOCK_SEQPACKET socket as a channel.
std::unique_ptr<Channel> socket_channel(host::UniqueFd socket);

class FolderRoad : public Road {
public:
    explicit FolderRoad(std::string folder) : folder_(std::move(folder)) {}

    Instances look(uint32_t service_id, const Instances& known) override;
    void wait_for_change(const std::vector<uint32_t>& service_ids, Clock::time_point deadline) override;
    std::unique_ptr<Channel> open(uint32_t service_id, const qmi_service_info* instance,
                                  Clock::time_point deadline) override;
    std::string absence() const override;

private:
    std::optional<sockaddr_un> address_of(uint32_t service_id) const;

    const std::string folder_;
};

}  // namespace seam

// The road over the kernel's modem bus: datagrams of the address family AF_QIPCRTR.
#pragma once

#include <map>
#include <mutex>
#include <optional>

#include "qrtr.h"
#include "road.h"

namespace seam {

/// False when this kernel does not know the bus.
bool has_qrtr();

/// The last three words of an instance's qmi_service_info but one: instance, node, port.
class QrtrRoad : public Road {
public:
    /// `node`: the only one that counts. `hint` follows what absence() says of the bus.
    explicit QrtrRoad(std::optional<uint32_t> node, std::string hint = "");
    ~QrtrRoad() override;

    /// The kernel's name service is waited for, however early the deadline is: it always answers.
    Instances look(uint32_t service_id, const Instances& known) override;
    void wait_for_change(const std::vector<uint32_t>& service_ids, Clock::time_point deadline) override;
    std::unique_ptr<Channel> open(uint32_t service_id, const qmi_service_info* instance,
                                  Clock::time_point deadline) override;
    std::string absence() const override;

private:
    class Lookup;

    std::shared_ptr<Lookup> lookup(uint32_t service_id);
    std::unique_ptr<Channel> channel_to(uint32_t service_id, const host::QrtrAddress& server);

    const std::optional<uint32_t> node_;
    const std::string hint_;
    std::mutex mutex_;  // guards what follows, and the lookups' reading
    std::map<uint32_t, std::shared_ptr<Lookup>> lookups_;
};

}  // namespace seam

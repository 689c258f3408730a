// The vendor's extension service: one message that carries a request id and up to 512 bytes. Request id 2 is
// NV and EFS access, 4 the common requests; 0, 1, 3 and 5 send the bytes back.
#pragma once

#include <map>

#include "file_access.h"
#include "qmi_service.h"

namespace handset {

class CommonRequests;

class ExtensionService : public QmiService {
public:
    ExtensionService(Core& core, ModemFiles& files, CommonRequests& requests);

    QmiAnswer handle(const QmiRequest& request) override;
    wire::Bytes refusal(uint32_t error) const override;
    wire::Bytes modem_result(const QmiRequest& request, int32_t result) const override;
    wire::Bytes payload(wire::View payload) const override;
    void connection_closed(ConnectionId connection) override { transfers_.erase(connection); }

private:
    static wire::Bytes encode(uint32_t id, wire::View payload);

    ModemFiles& files_;
    CommonRequests& requests_;
    std::map<ConnectionId, FileAccess> transfers_;
};

}  // namespace handset

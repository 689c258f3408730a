// The modem's UIM service as bytes on the wire: card status, power, channels and commands, files, and who is
// told of changes. What the slots do is UimSlots's.
#pragma once

#include <map>
#include <set>

#include "qmi_service.h"
#include "uim_profile.h"
#include "uim_slots.h"

namespace handset {

class Core;

class UimService : public QmiService {
public:
    UimService(Core& core, UimSlots& slots, const UimProfile& profile);

    QmiAnswer handle(const QmiRequest& request) override;
    void connection_closed(ConnectionId connection) override { clients_.erase(connection); }

private:
    /// What a connection wants to hear of.
    struct Client {
        uint32_t events = 0;
        std::set<uint8_t> refresh_sessions;
    };

    wire::Bytes card_status(const QmiRequest& request) const;
    wire::Bytes slot_status() const;
    wire::Bytes switch_slot(const QmiRequest& request);
    wire::Bytes register_events(const QmiRequest& request);
    wire::Bytes register_refresh(const QmiRequest& request);
    wire::Bytes handle_slot(uint8_t slot, const QmiRequest& request);
    wire::Bytes eid(uint8_t slot) const;
    wire::Bytes open_channel(uint8_t slot, const QmiRequest& request);
    wire::Bytes close_channel(uint8_t slot, const QmiRequest& request);
    wire::Bytes send_apdu(uint8_t slot, const QmiRequest& request);

    void slot_changed(uint8_t slot, bool refresh);
    void tell(uint32_t event, uint16_t message, const wire::Bytes& body);
    void tell_refresh(uint8_t slot);

    const UimProfile& profile_;
    UimSlots& slots_;
    std::map<ConnectionId, Client> clients_;
    wire::Bytes told_slots_;  // what was last said of the physical slots
};

}  // namespace handset

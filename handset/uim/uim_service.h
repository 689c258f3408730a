// The modem's UIM service: card status, the power of a slot, the EID, and APDUs over logical channels, as
// bytes on the wire. What the slots do is UimSlots's.
#pragma once

#include "qmi_service.h"
#include "uim_profile.h"
#include "uim_slots.h"

namespace handset {

class Core;

class UimService : public QmiService {
public:
    UimService(Core& core, CommonRequests& requests, Cards& cards, const UimProfile& profile,
               const EuiccProfile& euicc);

    QmiAnswer handle(const QmiRequest& request) override;

private:
    wire::Bytes handle_slot(uint8_t slot, const QmiRequest& request);
    wire::Bytes card_status(const QmiRequest& request) const;
    wire::Bytes encode_card_status() const;
    wire::Bytes eid(uint8_t slot) const;
    wire::Bytes open_channel(uint8_t slot, const QmiRequest& request);
    wire::Bytes close_channel(uint8_t slot, const QmiRequest& request);
    wire::Bytes send_apdu(uint8_t slot, const QmiRequest& request);

    const UimProfile& profile_;
    UimSlots slots_;
};

}  // namespace handset

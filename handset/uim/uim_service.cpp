#include "uim_service.h"

#include <utility>
#include <vector>

#include "core.h"
#include "fcp.h"
#include "profile_section.h"
#include "uim_encoding.h"
#include "uim_file_requests.h"
#include "uim_messages.h"

namespace handset {
namespace {

constexpr size_t kIndicationsMax = 20;
constexpr size_t kAidMax = 32;
constexpr size_t kApduMax = 1024;
constexpr size_t kSelectResponseMax = 255;

// Requests, in the order of their numbers.
constexpr uint16_t kRequests[] = {
    kUimReset,
    kUimGetSupportedMessages,
    kUimReadTransparent,
    kUimReadRecord,
    kUimGetFileAttributes,
    kUimRefreshRegister,
    kUimRefreshComplete,
    kUimRegisterEvents,
    kUimGetCardStatus,
    kUimPowerDown,
    kUimPowerUp,
    kUimSendApdu,
    kUimLogicalChannel,
    kUimOpenLogicalChannel,
    kUimRefreshRegisterAll,
    kUimSwitchSlot,
    kUimGetSlotStatus,
    kUimGetEid,
};

enum Event : uint32_t { kEventCardStatus = 1U << 0, kEventPhysicalSlots = 1U << 4 };
constexpr uint32_t kEvents = kEventCardStatus | kEventPhysicalSlots;

// Of a refresh.
enum RefreshStage : uint8_t { kRefreshStart = 1, kRefreshSuccess = 2 };
constexpr uint8_t kRefreshReset = 0;

// File control information of an open request.
constexpr uint8_t kNoInformation = 0;
constexpr uint8_t kNameOnly = 1;

// A TLV of one byte; what it is when it is absent may be given.
std::optional<uint8_t> byte(wire::View value, std::optional<uint8_t> absent = std::nullopt) {
    if (value.size == 0)
        return absent;
    return value.size == 1 ? std::optional<uint8_t>(*value.data) : std::nullopt;
}

wire::Bytes supported_messages() {
    constexpr size_t kLast = std::size(kRequests) - 1;
    wire::Bytes bits(kRequests[kLast] / 8 + 1);
    for (const uint16_t message : kRequests)
        bits[message / 8] |= static_cast<uint8_t>(1U << message % 8);
    wire::Writer body = qmi_result();
    body.tlv(kUimSupportedMessages, uim_with_count(bits, 2));
    return body.take();
}

}  // namespace

void read_profile(Section& section, UimProfile& uim) {
    section.list("indications", kIndicationsMax, [&uim](Section& entry) {
        UimIndication& indication = uim.indications.emplace_back();
        entry.require("before");
        std::optional<uint32_t> before;
        read_message(entry, "before", messages::kUim, before);
        indication.before = static_cast<uint16_t>(before.value_or(0));
        entry.integer("id", indication.id);
        entry.bytes("tlvs", indication.tlvs, UINT16_MAX);
    });
}

UimService::UimService(Core& core, UimSlots& slots, const UimProfile& profile)
    : QmiService(core, "uim"), profile_(profile), slots_(slots) {
    wire::Writer status;
    put_slot_status(status, slots_);
    told_slots_ = status.take();
    slots_.on_change([this](uint8_t slot, bool refresh) { slot_changed(slot, refresh); });
}

QmiAnswer UimService::handle(const QmiRequest& request) {
    for (const UimIndication& indication : profile_.indications) {
        if (indication.before == request.message)
            indicate(indication.id, indication.tlvs);
    }
    switch (request.message) {
        case kUimReset:
            clients_.erase(request.connection);
            return {qmi_result().take()};
        case kUimGetSupportedMessages:
            return {supported_messages()};
        case kUimReadTransparent:
        case kUimReadRecord:
        case kUimGetFileAttributes:
            return {answer_file_request(slots_, request)};
        case kUimRegisterEvents:
            return {register_events(request)};
        case kUimRefreshRegister:
        case kUimRefreshRegisterAll:
            return {register_refresh(request)};
        case kUimRefreshComplete:
            return {qmi_result().take()};
        case kUimGetCardStatus:
            return {card_status(request)};
        case kUimGetSlotStatus:
            return {slot_status()};
        case kUimSwitchSlot:
            return {switch_slot(request)};
        case kUimPowerDown:
        case kUimPowerUp:
        case kUimSendApdu:
        case kUimLogicalChannel:
        case kUimOpenLogicalChannel:
        case kUimGetEid:
            break;
        default:
            return {refusal(kQmiErrorInvalidMessage)};
    }
    const wire::View value = request.tlv(kUimSlot);
    const auto slot = byte(value);
    if (!slot)
        return {refusal(value.size == 0 ? kQmiErrorMissingArgument : kQmiErrorMalformed)};
    if (!slots_.has(*slot))
        return {refusal(kQmiErrorInvalidArgument)};
    return {handle_slot(*slot, request)};
}

wire::Bytes UimService::handle_slot(uint8_t slot, const QmiRequest& request) {
    switch (request.message) {
        case kUimGetEid:
            return eid(slot);
        case kUimOpenLogicalChannel:
            return open_channel(slot, request);
        case kUimLogicalChannel:
            return close_channel(slot, request);
        case kUimSendApdu:
            return send_apdu(slot, request);
        default:
            slots_.power(slot, request.message == kUimPowerUp);
            return qmi_result().take();
    }
}

wire::Bytes UimService::card_status(const QmiRequest& request) const {
    const auto extended = byte(request.tlv(kUimExtendedWanted), 0);
    if (!extended)
        return refusal(kQmiErrorMalformed);
    const wire::Bytes status = encode_card_status(slots_);
    wire::Writer body = qmi_result();
    body.tlv(kUimCardStatus, status);
    if (*extended == 1)
        body.tlv(kUimExtendedCardStatus, status);
    return body.take();
}

wire::Bytes UimService::slot_status() const {
    wire::Writer body = qmi_result();
    put_slot_status(body, slots_);
    return body.take();
}

wire::Bytes UimService::switch_slot(const QmiRequest& request) {
    const wire::View logical = request.tlv(kUimSlot);
    const wire::View physical = request.tlv(kUimPhysicalSlot);
    if (logical.size == 0 || physical.size == 0)
        return refusal(kQmiErrorMissingArgument);
    if (logical.size != 1 || physical.size != 4)
        return refusal(kQmiErrorMalformed);
    return refusal(slots_.switch_slot(*logical.data, wire::Reader(physical).u32()));
}

wire::Bytes UimService::register_events(const QmiRequest& request) {
    const wire::View value = request.tlv(kUimEventMask);
    wire::Reader reader(value);
    const uint32_t events = reader.u32() & kEvents;
    if (!reader.ok() || reader.left() > 0)
        return refusal(value.size == 0 ? kQmiErrorMissingArgument : kQmiErrorMalformed);
    clients_[request.connection].events = events;
    wire::Writer body = qmi_result();
    body.tlv(kUimEventMaskTaken, wire::Writer().u32(events).take());
    return body.take();
}

// A session, and first of what follows it whether to register or to stop. A card that begins anew has no file
// that stays, so whoever registers for files hears of all.
wire::Bytes UimService::register_refresh(const QmiRequest& request) {
    const wire::View session = request.tlv(kUimSession);
    const wire::View information = request.tlv(kUimRefreshInformation);
    if (session.size == 0 || information.size == 0)
        return refusal(kQmiErrorMissingArgument);
    if (!session_slot(slots_, *session.data))
        return refusal(kQmiErrorInvalidArgument);
    std::set<uint8_t>& sessions = clients_[request.connection].refresh_sessions;
    if (*information.data != 0)
        sessions.insert(*session.data);
    else
        sessions.erase(*session.data);
    return qmi_result().take();
}

wire::Bytes UimService::eid(uint8_t slot) const {
    const UimSlots::Eid eid = slots_.eid(slot);
    wire::Writer body = qmi_result(eid.error);
    if (eid.error == kQmiErrorNone)
        body.tlv(kUimEid, uim_with_count(eid.bytes, 1));
    return body.take();
}

wire::Bytes UimService::open_channel(uint8_t slot, const QmiRequest& request) {
    const wire::View value = request.tlv(kUimAid);
    const auto aid = value.size == 0 ? std::optional<wire::View>(value) : uim_counted(value, 1);
    const auto information = byte(request.tlv(kUimFileControlInformation), kNoInformation);
    if (!aid || aid->size > kAidMax || !information)
        return refusal(kQmiErrorMalformed);
    const UimSlots::Channel channel = slots_.open_channel(slot, *aid);
    wire::Writer body = qmi_result(channel.error);
    if (channel.error == kQmiErrorNone)
        body.tlv(kUimOpenedChannel, wire::View(&channel.number, 1));
    if (channel.words != 0)
        body.tlv(kUimStatusWords, status_words(channel.words));
    if (channel.error == kQmiErrorNone && aid->size > 0 && *information != kNoInformation) {
        const Card& card = *slots_.card(slot);
        const wire::Bytes response = *information == kNameOnly ? name_template(card.selected(channel.number))
                                                               : card.control_information(channel.number);
        if (response.size() <= kSelectResponseMax)
            body.tlv(kUimSelectResponse, uim_with_count(response, 1));
    }
    return body.take();
}

wire::Bytes UimService::close_channel(uint8_t slot, const QmiRequest& request) {
    const wire::View value = request.tlv(kUimClosedChannel);
    const auto number = byte(value);
    if (!number)
        return refusal(value.size == 0 ? kQmiErrorMissingArgument : kQmiErrorMalformed);
    const UimSlots::Channel channel = slots_.close_channel(slot, *number);
    wire::Writer body = qmi_result(channel.error);
    if (channel.words != 0)
        body.tlv(kUimStatusWords, status_words(channel.words));
    return body.take();
}

wire::Bytes UimService::send_apdu(uint8_t slot, const QmiRequest& request) {
    const wire::View value = request.tlv(kUimApdu);
    if (value.size == 0)
        return refusal(kQmiErrorMissingArgument);
    const auto apdu = uim_counted(value, 2);
    const auto channel = byte(request.tlv(kUimApduChannel), 0);
    if (!apdu || apdu->size > kApduMax || !channel)
        return refusal(kQmiErrorMalformed);
    const UimSlots::Response response = slots_.transmit(slot, *channel, *apdu, kApduMax);
    wire::Writer body = qmi_result(response.error);
    if (response.error == kQmiErrorNone)
        body.tlv(kUimResponseApdu, uim_with_count(response.apdu, 2));
    return body.take();
}

void UimService::slot_changed(uint8_t slot, bool refresh) {
    if (refresh)
        tell_refresh(slot);
    if (slot != 0)
        tell(kEventCardStatus, kUimCardStatusIndication,
             wire::Writer().tlv(kUimCardStatus, encode_card_status(slots_)).take());
    wire::Writer status;
    put_slot_status(status, slots_);
    if (status.data() == told_slots_)
        return;
    told_slots_ = status.take();
    tell(kEventPhysicalSlots, kUimSlotStatusIndication, told_slots_);
}

// A client that does not read may be gone once it is told.
void UimService::tell(uint32_t event, uint16_t message, const wire::Bytes& body) {
    std::vector<ConnectionId> listeners;
    for (const auto& client : clients_) {
        if ((client.second.events & event) != 0)
            listeners.push_back(client.first);
    }
    for (const ConnectionId listener : listeners)
        indicate(message, body, listener);
}

// u8 stage, u8 mode, u8 session type, u8 n and n bytes of AID, u16 n and n files: a reset has none.
void UimService::tell_refresh(uint8_t slot) {
    std::vector<std::pair<ConnectionId, uint8_t>> listeners;
    for (const auto& client : clients_) {
        for (const uint8_t session : client.second.refresh_sessions) {
            if (session_slot(slots_, session) == slot)
                listeners.emplace_back(client.first, session);
        }
    }
    for (const auto& [listener, session] : listeners) {
        for (const RefreshStage stage : {kRefreshStart, kRefreshSuccess}) {
            wire::Writer event;
            event.u8(stage).u8(kRefreshReset).u8(session).u8(0).u16(0);
            indicate(kUimRefreshIndication, wire::Writer().tlv(kUimRefreshEvent, event.data()).take(),
                     listener);
        }
    }
}

}  // namespace handset

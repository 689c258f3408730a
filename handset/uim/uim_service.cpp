#include "uim_service.h"

#include "core.h"
#include "profile_section.h"
#include "uim_messages.h"

namespace handset {
namespace {

constexpr size_t kIndicationsMax = 20;
constexpr size_t kAidMax = 32;
constexpr size_t kApduMax = 1024;

// The one application of a card. The numbers are those of the service's card status.
constexpr uint8_t kTypeUsim = 2;
constexpr uint8_t kApplicationReady = 7;
constexpr uint8_t kPersonalisationReady = 2;
constexpr uint8_t kPinDisabled = 3;
constexpr uint8_t kPinNotVerified = 1;
constexpr uint8_t kPinRetries = 3;
constexpr uint8_t kPukRetries = 10;
constexpr uint16_t kNoApplication = 0xFFFF;

// Slot in the high byte, application in the low one, both from 0.
constexpr uint16_t index_of(uint8_t slot) {
    return static_cast<uint16_t>((slot - 1) << 8);
}

void encode_usim(wire::Writer& writer) {
    const wire::View aid = UimSlots::usim_aid();
    writer.u8(kTypeUsim).u8(kApplicationReady);
    writer.u8(kPersonalisationReady).u8(0).u8(0).u8(0);
    writer.u8(static_cast<uint8_t>(aid.size)).bytes(aid);
    writer.u8(0);  // UPIN does not replace PIN1
    writer.u8(kPinDisabled).u8(kPinRetries).u8(kPukRetries);
    writer.u8(kPinNotVerified).u8(kPinRetries).u8(kPukRetries);
}

// A TLV of one byte; what it is when it is absent may be given.
std::optional<uint8_t> byte(wire::View value, std::optional<uint8_t> absent = std::nullopt) {
    if (value.size == 0)
        return absent;
    return value.size == 1 ? std::optional<uint8_t>(*value.data) : std::nullopt;
}

wire::Bytes counted(wire::View bytes, size_t width) {
    wire::Writer value;
    value.number(bytes.size, width).bytes(bytes);
    return value.take();
}

// The file control information of an application.
wire::Bytes select_response(wire::View aid) {
    const auto length = static_cast<uint8_t>(aid.size);
    wire::Writer writer;
    writer.u8(0x6F).u8(static_cast<uint8_t>(length + 2)).u8(0x84).u8(length).bytes(aid);
    return writer.take();
}

}  // namespace

void read_profile(Section& section, UimProfile& uim) {
    section.list("indications", kIndicationsMax, [&uim](Section& entry) {
        UimIndication& indication = uim.indications.emplace_back();
        entry.require("before");
        entry.integer("before", indication.before);
        entry.integer("id", indication.id);
        entry.bytes("tlvs", indication.tlvs, UINT16_MAX);
    });
}

UimService::UimService(Core& core, CommonRequests& requests, Cards& cards, const UimProfile& profile,
                       const EuiccProfile& euicc)
    : QmiService(core, kUimServiceId), profile_(profile), slots_(core, requests, cards, euicc) {}

QmiAnswer UimService::handle(const QmiRequest& request) {
    for (const UimIndication& indication : profile_.indications) {
        if (indication.before == request.message)
            indicate(indication.id, indication.tlvs);
    }
    switch (request.message) {
        case kUimGetCardStatus:
            return {card_status(request)};
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
    const wire::Bytes status = encode_card_status();
    wire::Writer body = qmi_result();
    body.tlv(kUimCardStatus, status);
    if (*extended == 1)
        body.tlv(kUimExtendedCardStatus, status);
    return body.take();
}

// The first two USIMs are those that the phone uses.
wire::Bytes UimService::encode_card_status() const {
    uint16_t primary = kNoApplication;
    uint16_t secondary = kNoApplication;
    wire::Writer cards;
    for (uint8_t slot = 1; slot <= slots_.count(); ++slot) {
        const CardStatus card = slots_.status(slot);
        cards.u8(static_cast<uint8_t>(card.state)).u8(0).u8(0).u8(0).u8(card.error).u8(card.has_usim ? 1 : 0);
        if (!card.has_usim)
            continue;
        encode_usim(cards);
        uint16_t& index = primary == kNoApplication ? primary : secondary;
        if (index == kNoApplication)
            index = index_of(slot);
    }
    wire::Writer status;
    status.u16(primary).u16(kNoApplication).u16(secondary).u16(kNoApplication);
    status.u8(slots_.count()).bytes(cards.data());
    return status.take();
}

wire::Bytes UimService::eid(uint8_t slot) const {
    const UimSlots::Eid eid = slots_.eid(slot);
    wire::Writer body = qmi_result(eid.error);
    if (eid.error == kQmiErrorNone)
        body.tlv(kUimEid, counted(eid.bytes, 1));
    return body.take();
}

wire::Bytes UimService::open_channel(uint8_t slot, const QmiRequest& request) {
    const wire::View value = request.tlv(kUimAid);
    const auto aid = value.size == 0 ? std::optional<wire::View>(value) : uim_counted(value, 1);
    const auto information = byte(request.tlv(kUimFileControlInformation), 0);
    if (!aid || aid->size > kAidMax || !information)
        return refusal(kQmiErrorMalformed);
    const UimSlots::Channel channel = slots_.open_channel(slot, *aid);
    wire::Writer body = qmi_result(channel.error);
    if (channel.error == kQmiErrorNone)
        body.tlv(kUimOpenedChannel, wire::View(&channel.number, 1));
    if (channel.words != 0)
        body.tlv(kUimStatusWords, status_words(channel.words));
    if (channel.error == kQmiErrorNone && aid->size > 0 && *information != 0)
        body.tlv(kUimSelectResponse, counted(select_response(*aid), 1));
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
    const UimSlots::Response response = slots_.transmit(slot, *channel, *apdu);
    wire::Writer body = qmi_result(response.error);
    if (response.error == kQmiErrorNone)
        body.tlv(kUimResponseApdu, counted(response.apdu, 2));
    return body.take();
}

}  // namespace handset

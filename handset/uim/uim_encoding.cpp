#include "uim_encoding.h"

#include "fcp.h"
#include "uim_messages.h"
#include "usim.h"

namespace handset {
namespace {

// The one application of a card. The numbers are those of the service's card status.
constexpr uint8_t kTypeUsim = 2;
constexpr uint8_t kPersonalisationUnknown = 0;
constexpr uint8_t kPersonalisationReady = 2;
constexpr uint8_t kPin2NotVerified = 1;
constexpr uint8_t kPin2Retries = 3;
constexpr uint8_t kPuk2Retries = 10;
constexpr uint16_t kNoApplication = 0xFFFF;

enum ApplicationState : uint8_t { kPinRequired = 2, kPukRequired = 3, kPinBlocked = 5, kReady = 7 };
enum PinState : uint8_t { kNotVerified = 1, kVerified = 2, kDisabled = 3, kBlocked = 4, kBlockedForGood = 5 };

// Of a physical slot.
constexpr uint32_t kAbsent = 1;
constexpr uint32_t kPresent = 2;
constexpr uint32_t kActive = 1;
constexpr uint32_t kProtocolUicc = 2;

// Of a file.
enum FileType : uint8_t { kTransparent = 0, kLinearFixed = 2, kDirectory = 3, kMaster = 4 };
enum SecurityLogic : uint8_t { kAlways = 0, kNever = 1, kSingle = 4 };
constexpr uint16_t kByPin = 0x01;
constexpr uint16_t kByAdministrator = 0x08;

enum SessionType : uint8_t { kPrimary = 0, kSecondary = 2, kFirstOfSlots = 4, kLastOfSlots = 9 };

// Slot in the high byte, application in the low one, both from 0.
constexpr uint16_t index_of(uint8_t slot) {
    return static_cast<uint16_t>((slot - 1) << 8);
}

PinState pin_state(const CardPin& pin) {
    if (!pin.enabled())
        return kDisabled;
    if (pin.tries() == 0)
        return pin.unblock_tries() == 0 ? kBlockedForGood : kBlocked;
    return pin.verified() ? kVerified : kNotVerified;
}

ApplicationState application_state(PinState pin) {
    switch (pin) {
        case kNotVerified:
            return kPinRequired;
        case kBlocked:
            return kPukRequired;
        case kBlockedForGood:
            return kPinBlocked;
        default:
            return kReady;
    }
}

void encode_usim(wire::Writer& writer, const CardPin& pin) {
    const wire::View aid = usim_aid();
    const PinState state = pin_state(pin);
    const ApplicationState application = application_state(state);
    writer.u8(kTypeUsim).u8(application);
    writer.u8(application == kReady ? kPersonalisationReady : kPersonalisationUnknown).u8(0).u8(0).u8(0);
    writer.u8(static_cast<uint8_t>(aid.size)).bytes(aid);
    writer.u8(0);  // UPIN does not replace PIN1
    writer.u8(state).u8(pin.tries()).u8(pin.unblock_tries());
    writer.u8(kPin2NotVerified).u8(kPin2Retries).u8(kPuk2Retries);
}

void put_security(wire::Writer& writer, Access access) {
    writer.u8(access == Access::kAlways ? kAlways : kSingle);
    writer.u16(access == Access::kAlways ? 0 : access == Access::kPin ? kByPin : kByAdministrator);
}

FileType type_of(const CardFile& file) {
    if (file.kind == FileKind::kDirectory)
        return file.id == kIdMaster ? kMaster : kDirectory;
    return file.kind == FileKind::kTransparent ? kTransparent : kLinearFixed;
}

// The slots whose USIMs the phone uses: the first two that have one. 0: none.
struct UsedSlots {
    uint8_t primary = 0;
    uint8_t secondary = 0;
};

UsedSlots used_slots(const UimSlots& slots) {
    UsedSlots used;
    for (uint8_t slot = 1; slot <= slots.count(); ++slot) {
        if (slots.status(slot).usim == nullptr)
            continue;
        uint8_t& next = used.primary == 0 ? used.primary : used.secondary;
        if (next == 0)
            next = slot;
    }
    return used;
}

}  // namespace

wire::Bytes encode_card_status(const UimSlots& slots) {
    wire::Writer cards;
    for (uint8_t slot = 1; slot <= slots.count(); ++slot) {
        const CardStatus card = slots.status(slot);
        cards.u8(static_cast<uint8_t>(card.state)).u8(0).u8(0).u8(0).u8(card.error);
        cards.u8(card.usim != nullptr ? 1 : 0);
        if (card.usim != nullptr)
            encode_usim(cards, card.usim->pin());
    }
    const UsedSlots used = used_slots(slots);
    wire::Writer status;
    for (const uint8_t slot : {used.primary, used.secondary})
        status.u16(slot == 0 ? kNoApplication : index_of(slot)).u16(kNoApplication);
    status.u8(slots.count()).bytes(cards.data());
    return status.take();
}

void put_slot_status(wire::Writer& body, const UimSlots& slots) {
    wire::Writer status;
    wire::Writer information;
    wire::Writer eids;
    for (wire::Writer* list : {&status, &information, &eids})
        list->u8(slots.physical_count());
    for (uint8_t number = 1; number <= slots.physical_count(); ++number) {
        const UimSlots::Physical slot = slots.physical(number);
        const bool answers = slot.card != nullptr && slot.works;
        const auto iccid = answers ? slot.card->files().content({kIdMaster, kIdIccid}) : std::nullopt;
        const wire::View atr = answers ? Card::atr() : wire::View();
        const bool usim = answers && slot.card->has_usim();
        status.u32(slot.card == nullptr ? kAbsent : kPresent).u32(slot.logical != 0 ? kActive : 0);
        status.u8(slot.logical).bytes(uim_with_count(iccid.value_or(wire::View()), 1));
        information.u32(answers ? kProtocolUicc : 0).u8(usim ? 1 : 0);
        information.bytes(uim_with_count(atr, 1)).u8(slot.is_euicc ? 1 : 0);
        eids.bytes(uim_with_count(slot.is_euicc ? slots.euicc_id() : wire::View(), 1));
    }
    body.tlv(kUimSlotStatus, status.data());
    body.tlv(kUimSlotInformation, information.data());
    body.tlv(kUimSlotEid, eids.data());
}

std::optional<uint8_t> session_slot(const UimSlots& slots, uint8_t session_type) {
    const UsedSlots used = used_slots(slots);
    if (session_type == kPrimary)
        return used.primary != 0 ? used.primary : uint8_t{1};
    if (session_type == kSecondary)
        return used.secondary != 0 ? used.secondary : uint8_t{2};
    // Outside the phone's use, the card itself, and a channel to it: each of slot 1, then of slot 2.
    if (session_type >= kFirstOfSlots && session_type <= kLastOfSlots)
        return static_cast<uint8_t>(session_type % 2 + 1);
    return std::nullopt;
}

wire::Bytes encode_file_attributes(const Card& card, size_t place) {
    const CardFile& file = card.files().at(place);
    const AccessRule rule = access_rule(file.rule);
    wire::Writer writer;
    writer.u16(static_cast<uint16_t>(file.content.size())).u16(file.id).u8(type_of(file));
    writer.u16(file.record_size).u16(static_cast<uint16_t>(file.records()));
    put_security(writer, rule.read);
    put_security(writer, rule.update);
    writer.u8(kNever).u16(0);  // increase
    put_security(writer, Access::kAdministrator);
    put_security(writer, Access::kAdministrator);
    writer.bytes(uim_with_count(file_control_parameters(card.files(), place, card.pin()), 2));
    return writer.take();
}

wire::Bytes uim_with_count(wire::View bytes, size_t width) {
    wire::Writer value;
    value.number(bytes.size, width).bytes(bytes);
    return value.take();
}

}  // namespace handset

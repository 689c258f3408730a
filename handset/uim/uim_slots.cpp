#include "uim_slots.h"

#include <algorithm>

#include "card_store.h"
#include "core.h"
#include "hex_text.h"
#include "usim.h"

namespace handset {
namespace {

constexpr uint32_t kWiring = 84;  // common request, u64: 0 the eUICC, 1 a card; no value in the answer
constexpr uint64_t kWiredToEuicc = 0;
constexpr uint64_t kWiredToCard = 1;

constexpr uint8_t kErrorPowerDown = 1;

// The physical slots that slot 2 may be wired to. Those of the slots behind it are one further on.
constexpr uint8_t kPhysicalTray = 2;
constexpr uint8_t kPhysicalEuicc = 3;

std::string slot_name(uint8_t slot) {
    return "slot " + std::to_string(slot);
}

const char* application_name(wire::View aid) {
    if (aid.size == 0)
        return "no application";
    return aid.copy() == usim_aid().copy() ? "USIM" : "ISD-R";
}

std::unique_ptr<Card> make_card(Core& core, uint8_t slot, const CardProfile& profile) {
    const std::string number = std::to_string(slot);
    const std::string iccid = with_check_digit("89001010000000000" + number);
    return std::make_unique<Card>(usim_content(core, "slot-" + number, iccid, "vxk", profile));
}

}  // namespace

UimSlots::UimSlots(Core& core, CommonRequests& requests, Cards& cards, const EuiccProfile& euicc)
    : core_(core),
      cards_(cards),
      euicc_(core, euicc),
      slots_(std::max<uint32_t>(cards.slots(), Euicc::kSlot)) {
    for (const char* subject : {"uim", "physical slots", "channels"})
        core_.state().clear(subject);
    const auto trays = static_cast<uint8_t>(cards_.slots());
    for (uint8_t slot = 1; slot <= trays; ++slot)
        at(slot).card = make_card(core_, slot, cards_.profile().slots[slot - 1].card);
    for (uint8_t slot = 1; slot <= count(); ++slot)
        start_anew(slot, Clock::now());
    requests.add(CommonForm::kTlv, kWiring, [this](const CommonRequest& request) -> CommonAnswer {
        wire::Reader reader(request.value);
        const uint64_t wiring = reader.u64();
        if (!reader.ok() || (wiring != kWiredToEuicc && wiring != kWiredToCard))
            return {kModemMalformed, {}};
        return {wire_second_slot(wiring == kWiredToEuicc) ? kModemOk : kModemNoRoom, {}};
    });
    cards_.on_change([this](uint32_t number) {
        const auto slot = static_cast<uint8_t>(number);
        if (!is_euicc(slot))
            start_anew(slot, Clock::now());
        show();
        changed(is_euicc(slot) ? 0 : slot);
    });
    euicc_.on_change([this](bool refresh) {
        if (refresh)
            start_anew(Euicc::kSlot, Clock::now());
        show();
        if (euicc_.wired())
            changed(Euicc::kSlot, refresh);
    });
    core_.on_restart([this] {
        for (uint8_t slot = 1; slot <= count(); ++slot) {
            at(slot).powered = true;
            start_anew(slot, Clock::now() + core_.restart_time());
        }
    });
}

bool UimSlots::wire_second_slot(bool to_euicc) {
    if (euicc_.wired() == to_euicc)
        return true;
    if (!euicc_.wire(to_euicc))
        return false;
    start_anew(Euicc::kSlot, Clock::now());
    core_.log_event(to_euicc ? "slot 2 wired to the eUICC" : "slot 2 wired to a card");
    changed(Euicc::kSlot);
    return true;
}

// A physical slot can be wired to one logical slot, so the physical one decides. Stock clients name logical
// slot 1, whichever they mean.
QmiError UimSlots::switch_slot(uint8_t logical, uint32_t physical) {
    if (physical < 1 || physical > physical_count())
        return kQmiErrorInvalidArgument;
    const bool movable = physical == kPhysicalTray || physical == kPhysicalEuicc;
    const uint8_t wired = this->physical(static_cast<uint8_t>(physical)).logical;
    if (logical != 1 && logical != (movable ? Euicc::kSlot : wired))
        return kQmiErrorInvalidArgument;
    if (wired != 0)
        return kQmiErrorNoEffect;
    return wire_second_slot(physical == kPhysicalEuicc) ? kQmiErrorNone : kQmiErrorInternal;
}

UimSlots::Physical UimSlots::physical(uint8_t number) const {
    if (number == kPhysicalEuicc)
        return {euicc_.wired() ? Euicc::kSlot : uint8_t{0}, true, &euicc_.card(), true};
    const auto slot = static_cast<uint8_t>(number < kPhysicalEuicc ? number : number - 1);
    const bool present = cards_.present(slot);
    const bool works = present && !cards_.profile().slots[slot - 1].error;
    return {is_euicc(slot) ? uint8_t{0} : slot, false, present ? at(slot).card.get() : nullptr, works};
}

CardStatus UimSlots::status(uint8_t slot) const {
    if (!is_euicc(slot) && !cards_.present(slot))
        return {};
    if (!at(slot).powered)
        return {CardState::kError, kErrorPowerDown, nullptr};
    if (!is_euicc(slot)) {
        if (const auto error = cards_.profile().slots[slot - 1].error)
            return {CardState::kError, *error, nullptr};
    }
    const Card* card = body(slot);
    return {CardState::kPresent, 0, card->has_usim() ? card : nullptr};
}

const Card* UimSlots::card(uint8_t slot) const {
    return answers(slot) ? body(slot) : nullptr;
}

void UimSlots::power(uint8_t slot, bool up) {
    at(slot).powered = up;
    start_anew(slot, Clock::now());
    changed(slot);
}

void UimSlots::start_anew(uint8_t slot, Clock::time_point when) {
    at(slot).powered_at = when;
    if (Card* card = body(slot))
        card->reset();
    show();
}

void UimSlots::changed(uint8_t slot, bool refresh) {
    if (change_action_)
        change_action_(slot, refresh);
}

UimSlots::Eid UimSlots::eid(uint8_t slot) const {
    if (!is_euicc(slot))
        return {kQmiErrorNotSupported, {}};
    if (!answers(slot) || Clock::now() < at(slot).powered_at + euicc_.profile().eid_time)
        return {kQmiErrorInformationUnavailable, {}};
    return {kQmiErrorNone, euicc_.profile().eid};
}

UimSlots::Channel UimSlots::open_channel(uint8_t slot, wire::View aid) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, 0, 0};
    Card& card = *body(slot);
    const auto channel = card.open_channel();
    if (!channel)
        return {kQmiErrorInternal, kSwNoChannel, 0};
    if (aid.size > 0 && !card.select_application(*channel, aid)) {
        card.close_channel(*channel);
        return {kQmiErrorSimFileNotFound, kSwFileNotFound, 0};
    }
    show();
    return {kQmiErrorNone, kSwOk, *channel};
}

UimSlots::Channel UimSlots::close_channel(uint8_t slot, uint8_t number) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, 0, 0};
    if (!body(slot)->close_channel(number))
        return {kQmiErrorInvalidArgument, 0, 0};
    show();
    return {kQmiErrorNone, kSwOk, number};
}

UimSlots::Response UimSlots::transmit(uint8_t slot, uint8_t channel, wire::View apdu, size_t longest) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, {}};
    Card& card = *body(slot);
    if (!card.is_open(channel))
        return {kQmiErrorInvalidArgument, {}};
    const CardPin before = card.pin();
    Response response{kQmiErrorNone, card.transmit(channel, apdu, longest)};
    show();
    if (!card.pin().looks_like(before))
        core_.loop().after(EventLoop::Milliseconds(0), [this, slot] { changed(slot); });
    return response;
}

void UimSlots::show() {
    std::map<std::string, std::string> summary;
    std::map<std::string, std::string> channels;
    for (uint8_t slot = 1; slot <= count(); ++slot) {
        const Card* card = body(slot);
        summary[slot_name(slot)] = std::string(is_euicc(slot) ? "eUICC" : "card slot") + ", power " +
                                   (at(slot).powered ? "on" : "off") + ", logical channels open: " +
                                   std::to_string(card == nullptr ? 0 : card->open_channels());
        for (uint8_t number = 1; card != nullptr && number < Card::kChannels; ++number) {
            if (!card->is_open(number))
                continue;
            channels[slot_name(slot) + ", " + std::to_string(number)] =
                application_name(card->selected(number));
        }
    }
    std::map<std::string, std::string> bodies;
    for (uint8_t number = 1; number <= physical_count(); ++number) {
        const Physical slot = physical(number);
        std::string line = slot.is_euicc ? "eUICC" : slot.card == nullptr ? "empty" : "card";
        line += slot.logical == 0 ? ", inactive" : ", active as " + slot_name(slot.logical);
        if (slot.card != nullptr) {
            const auto iccid = slot.card->files().content({kIdMaster, kIdIccid});
            line += iccid ? ", ICCID " + iccid_text(*iccid) + ", IMSI " + imsi_of(slot.card->files()) : "";
            line += ", ATR ";
            append_hex(line, Card::atr());
        }
        bodies[std::to_string(number)] = line;
    }
    show("uim", summary);
    show("physical slots", bodies);
    show("channels", channels);
}

void UimSlots::show(const std::string& subject, std::map<std::string, std::string> lines) {
    std::map<std::string, std::string>& before = shown_[subject];
    // A line that is gone takes the others with it.
    if (std::any_of(before.begin(), before.end(),
                    [&lines](const auto& line) { return lines.count(line.first) == 0; })) {
        core_.state().clear(subject);
        before.clear();
    }
    for (const auto& line : lines) {
        if (before.count(line.first) == 0 || before[line.first] != line.second)
            core_.state().set(subject, line.first, line.second);
    }
    before = std::move(lines);
}

}  // namespace handset

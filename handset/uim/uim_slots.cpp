#include "uim_slots.h"

#include <algorithm>
#include <string>

#include "core.h"

namespace handset {
namespace {

constexpr uint32_t kWiring = 84;  // common request, u64: 0 the eUICC, 1 a card; no value in the answer
constexpr uint64_t kWiredToEuicc = 0;
constexpr uint64_t kWiredToCard = 1;

constexpr uint8_t kErrorPowerDown = 1;

constexpr uint8_t kUsim[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02, 0xFF,
                             0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};

constexpr uint8_t kClassIso = 0x00;
constexpr size_t kApduHeader = 4;

}  // namespace

UimSlots::UimSlots(Core& core, CommonRequests& requests, Cards& cards, const EuiccProfile& euicc)
    : core_(core),
      cards_(cards),
      euicc_(core, euicc),
      slots_(std::max<uint32_t>(cards.slots(), Euicc::kSlot)) {
    core_.state().clear("uim");
    for (uint8_t slot = 1; slot <= count(); ++slot)
        start_anew(slot, Clock::now());
    requests.add(CommonForm::kTlv, kWiring,
                 [this](const CommonRequest& request) { return wire_second_slot(request); });
    cards_.on_change([this](uint32_t slot) {
        if (!is_euicc(static_cast<uint8_t>(slot)))
            start_anew(static_cast<uint8_t>(slot), Clock::now());
    });
    core_.on_restart([this] {
        for (uint8_t slot = 1; slot <= count(); ++slot) {
            at(slot).powered = true;
            start_anew(slot, Clock::now() + core_.restart_time());
        }
    });
}

wire::View UimSlots::usim_aid() {
    return {kUsim, sizeof kUsim};
}

CommonAnswer UimSlots::wire_second_slot(const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint64_t wiring = reader.u64();
    if (!reader.ok() || (wiring != kWiredToEuicc && wiring != kWiredToCard))
        return {kModemMalformed, {}};
    if (euicc_.wired() != (wiring == kWiredToEuicc)) {
        euicc_.wire(wiring == kWiredToEuicc);
        start_anew(Euicc::kSlot, Clock::now());
        core_.log_event(euicc_.wired() ? "slot 2 wired to the eUICC" : "slot 2 wired to a card");
    }
    return {};
}

CardStatus UimSlots::status(uint8_t slot) const {
    if (!is_euicc(slot) && !cards_.present(slot))
        return {};
    if (!at(slot).powered)
        return {CardState::kError, kErrorPowerDown, false};
    if (is_euicc(slot))
        return {CardState::kPresent, 0, euicc_.has_profiles()};
    if (const auto error = cards_.profile().slots[slot - 1].error)
        return {CardState::kError, *error, false};
    return {CardState::kPresent, 0, true};
}

void UimSlots::power(uint8_t slot, bool up) {
    at(slot).powered = up;
    start_anew(slot, Clock::now());
}

void UimSlots::start_anew(uint8_t slot, Clock::time_point when) {
    at(slot).powered_at = when;
    at(slot).channels = {Application::kNone};
    show(slot);
}

UimSlots::Eid UimSlots::eid(uint8_t slot) const {
    if (!is_euicc(slot))
        return {kQmiErrorNotSupported, {}};
    if (!answers(slot) || Clock::now() < at(slot).powered_at + euicc_.profile().eid_time)
        return {kQmiErrorInformationUnavailable, {}};
    return {kQmiErrorNone, euicc_.profile().eid};
}

UimSlots::Application UimSlots::select(uint8_t slot, wire::View aid) const {
    if (aid.size == 0)
        return Application::kNone;
    if (is_euicc(slot) && Euicc::is_isd_r(aid))
        return Application::kIsdR;
    const bool usim = aid.size == sizeof kUsim && std::equal(kUsim, kUsim + sizeof kUsim, aid.data);
    return usim && status(slot).has_usim ? Application::kUsim : Application::kClosed;
}

UimSlots::Channel UimSlots::open_channel(uint8_t slot, wire::View aid) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, {}, 0};
    auto& channels = at(slot).channels;
    const auto free = std::find(channels.begin(), channels.end(), Application::kClosed);
    if (free == channels.end())
        return {kQmiErrorInternal, kSwNoChannel, 0};
    *free = select(slot, aid);
    if (*free == Application::kClosed)
        return {kQmiErrorSimFileNotFound, kSwFileNotFound, 0};
    show(slot);
    return {kQmiErrorNone, kSwOk, static_cast<uint8_t>(free - channels.begin())};
}

UimSlots::Channel UimSlots::close_channel(uint8_t slot, uint8_t number) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, {}, 0};
    if (number == 0 || number >= kChannels || at(slot).channels[number] == Application::kClosed)
        return {kQmiErrorInvalidArgument, {}, 0};
    at(slot).channels[number] = Application::kClosed;
    show(slot);
    return {kQmiErrorNone, kSwOk, number};
}

UimSlots::Response UimSlots::transmit(uint8_t slot, uint8_t channel, wire::View apdu) {
    if (!answers(slot))
        return {kQmiErrorDeviceNotReady, {}};
    if (channel >= kChannels || at(slot).channels[channel] == Application::kClosed)
        return {kQmiErrorInvalidArgument, {}};
    if (apdu.size < kApduHeader)
        return {kQmiErrorNone, status_words(kSwWrongLength)};
    const int command_class = apdu.data[0] & ~kChannelBits;
    if (command_class != kClassIso && command_class != kClassGlobalPlatform)
        return {kQmiErrorNone, status_words(kSwUnknownClass)};
    if (at(slot).channels[channel] != Application::kIsdR)
        return {kQmiErrorNone, status_words(kSwUnknownInstruction)};
    return {kQmiErrorNone, euicc_.transmit(apdu)};
}

void UimSlots::show(uint8_t slot) const {
    const auto& channels = at(slot).channels;
    const auto open = channels.size() -
                      static_cast<size_t>(std::count(channels.begin(), channels.end(), Application::kClosed));
    core_.state().set("uim", "slot " + std::to_string(slot),
                      std::string(is_euicc(slot) ? "eUICC" : "card slot") + ", power " +
                          (at(slot).powered ? "on" : "off") +
                          ", logical channels open: " + std::to_string(open - 1));
}

}  // namespace handset

// The card slots as the modem's UIM service deals with them: power, what answers in a slot, and the logical
// channels to it. Slot 2 is the embedded eUICC's or a physical card's, as common request 84 last said.
#pragma once

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "cards.h"
#include "euicc.h"
#include "qmi_names.h"
#include "status_words.h"

namespace handset {

enum class CardState : uint8_t { kAbsent = 0, kPresent = 1, kError = 2 };

/// What the card status says of one slot.
struct CardStatus {
    CardState state = CardState::kAbsent;
    uint8_t error = 0;      // why, in state kError
    bool has_usim = false;  // one application, a USIM that is ready
};

class UimSlots {
public:
    static constexpr uint8_t kChannels = 4;  // the basic channel, 0, included

    /// Wires slot 2 as common request 84 says from now on.
    UimSlots(Core& core, CommonRequests& requests, Cards& cards, const EuiccProfile& euicc);
    UimSlots(const UimSlots&) = delete;
    UimSlots& operator=(const UimSlots&) = delete;

    /// Slots are counted from 1. There are two at least; the others below take one that there is.
    uint8_t count() const { return static_cast<uint8_t>(slots_.size()); }
    bool has(uint8_t slot) const { return slot >= 1 && slot <= count(); }

    CardStatus status(uint8_t slot) const;

    /// A card that is powered up starts anew, one that has power already too.
    void power(uint8_t slot, bool up);

    struct Eid {
        QmiError error;
        wire::View bytes;
    };
    Eid eid(uint8_t slot) const;

    struct Channel {
        QmiError error;
        StatusWords words;  // 0: nothing was asked of the card
        uint8_t number;
    };
    /// Opens a channel, and selects the application on it; an empty AID selects none.
    Channel open_channel(uint8_t slot, wire::View aid);
    Channel close_channel(uint8_t slot, uint8_t number);

    struct Response {
        QmiError error;
        wire::Bytes apdu;
    };
    Response transmit(uint8_t slot, uint8_t channel, wire::View apdu);

    /// The AID of every USIM.
    static wire::View usim_aid();

private:
    using Clock = std::chrono::steady_clock;
    enum class Application { kClosed, kNone, kUsim, kIsdR };
    struct Slot {
        bool powered = true;
        Clock::time_point powered_at;
        std::array<Application, kChannels> channels{};  // the basic channel is always open
    };

    Slot& at(uint8_t slot) { return slots_[slot - 1]; }
    const Slot& at(uint8_t slot) const { return slots_[slot - 1]; }
    bool is_euicc(uint8_t slot) const { return slot == Euicc::kSlot && euicc_.wired(); }
    bool answers(uint8_t slot) const { return status(slot).state == CardState::kPresent; }

    CommonAnswer wire_second_slot(const CommonRequest& request);
    void start_anew(uint8_t slot, Clock::time_point when);
    Application select(uint8_t slot, wire::View aid) const;
    void show(uint8_t slot) const;

    Core& core_;
    Cards& cards_;
    Euicc euicc_;
    std::vector<Slot> slots_;
};

}  // namespace handset

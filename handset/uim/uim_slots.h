// The slots as the modem deals with them: power, what answers in a slot, and the logical channels to it. The
// modem works with logical slots; behind them are the physical ones, where slot 2 is wired to the card in its
// tray or to the embedded eUICC, as common request 84 or a switch of slots last said.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cards.h"
#include "euicc.h"
#include "qmi_error.h"

namespace handset {

enum class CardState : uint8_t { kAbsent = 0, kPresent = 1, kError = 2 };

/// What the card status says of one slot.
struct CardStatus {
    CardState state = CardState::kAbsent;
    uint8_t error = 0;           // why, in state kError
    const Card* usim = nullptr;  // in state kPresent, when there is a USIM in the card
};

/// Logical slots are counted from 1. There are two at least; what takes one takes one that there is.
class UimSlots {
public:
    /// Wires slot 2 as common request 84 says from now on.
    UimSlots(Core& core, CommonRequests& requests, Cards& cards, const EuiccProfile& euicc);
    UimSlots(const UimSlots&) = delete;
    UimSlots& operator=(const UimSlots&) = delete;

    uint8_t count() const { return static_cast<uint8_t>(slots_.size()); }
    bool has(uint8_t slot) const { return slot >= 1 && slot <= count(); }

    CardStatus status(uint8_t slot) const;

    /// The card that answers in a slot, or null.
    const Card* card(uint8_t slot) const;

    /// A card that is powered up starts anew, one that has power already too.
    void power(uint8_t slot, bool up);

    struct Eid {
        QmiError error;
        wire::View bytes;
    };
    Eid eid(uint8_t slot) const;

    struct Channel {
        QmiError error;
        uint16_t words;  // 0: nothing was asked of the card
        uint8_t number;
    };
    /// Opens a channel, and selects the application on it by its name, which may be cut at its end; an empty
    /// name selects none.
    Channel open_channel(uint8_t slot, wire::View aid);
    Channel close_channel(uint8_t slot, uint8_t number);

    struct Response {
        QmiError error;
        wire::Bytes apdu;
    };
    /// One command on an open channel. An answer longer than `longest` bytes is announced and fetched by
    /// further commands.
    Response transmit(uint8_t slot, uint8_t channel, wire::View apdu, size_t longest);

    /// A physical slot, counted from 1: the card of slot 1, the one in the tray of slot 2, the eUICC, and the
    /// cards of the other slots.
    struct Physical {
        uint8_t logical;  // 0: not wired
        bool is_euicc;
        const Card* card;  // null: empty
        bool works;
    };
    uint8_t physical_count() const { return static_cast<uint8_t>(count() + 1); }
    Physical physical(uint8_t number) const;
    wire::View euicc_id() const { return euicc_.profile().eid; }

    /// Wires a logical slot to a physical one. kQmiErrorNoEffect when it is, kQmiErrorInvalidArgument when it
    /// cannot be.
    QmiError switch_slot(uint8_t logical, uint32_t physical);

    /// Something happened in a slot: its card came, went, began anew, or has another state. The slot is
    /// 0 when only a card that is wired to none came or went. `refresh` is true when the card itself
    /// asked for it.
    void on_change(std::function<void(uint8_t slot, bool refresh)> action) {
        change_action_ = std::move(action);
    }

private:
    using Clock = std::chrono::steady_clock;
    struct Slot {
        std::unique_ptr<Card> card;  // null where the handset has no such slot
        bool powered = true;
        Clock::time_point powered_at;
    };

    Slot& at(uint8_t slot) { return slots_[slot - 1]; }
    const Slot& at(uint8_t slot) const { return slots_[slot - 1]; }
    bool is_euicc(uint8_t slot) const { return slot == Euicc::kSlot && euicc_.wired(); }
    bool answers(uint8_t slot) const { return status(slot).state == CardState::kPresent; }

    // What is wired to the slot, in it or not; null where the handset has no such slot.
    Card* body(uint8_t slot) { return is_euicc(slot) ? &euicc_.card() : at(slot).card.get(); }
    const Card* body(uint8_t slot) const { return is_euicc(slot) ? &euicc_.card() : at(slot).card.get(); }

    bool wire_second_slot(bool to_euicc);
    void start_anew(uint8_t slot, Clock::time_point when);
    void changed(uint8_t slot, bool refresh = false);
    void show();
    void show(const std::string& subject, std::map<std::string, std::string> lines);

    Core& core_;
    Cards& cards_;
    Euicc euicc_;
    std::vector<Slot> slots_;
    std::function<void(uint8_t, bool)> change_action_;
    std::map<std::string, std::map<std::string, std::string>> shown_;
};

}  // namespace handset

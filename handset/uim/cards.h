// The card slots of the handset: which of them hold a card, and the commands of the modem that ask for it,
// change it, and pull and push a card as often as a test wants.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "card_profile.h"
#include "common_request.h"
#include "event_loop.h"

namespace handset {

class Core;
class Section;

struct SlotProfile {
    /// Whether the card is in the slot when the handset is switched on.
    bool present = true;
    /// The error of a card that does not work, as the card status tells it.
    std::optional<uint8_t> error;
    CardProfile card;
};

struct CardsProfile {
    static constexpr size_t kSlotsMax = 5;
    std::vector<SlotProfile> slots = std::vector<SlotProfile>(2);
};

void read_profile(Section& section, CardsProfile& cards);

class Cards {
public:
    /// Answers the card commands of the handset from now on; it outlives them.
    Cards(Core& core, CommonRequests& requests, const CardsProfile& profile);

    /// Slots are counted from 1. A slot that the handset does not have is empty for ever.
    uint32_t slots() const { return static_cast<uint32_t>(present_.size()); }
    bool present(uint32_t slot) const;
    void set_present(uint32_t slot, bool present);
    const CardsProfile& profile() const { return profile_; }

    /// Called after a card was pulled or pushed, with its slot.
    void on_change(std::function<void(uint32_t slot)> action) {
        change_actions_.push_back(std::move(action));
    }

private:
    // A test that pulls and pushes the card of slot 1; it runs while there is a timer.
    struct Hotswap {
        std::chrono::seconds after_push{0};
        std::chrono::seconds after_pull{0};
        uint32_t count = 0;
        uint32_t done = 0;
        EventLoop::Token timer = 0;
    };

    void add_commands(CommonRequests& requests);
    std::function<void()> read_change(Section& section);
    CommonAnswer status_of(const CommonRequest& request) const;
    CommonAnswer set_status(const CommonRequest& request);
    CommonAnswer hotswap(const CommonRequest& request);

    void start_hotswap(const Hotswap& test);
    void stop_hotswap();
    void pull_for_test();
    void push_for_test();
    void show_hotswap();

    Core& core_;
    const CardsProfile& profile_;
    std::vector<bool> present_;  // by slot, from 0
    std::vector<std::function<void(uint32_t)>> change_actions_;
    Hotswap hotswap_;
};

}  // namespace handset

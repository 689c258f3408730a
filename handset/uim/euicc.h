// The embedded eUICC: whether slot 2 is wired to it, its EID, and the card that it is: the enabled profile's
// files, beside the ISD-R, which manages the profiles.
#pragma once

#include <functional>

#include "card.h"
#include "euicc_memory.h"
#include "isd_r.h"

namespace handset {

class Core;
class Section;

class Euicc {
public:
    /// The slot that it may be wired to.
    static constexpr uint8_t kSlot = 2;

    /// Takes up what an earlier handset in this folder has left.
    Euicc(Core& core, const EuiccProfile& profile);
    Euicc(const Euicc&) = delete;
    Euicc& operator=(const Euicc&) = delete;

    bool wired() const { return memory_.wired(); }

    /// False when that could not be kept, and then has not happened.
    bool wire(bool wired) { return memory_.wire(wired); }

    const EuiccProfile& profile() const { return profile_; }
    Card& card() { return card_; }
    const Card& card() const { return card_; }
    wire::View isd_r_aid() const { return isd_r_.aid(); }

    /// Called once the command that changed the enabled profile is answered; with `refresh`, the card is to
    /// begin anew.
    void on_change(std::function<void(bool refresh)> action) { change_action_ = std::move(action); }

private:
    CardContent content();
    void profile_changed(bool refresh);
    std::function<void()> read_change(Section& section);
    void show();

    Core& core_;
    EuiccProfile profile_;
    EuiccMemory memory_;
    IsdR isd_r_;
    Card card_;
    std::function<void(bool)> change_action_;
};

}  // namespace handset

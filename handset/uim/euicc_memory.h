// What an eUICC holds: profiles, notifications of what happened to them, and the address of the server
// that offers more. It lasts: a change is kept before anybody hears of it, and one that cannot be kept
// has not happened.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "card_profile.h"
#include "wire.h"

namespace handset {

class Core;
class Section;

enum class ProfileClass : uint8_t { kTest = 0, kProvisioning = 1, kOperational = 2 };

struct StoredProfile {
    std::string iccid;
    wire::Bytes aid;
    bool enabled = false;
    ProfileClass profile_class = ProfileClass::kOperational;
    std::string name;
    std::string provider = "vxk";
    std::string nickname;
    CardProfile card;
};

struct EuiccProfile {
    EuiccProfile();

    /// Whether slot 2 is wired to it as long as nobody has said otherwise.
    bool wired = true;
    /// As it is sent: an eUICC has 16 bytes, whose 32 digits give 1 modulo 97.
    wire::Bytes eid = {0x89, 0x04, 0x90, 0x32, 0x00, 0x10, 0x01, 0x00,
                       0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x23};
    /// How long after power-up the EID can be had.
    std::chrono::milliseconds eid_time{0};
    std::vector<StoredProfile> profiles;
    /// The default server for downloads; empty: none.
    std::string dp_address;
    /// The discovery server.
    std::string ds_address = "ds.example.com";
    /// Where notifications are to be delivered.
    std::string notification_address = "smdp.example.com";
};

void read_profile(Section& section, EuiccProfile& euicc);

/// What is notified, as a bit of its own.
enum NotificationEvent : uint8_t { kNotifyEnable = 0x40, kNotifyDisable = 0x20, kNotifyDelete = 0x10 };

struct Notification {
    uint32_t sequence = 0;
    uint8_t event = 0;
    std::string iccid;
    std::string address;
};

/// Results as the profile manager tells them; 1 to 3 have a meaning of each function's own.
enum Es10Result : uint8_t {
    kEs10Ok = 0,
    kEs10NotFound = 1,
    kEs10NothingToDelete = 1,
    kEs10WrongState = 2,
    kEs10Undefined = 127,
};

/// Which profiles and what else a memory reset clears.
enum ResetOption : uint8_t { kResetOperational = 0x80, kResetTest = 0x40, kResetAddress = 0x20 };

class EuiccMemory {
public:
    /// Takes up what an earlier handset in the folder has kept, else what the profile says.
    EuiccMemory(Core& core, const EuiccProfile& profile);

    bool wired() const { return state_.wired; }
    bool wire(bool wired);

    const std::vector<StoredProfile>& profiles() const { return state_.profiles; }
    const std::vector<Notification>& notifications() const { return state_.notifications; }
    const std::string& dp_address() const { return state_.dp_address; }
    const StoredProfile* enabled() const;

    /// The index of a profile.
    using Chosen = std::optional<size_t>;
    Es10Result enable(Chosen chosen);
    Es10Result disable(Chosen chosen);
    Es10Result remove(Chosen chosen);
    Es10Result set_nickname(Chosen chosen, const std::string& nickname);
    Es10Result set_dp_address(const std::string& address);
    Es10Result reset(uint8_t options);
    Es10Result remove_notification(uint32_t sequence);

private:
    struct State {
        bool wired = true;
        std::vector<StoredProfile> profiles;
        std::vector<Notification> notifications;
        uint32_t last_sequence = 0;
        std::string dp_address;
    };

    static wire::Bytes encode(const State& state);
    static std::optional<State> decode(wire::View bytes);
    void notify(State& state, const StoredProfile& profile, NotificationEvent event) const;
    Es10Result commit(State next);
    void show() const;

    Core& core_;
    const EuiccProfile& profile_;
    State state_;
};

}  // namespace handset

// The embedded eUICC: whether slot 2 is wired to it, its EID, and the list of profiles in it, which its
// profile manager, the ISD-R, deletes on demand. Wiring and list outlive the modem and the handset.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "wire.h"

namespace handset {

class Core;
class Section;

struct EuiccProfile {
    /// Whether slot 2 is wired to it as long as nobody has said otherwise.
    bool wired = true;
    /// As it is sent: an eUICC has 16 bytes, whose 32 digits give 1 modulo 97.
    wire::Bytes eid = {0x89, 0x04, 0x90, 0x32, 0x00, 0x10, 0x01, 0x00,
                       0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x23};
    /// How long after power-up the EID can be had.
    std::chrono::milliseconds eid_time{0};
    /// ICCIDs.
    std::vector<std::string> profiles = {"8900101234567890123"};
};

void read_profile(Section& section, EuiccProfile& euicc);

class Euicc {
public:
    /// The slot that it may be wired to.
    static constexpr uint8_t kSlot = 2;

    /// Takes up what an earlier handset in this folder has left.
    Euicc(Core& core, const EuiccProfile& profile);

    bool wired() const { return wired_; }
    void wire(bool wired);

    const EuiccProfile& profile() const { return profile_; }
    bool has_profiles() const { return !profiles_.empty(); }

    static bool is_isd_r(wire::View aid);

    /// The ISD-R's response to an APDU of at least four bytes, status words included.
    wire::Bytes transmit(wire::View apdu);

private:
    wire::Bytes reset_memory(wire::View command);
    void keep() const;

    Core& core_;
    const EuiccProfile& profile_;
    bool wired_;
    std::vector<std::string> profiles_;
};

}  // namespace handset

// The modem's AT channel: a terminal, "at" in the handset's folder, that speaks V.250, and the device's name
// for it.
#pragma once

#include <string>
#include <vector>

#include "at_commands.h"
#include "at_device.h"
#include "at_line.h"
#include "at_network.h"
#include "at_profile.h"
#include "terminal.h"
#include "wire_log.h"

namespace handset {

class AtChannel {
public:
    AtChannel(Core& core, const AtProfile& profile, SimAccess& sim);
    AtChannel(const AtChannel&) = delete;
    AtChannel& operator=(const AtChannel&) = delete;

    /// One line for a person who wants to send AT commands by the device's name; empty when they arrive here.
    std::string notice() const;

private:
    void received(wire::View bytes);
    void finish(const AtLine& line);
    void carry_out(const std::string& text);
    void answer(const AtAnswer& answer);
    void answer(const AtOutcome& outcome);
    AtOutcome run(const std::string& text);
    void send_unsolicited(const AtUnsolicited& unsolicited, uint32_t left, std::chrono::milliseconds delay);
    void report(const std::string& line);
    void send_lines(const std::vector<std::string>& lines);
    void send_result(const std::string& result);
    void send(const std::string& text);
    void log(Direction direction, const std::string& line);

    Core& core_;
    std::vector<AtAnswer> answers_;
    Terminal terminal_;
    AtDevice device_;
    AtSettings settings_;
    AtCommands commands_;
    AtNetwork network_;
    AtLineReader reader_;
    std::string last_;   // what A/ repeats
    bool busy_ = false;  // an answer is on its way; what comes meanwhile waits
    std::string waiting_;
    std::vector<std::string> reports_;  // that the command at hand has caused
    uint64_t lines_ = 0;
};

}  // namespace handset

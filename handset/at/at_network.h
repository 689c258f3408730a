// The network as the AT terminal shows it: whether the modem is on, where it is registered, how well it
// hears, and the contexts for data. What it hears is what the default record of the 4G carrier says.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "at_commands.h"

namespace handset {

class AtNetwork {
public:
    /// Puts the network's commands in. `restart` restarts the modem, `report` sends a line that
    /// nobody asked for.
    AtNetwork(AtCommands& commands, SimAccess& sim, std::function<void()> restart,
              std::function<void(const std::string& line)> report);
    AtNetwork(const AtNetwork&) = delete;
    AtNetwork& operator=(const AtNetwork&) = delete;

    /// The modem was switched on.
    void start_anew();

private:
    struct Registration {
        const char* name;
        bool has_cell;  // the network has a cell of this kind for the handset
        uint32_t reports = 0;
        uint32_t shown = 0;  // what was last reported
    };
    struct Context {
        std::string type;
        std::string name;
    };

    AtOutcome functionality(const AtCommand& command);
    AtOutcome operator_selection(const AtCommand& command);
    AtOutcome select_operator(const AtValues& values);
    AtOutcome registration(Registration& registration, const AtCommand& command);
    AtOutcome contexts(const AtCommand& command);
    AtOutcome define_context(const AtValues& values);
    bool registered() const;
    uint32_t status(const Registration& registration) const;
    void report_changes();

    SimAccess& sim_;
    const std::function<void()> restart_;
    const std::function<void(const std::string&)> report_;
    uint32_t functionality_ = 1;
    bool deregistered_ = false;
    uint32_t operator_format_ = 0;
    Registration registrations_[3] = {{"+CREG", true}, {"+CEREG", true}, {"+C5GREG", false}};
    std::map<uint32_t, Context> contexts_{{1, {"IPV4V6", "internet"}}};
};

}  // namespace handset

#include "at_network.h"

#include <algorithm>
#include <utility>

#include "at_sim.h"

namespace handset {
namespace {

constexpr uint32_t kMinimum = 0;
constexpr uint32_t kFull = 1;
constexpr uint32_t kFlightMode = 4;

// The test network of the standards.
constexpr const char* kOperator[] = {"vxk test network", "vxk", "00101"};
constexpr uint32_t kNumericFormat = 2;
constexpr char kAccessEutran[] = "7";

constexpr uint32_t kNotRegistered = 0;
constexpr uint32_t kHome = 1;

// Of the cell, where it is asked for: tracking area, cell, access technology.
constexpr char kCell[] = ",\"0001\",\"01A2D001\",7";

constexpr uint32_t kContextsMax = 8;
constexpr const char* kContextTypes[] = {"IP", "IPV6", "IPV4V6"};
constexpr size_t kContextNameMax = 100;

}  // namespace

AtNetwork::AtNetwork(AtCommands& commands, SimAccess& sim, std::function<void()> restart,
                     std::function<void(const std::string&)> report)
    : sim_(sim), restart_(std::move(restart)), report_(std::move(report)) {
    commands.add("+CFUN", [this](const AtCommand& command) { return functionality(command); });
    commands.add("+COPS", [this](const AtCommand& command) { return operator_selection(command); });
    commands.add("+CGDCONT", [this](const AtCommand& command) { return contexts(command); });
    for (Registration& entry : registrations_) {
        commands.add(entry.name,
                     [this, &entry](const AtCommand& command) { return registration(entry, command); });
    }
    commands.add("+CSQ", [this](const AtCommand& command) -> AtOutcome {
        if (command.form == AtCommand::kTest)
            return "+CSQ: (0-31,99),(0-7,99)";
        if (command.form != AtCommand::kAction)
            return AtOutcome::final("ERROR");
        return functionality_ == kFull ? "+CSQ: 28,99" : "+CSQ: 99,99";
    });
    commands.add("+CESQ", [this](const AtCommand& command) -> AtOutcome {
        if (command.form == AtCommand::kTest)
            return "+CESQ: (0-63,99),(0-7,99),(0-96,255),(0-49,255),(0-34,255),(0-97,255)";
        if (command.form != AtCommand::kAction)
            return AtOutcome::final("ERROR");
        return functionality_ == kFull ? "+CESQ: 99,99,255,255,21,55" : "+CESQ: 99,99,255,255,255,255";
    });
}

void AtNetwork::start_anew() {
    functionality_ = kFull;
    deregistered_ = false;
    operator_format_ = 0;
    for (Registration& entry : registrations_)
        entry.reports = 0;
}

bool AtNetwork::registered() const {
    return functionality_ == kFull && !deregistered_ && !sim_obstacle(sim_);
}

uint32_t AtNetwork::status(const Registration& registration) const {
    return registration.has_cell && registered() ? kHome : kNotRegistered;
}

AtOutcome AtNetwork::functionality(const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return "+CFUN: (0,1,4),(0,1)";
    if (command.form == AtCommand::kRead)
        return "+CFUN: " + std::to_string(functionality_);
    const AtValues values(command.value);
    const auto wanted = values.number(0, kMinimum, kFlightMode, kFull);
    const auto reset = values.number(1, 0, 1, 0);
    if (!wanted || !reset || (*wanted != kMinimum && *wanted != kFull && *wanted != kFlightMode))
        return AtError::kWrongParameters;
    functionality_ = *wanted;
    if (*reset == 1)
        restart_();
    report_changes();
    return {};
}

AtOutcome AtNetwork::operator_selection(const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return std::string("+COPS: (2,\"") + kOperator[0] + "\",\"" + kOperator[1] + "\",\"" + kOperator[2] +
               "\"," + kAccessEutran + "),,(0-4),(0-2)";
    if (command.form == AtCommand::kSet)
        return select_operator(AtValues(command.value));
    if (command.form == AtCommand::kAction)
        return AtOutcome::final("ERROR");
    const std::string mode = deregistered_ ? "+COPS: 2" : "+COPS: 0";
    if (!registered())
        return mode;
    return mode + "," + std::to_string(operator_format_) + ",\"" + kOperator[operator_format_] + "\"," +
           kAccessEutran;
}

AtOutcome AtNetwork::select_operator(const AtValues& values) {
    const auto mode = values.number(0, 0, 4);
    const auto format = values.number(1, 0, kNumericFormat, operator_format_);
    if (!mode || !format)
        return AtError::kWrongParameters;
    const bool names_one = *mode == 1 || *mode == 4;
    if (names_one && values.text(2) != kOperator[*format])
        return AtError::kNoNetwork;
    operator_format_ = *format;
    if (*mode != 3)
        deregistered_ = *mode == 2;
    report_changes();
    return {};
}

AtOutcome AtNetwork::registration(Registration& registration, const AtCommand& command) {
    const std::string head = std::string(registration.name) + ": ";
    if (command.form == AtCommand::kTest)
        return head + "(0-2)";
    const uint32_t now = status(registration);
    if (command.form == AtCommand::kRead)
        return head + std::to_string(registration.reports) + "," + std::to_string(now) +
               (registration.reports == 2 && now == kHome ? kCell : "");
    const auto wanted = AtValues(command.value).number(0, 0, 2, 0);
    if (!wanted)
        return AtError::kWrongParameters;
    registration.reports = *wanted;
    registration.shown = now;
    return {};
}

// A report follows the result of the command that caused the change.
void AtNetwork::report_changes() {
    for (Registration& entry : registrations_) {
        const uint32_t now = status(entry);
        if (std::exchange(entry.shown, now) != now && entry.reports != 0)
            report_(std::string(entry.name) + ": " + std::to_string(now) +
                    (entry.reports == 2 && now == kHome ? kCell : ""));
    }
}

AtOutcome AtNetwork::contexts(const AtCommand& command) {
    AtOutcome outcome;
    if (command.form == AtCommand::kTest) {
        for (const char* type : kContextTypes)
            outcome.lines.push_back("+CGDCONT: (1-" + std::to_string(kContextsMax) + "),\"" + type +
                                    "\",,,(0),(0)");
    } else if (command.form == AtCommand::kRead) {
        for (const auto& entry : contexts_)
            outcome.lines.push_back("+CGDCONT: " + std::to_string(entry.first) + ",\"" + entry.second.type +
                                    "\",\"" + entry.second.name + "\",\"\",0,0");
    } else {
        return define_context(AtValues(command.value));
    }
    return outcome;
}

AtOutcome AtNetwork::define_context(const AtValues& values) {
    const auto id = values.number(0, 1, kContextsMax, 1);
    Context context{values.has(1) ? values.text(1) : "IP", values.text(2)};
    const bool known = std::find(std::begin(kContextTypes), std::end(kContextTypes), context.type) !=
                       std::end(kContextTypes);
    if (!id || !known || context.name.size() > kContextNameMax)
        return AtError::kWrongParameters;
    if (values.count() == 1)
        contexts_.erase(*id);
    else
        contexts_[*id] = std::move(context);
    return {};
}

}  // namespace handset

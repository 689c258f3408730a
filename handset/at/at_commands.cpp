#include "at_commands.h"

#include <utility>

namespace handset {
namespace {

constexpr struct {
    AtError error;
    const char* text;
} kErrors[] = {
    {AtError::kNotAllowed, "operation not allowed"},
    {AtError::kNotSupported, "operation not supported"},
    {AtError::kNoSim, "SIM not inserted"},
    {AtError::kSimPinWanted, "SIM PIN required"},
    {AtError::kSimPukWanted, "SIM PUK required"},
    {AtError::kSimFailure, "SIM failure"},
    {AtError::kWrongPassword, "incorrect password"},
    {AtError::kInvalidIndex, "invalid index"},
    {AtError::kNotFound, "not found"},
    {AtError::kNoNetwork, "no network service"},
    {AtError::kWrongParameters, "Incorrect parameters"},
    {AtError::kUnknown, "unknown"},
};

constexpr struct {
    const char* text;
    const char* digit;
} kResults[] = {
    {"OK", "0"},    {"CONNECT", "1"},     {"RING", "2"}, {"NO CARRIER", "3"},
    {"ERROR", "4"}, {"NO DIALTONE", "6"}, {"BUSY", "7"}, {"NO ANSWER", "8"},
};

std::string error_text(AtError error, const AtSettings& settings) {
    if (settings.errors == 1)
        return "+CME ERROR: " + std::to_string(static_cast<unsigned>(error));
    for (const auto& entry : kErrors) {
        if (settings.errors == 2 && entry.error == error)
            return std::string("+CME ERROR: ") + entry.text;
    }
    return "ERROR";
}

}  // namespace

AtOutcome AtOutcome::final(const char* result) {
    AtOutcome outcome;
    outcome.result = result;
    return outcome;
}

void AtCommands::add_text(const std::string& name, std::function<AtOutcome()> tell) {
    add(name, [tell = std::move(tell)](const AtCommand& command) {
        if (command.form == AtCommand::kTest)
            return AtOutcome();
        return command.form == AtCommand::kSet || !command.value.empty() ? AtOutcome::final("ERROR") : tell();
    });
}

AtOutcome AtCommands::run(const AtCommand& command) const {
    const auto found = commands_.find(command.name);
    return found == commands_.end() ? AtOutcome::final("ERROR") : found->second(command);
}

std::vector<std::string> AtCommands::names() const {
    std::vector<std::string> names;
    for (const auto& entry : commands_)
        names.push_back(entry.first);
    return names;
}

std::string result_text(const AtOutcome& outcome, const AtSettings& settings) {
    return result_text(outcome.error ? error_text(*outcome.error, settings) : outcome.result, settings);
}

std::string result_text(const std::string& result, const AtSettings& settings) {
    for (const auto& entry : kResults) {
        if (!settings.verbose && result == entry.text)
            return entry.digit;
    }
    return result;
}

}  // namespace handset

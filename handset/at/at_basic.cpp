#include <cstdio>

#include "at_commands.h"

namespace handset {
namespace {

// Commands that choose among a few ways of a line modem: taken, without effect.
constexpr struct {
    const char* name;
    uint32_t highest;
} kIdle[] = {
    {"B", 1},  {"L", 3},  {"M", 3},  {"N", 1},  {"P", 0},  {"T", 0},  {"X", 4}, {"&C", 1},
    {"&D", 2}, {"&K", 6}, {"&Q", 6}, {"&R", 1}, {"&S", 1}, {"&W", 1}, {"H", 0},
};

constexpr struct {
    const char* name;
    bool AtSettings::*setting;
} kSwitches[] = {{"E", &AtSettings::echo}, {"Q", &AtSettings::quiet}, {"V", &AtSettings::verbose}};

constexpr uint8_t kHighestCharacter = 127;

std::optional<uint32_t> argument(const AtCommand& command, uint32_t highest) {
    return AtValues(command.value).number(0, 0, highest, 0);
}

AtOutcome use_register(AtSettings& settings, size_t number, const AtCommand& command) {
    uint8_t& content = settings.registers[number];
    if (command.form == AtCommand::kRead) {
        char text[8];
        snprintf(text, sizeof text, "%03u", static_cast<unsigned>(content));
        return text;
    }
    const bool character = number >= 3 && number <= 5;
    const auto value = AtValues(command.value).number(0, 0, character ? kHighestCharacter : UINT8_MAX, 0);
    if (!value)
        return AtOutcome::final("ERROR");
    content = static_cast<uint8_t>(*value);
    return {};
}

AtOutcome errors(AtSettings& settings, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return "+CMEE: (0-2)";
    if (command.form == AtCommand::kRead)
        return "+CMEE: " + std::to_string(settings.errors);
    const auto value = argument(command, 2);
    if (!value)
        return AtError::kWrongParameters;
    settings.errors = static_cast<uint8_t>(*value);
    return {};
}

AtOutcome all_names(const AtCommands& commands, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    AtOutcome outcome;
    for (const std::string& name : commands.names()) {
        if (name[0] == '+')
            outcome.lines.push_back(name);
    }
    return outcome;
}

}  // namespace

void add_basic_commands(AtCommands& commands, AtSettings& settings) {
    for (const auto& entry : kIdle) {
        commands.add(entry.name, [highest = entry.highest](const AtCommand& command) {
            return argument(command, highest) ? AtOutcome() : AtOutcome::final("ERROR");
        });
    }
    for (const auto& entry : kSwitches) {
        commands.add(entry.name, [&settings, setting = entry.setting](const AtCommand& command) {
            const auto value = argument(command, 1);
            if (!value)
                return AtOutcome::final("ERROR");
            settings.*setting = *value == 1;
            return AtOutcome();
        });
    }
    for (const char* name : {"Z", "&F"}) {
        commands.add(name, [&settings](const AtCommand& command) {
            if (!argument(command, 1))
                return AtOutcome::final("ERROR");
            settings = AtSettings();
            return AtOutcome();
        });
    }
    for (const char* name : {"A", "D", "O"})
        commands.add(name, [](const AtCommand&) { return AtOutcome::final("NO CARRIER"); });
    for (size_t number = 0; number < AtSettings::kRegisters; ++number) {
        commands.add("S" + std::to_string(number), [&settings, number](const AtCommand& command) {
            return use_register(settings, number, command);
        });
    }
    commands.add("+CMEE", [&settings](const AtCommand& command) { return errors(settings, command); });
    commands.add("+CLAC", [&commands](const AtCommand& command) { return all_names(commands, command); });
}

}  // namespace handset

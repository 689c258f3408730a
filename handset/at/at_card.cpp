#include "at_commands.h"
#include "at_sim.h"
#include "hex_text.h"

namespace handset {
namespace {

// The longest command and answer of a card, and the longest name of an application.
constexpr size_t kApduMax = 1024;
constexpr size_t kApduMin = 4;
constexpr size_t kAidMax = 16;

constexpr uint16_t kWordsNotFound = 0x6A82;

std::string plain_hex(wire::View bytes) {
    static const char* const kDigits = "0123456789ABCDEF";
    std::string text;
    for (size_t i = 0; i < bytes.size; ++i) {
        text += kDigits[bytes.data[i] >> 4];
        text += kDigits[bytes.data[i] & 0xF];
    }
    return text;
}

AtOutcome digits(SimAccess& sim, const std::string& head, std::optional<std::string> (*read)(SimAccess&)) {
    if (const auto obstacle = sim_obstacle(sim))
        return *obstacle;
    const auto text = read(sim);
    return text && !text->empty() ? AtOutcome(head + *text) : AtError::kSimFailure;
}

AtOutcome pin(SimAccess& sim, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    if (command.form == AtCommand::kAction)
        return AtOutcome::final("ERROR");
    if (command.form == AtCommand::kSet) {
        const AtValues values(command.value);
        const auto error = enter_pin(sim, values.text(0), values.text(1));
        return error ? AtOutcome(*error) : AtOutcome();
    }
    const auto obstacle = sim_obstacle(sim);
    if (!obstacle)
        return "+CPIN: READY";
    if (*obstacle == AtError::kSimPinWanted)
        return "+CPIN: SIM PIN";
    if (*obstacle == AtError::kSimPukWanted)
        return "+CPIN: SIM PUK";
    return *obstacle;
}

// A command to the card as "length,command": digits in hexadecimal and their number. Nothing when it is none.
std::optional<wire::Bytes> apdu_of(const AtValues& values, size_t place) {
    const auto length = values.number(place, 2 * kApduMin, 2 * kApduMax);
    const std::string text = values.text(place + 1);
    if (!length || *length != text.size() || values.count() != place + 2)
        return std::nullopt;
    return parse_hex(text);
}

AtOutcome answer_of(SimAccess& sim, const char* head, uint8_t channel, wire::View apdu, AtError failure) {
    const auto answer = sim.transmit(kAtSlot, channel, apdu);
    if (!answer)
        return failure;
    const std::string text = plain_hex(*answer);
    return head + std::to_string(text.size()) + ",\"" + text + "\"";
}

AtOutcome generic_access(SimAccess& sim, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    const auto apdu = command.form == AtCommand::kSet ? apdu_of(AtValues(command.value), 0) : std::nullopt;
    return apdu ? answer_of(sim, "+CSIM: ", 0, *apdu, AtError::kNoSim) : AtError::kWrongParameters;
}

AtOutcome open_channel(SimAccess& sim, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    const AtValues values(command.value);
    const auto aid = parse_hex(values.text(0));
    if (command.form != AtCommand::kSet || values.count() != 1 || !aid || aid->empty() ||
        aid->size() > kAidMax)
        return AtError::kWrongParameters;
    const auto channel = sim.open_channel(kAtSlot, *aid);
    if (channel.number != 0)
        return "+CCHO: " + std::to_string(channel.number);
    if (channel.words == 0)
        return AtError::kNoSim;
    return channel.words == kWordsNotFound ? AtError::kNotFound : AtError::kUnknown;
}

// A session is the number of its channel.
std::optional<uint8_t> session_of(const AtValues& values) {
    const auto session = values.number(0, 1, UINT8_MAX);
    return session ? std::optional(static_cast<uint8_t>(*session)) : std::nullopt;
}

AtOutcome close_channel(SimAccess& sim, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    const AtValues values(command.value);
    const auto session = session_of(values);
    if (command.form != AtCommand::kSet || values.count() != 1 || !session)
        return AtError::kWrongParameters;
    return sim.close_channel(kAtSlot, *session) ? AtOutcome() : AtError::kInvalidIndex;
}

AtOutcome channel_access(SimAccess& sim, const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return {};
    const AtValues values(command.value);
    const auto session = session_of(values);
    const auto apdu = apdu_of(values, 1);
    if (command.form != AtCommand::kSet || !session || !apdu)
        return AtError::kWrongParameters;
    return answer_of(sim, "+CGLA: ", *session, *apdu, AtError::kInvalidIndex);
}

}  // namespace

void add_card_commands(AtCommands& commands, SimAccess& sim) {
    commands.add_text("+CIMI", [&sim] { return digits(sim, "", sim_imsi); });
    commands.add_text("+CCID", [&sim] { return digits(sim, "+CCID: ", sim_iccid); });
    constexpr struct {
        const char* name;
        AtOutcome (*run)(SimAccess&, const AtCommand&);
    } kCommands[] = {
        {"+CPIN", pin},           {"+CSIM", generic_access}, {"+CCHO", open_channel},
        {"+CCHC", close_channel}, {"+CGLA", channel_access},
    };
    for (const auto& entry : kCommands) {
        commands.add(entry.name,
                     [&sim, run = entry.run](const AtCommand& command) { return run(sim, command); });
    }
}

}  // namespace handset

// The commands that the AT terminal carries out, by name, and the settings that they share. The files
// at_basic, at_identity, at_network and at_card put them in.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "at_line.h"

namespace handset {

class SimAccess;

/// What a terminal program sets; a power-up, ATZ and AT&F bring the defaults back.
struct AtSettings {
    bool echo = true;
    bool verbose = true;
    bool quiet = false;
    uint8_t errors = 0;  // +CMEE: 0 plain, 1 by number, 2 in words

    // S-registers 0 to 12.
    static constexpr size_t kRegisters = 13;
    std::array<uint8_t, kRegisters> registers{0, 0, 43, '\r', '\n', '\b', 2, 50, 2, 6, 14, 95, 50};

    AtCharacters characters() const { return {registers[3], registers[4], registers[5]}; }
};

/// Errors of the mobile equipment, as +CMEE tells them.
enum class AtError : uint16_t {
    kNotAllowed = 3,
    kNotSupported = 4,
    kNoSim = 10,
    kSimPinWanted = 11,
    kSimPukWanted = 12,
    kSimFailure = 13,
    kWrongPassword = 16,
    kInvalidIndex = 21,
    kNotFound = 22,
    kNoNetwork = 30,
    kWrongParameters = 50,
    kUnknown = 100
};

struct AtOutcome {
    std::vector<std::string> lines;
    std::string result = "OK";
    std::optional<AtError> error;  // instead of the result

    AtOutcome() = default;
    AtOutcome(std::string line) : lines{std::move(line)} {}
    AtOutcome(const char* line) : AtOutcome(std::string(line)) {}
    AtOutcome(AtError why) : error(why) {}

    /// Another final result without lines.
    static AtOutcome final(const char* result);
    bool ok() const { return !error && result == "OK"; }
};

class AtCommands {
public:
    using Run = std::function<AtOutcome(const AtCommand&)>;

    void add(const std::string& name, Run run) { commands_[name] = std::move(run); }

    /// A command that only tells something: to read it and to do it are one, and a test of it succeeds.
    void add_text(const std::string& name, std::function<AtOutcome()> tell);

    /// The result is ERROR for a command that there is not.
    AtOutcome run(const AtCommand& command) const;

    std::vector<std::string> names() const;

private:
    std::map<std::string, Run> commands_;
};

/// The result as it is sent and logged: with errors as the settings want them told, and as a digit where they
/// want digits.
std::string result_text(const AtOutcome& outcome, const AtSettings& settings);
std::string result_text(const std::string& result, const AtSettings& settings);

/// V.250's own: settings, registers, and calls, which find nobody.
void add_basic_commands(AtCommands& commands, AtSettings& settings);

/// What device this is.
void add_identity_commands(AtCommands& commands);

/// The card of slot 1: who it belongs to, its PIN, and commands to it.
void add_card_commands(AtCommands& commands, SimAccess& sim);

}  // namespace handset

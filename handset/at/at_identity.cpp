#include "at_commands.h"
#include "identity.h"

namespace handset {
namespace {

AtOutcome serial_number(const AtCommand& command) {
    if (command.form == AtCommand::kTest)
        return "+CGSN: (0-3)";
    if (command.form == AtCommand::kRead)
        return AtOutcome::final("ERROR");
    if (command.form == AtCommand::kAction)
        return std::string(kImei);
    const std::string imei(kImei);
    const std::string version(kSoftwareVersion);
    switch (AtValues(command.value).number(0, 0, 3).value_or(4)) {
        case 0:
            return std::string(kSerialNumber);
        case 1:
            return "+CGSN: \"" + imei + "\"";
        case 2:
            return "+CGSN: \"" + imei.substr(0, imei.size() - 1) + version + "\"";
        case 3:
            return "+CGSN: \"" + version + "\"";
        default:
            return AtError::kWrongParameters;
    }
}

AtOutcome everything(const AtCommand& command) {
    if (!AtValues(command.value).number(0, 0, 0, 0))
        return AtOutcome::final("ERROR");
    AtOutcome outcome;
    outcome.lines = {"Manufacturer: " + std::string(kMaker), "Model: " + std::string(kModelName),
                     "Revision: " + std::string(kBuildName), "IMEI: " + std::string(kImei)};
    return outcome;
}

}  // namespace

void add_identity_commands(AtCommands& commands) {
    constexpr struct {
        const char* name;
        std::string_view text;
    } kTexts[] = {
        {"+CGMI", kMaker},    {"+GMI", kMaker},     {"+CGMM", kModelName},
        {"+GMM", kModelName}, {"+GMR", kBuildName}, {"+CGMR", kBuildName},
    };
    for (const auto& entry : kTexts)
        commands.add_text(entry.name, [text = entry.text] { return AtOutcome(std::string(text)); });
    commands.add_text("+GCAP", [] { return AtOutcome("+GCAP: +CGSM"); });
    commands.add("+CGSN", serial_number);
    commands.add("+GSN", serial_number);
    commands.add("I", everything);
}

}  // namespace handset

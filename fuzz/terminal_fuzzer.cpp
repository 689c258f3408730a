// What programs write to the handset's terminals: `u8` 0 and bytes for the AT channel, else bytes for the
// diagnostic port. Whatever arrives, the readers keep a bounded part of it, the log tells it in printable
// lines, and an answer is one that a reader takes.
#include <algorithm>
#include <string>

#include "at_network.h"
#include "diag_frame.h"
#include "diag_peripheral.h"
#include "finding.h"
#include "input.h"
#include "sim_access.h"
#include "wire_log.h"

namespace {

// A card that says whatever it is asked.
class Parrot : public handset::SimAccess {
public:
    Channel open_channel(uint8_t, wire::View aid) override { return {aid.data[aid.size - 1], 0x6A82}; }
    bool close_channel(uint8_t, uint8_t channel) override { return channel < 4; }
    std::optional<wire::Bytes> transmit(uint8_t, uint8_t channel, wire::View apdu) override {
        return channel < 4 ? std::optional(apdu.copy()) : std::nullopt;
    }
};

void check_line(const std::string& line) {
    require(std::all_of(line.begin(), line.end(), [](char c) { return static_cast<uint8_t>(c) >= ' '; }),
            "a line is printable");
}

void carry_out(const handset::AtLine& line, const handset::AtCommands& commands,
               const handset::AtSettings& settings) {
    require(line.raw.size() <= handset::AtLineReader::kLineMax, "a line is bounded");
    check_line(handset::WireLine("at", 0, handset::Direction::kToModem).text("line", line.raw).str());
    if (line.kind != handset::AtLine::kCommand)
        return;
    check_line(line.text);
    const std::string text = handset::normal_at_text(line.text);
    require(handset::normal_at_text(text) == text, "a normal form is its own");
    handset::AtParser parser(std::string_view(text).substr(2));
    while (const auto command = parser.next()) {
        const auto outcome = commands.run(*command);
        require(!handset::result_text(outcome, settings).empty(), "every command has a result");
        std::for_each(outcome.lines.begin(), outcome.lines.end(), check_line);
        if (!outcome.ok())
            return;
    }
}

void write_lines(Input& input) {
    Parrot card;
    handset::AtSettings settings;
    handset::AtCommands commands;
    handset::AtNetwork network(
        commands, card, [] {}, check_line);
    handset::add_basic_commands(commands, settings);
    handset::add_identity_commands(commands);
    handset::add_card_commands(commands, card);
    handset::AtLineReader reader;
    while (!input.empty()) {
        if (const auto line = reader.take(static_cast<char>(input.u8()), settings.characters()))
            carry_out(*line, commands, settings);
    }
}

void answer(const wire::Bytes& command, handset::DiagMasks& masks) {
    constexpr size_t kMost = handset::DiagFrameReader::kPacketMax;
    require(command.size() <= kMost + 2, "a frame is bounded");
    const wire::Bytes response = handset::answer_diag_command(command, masks);
    handset::DiagFrameReader reader;
    std::optional<handset::DiagFrame> frame;
    for (const uint8_t byte : handset::diag_frame(response))
        frame = reader.take(byte);
    const bool fits = response.size() <= kMost;
    require(frame && frame->whole == fits && (!fits || frame->bytes == response), "a frame holds a response");
}

void write_frames(Input& input) {
    handset::DiagFrameReader reader;
    handset::DiagMasks masks;
    while (!input.empty()) {
        // Nearly no frame that is made up has its CRC, so a command is tried without it, too.
        if (const auto frame = reader.take(input.u8()))
            answer(frame->bytes, masks);
    }
    masks.has_log(0xB0C2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    input.u8() == 0 ? write_lines(input) : write_frames(input);
    return 0;
}

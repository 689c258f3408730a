// What programs write to the handset's terminals: `u8` 0 and bytes for the AT
// channel, else bytes for the diagnostic port. Whatever arrives, the readers
// keep a bounded part of it, lines hold no control characters, and an answer is
// one that a reader takes.
#include <algorithm>
#include <string>

#include "at_commands.h"
#include "at_network.h"
#include "diag_frame.h"
#include "diag_responder.h"
#include "finding.h"
#include "input.h"
#include "sim_access.h"

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

bool is_printable(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<uint8_t>(c) < ' '; });
}

void carry_out(const handset::AtLine& line, const handset::AtCommands& commands,
               const handset::AtSettings& settings) {
    require(line.raw.size() <= handset::AtLineReader::kLineMax, "a line is bounded");
    if (line.kind != handset::AtLine::kCommand)
        return;
    require(is_printable(line.text), "a command line is a text");
    const std::string text = handset::normal_at_text(line.text);
    require(handset::normal_at_text(text) == text, "a normal form is its own");
    handset::AtParser parser(std::string_view(text).substr(2));
    while (const auto command = parser.next()) {
        const auto outcome = commands.run(*command);
        require(!handset::result_text(outcome, settings).empty(), "every command has a result");
        for (const std::string& told : outcome.lines)
            require(is_printable(told), "what is told is a line");
        if (!outcome.ok())
            return;
    }
}

void write_lines(Input& input) {
    Parrot card;
    handset::AtSettings settings;
    handset::AtCommands commands;
    handset::AtNetwork network(
        commands, card, [] {}, [](const std::string& line) { require(is_printable(line), line.c_str()); });
    handset::add_basic_commands(commands, settings);
    handset::add_identity_commands(commands);
    handset::add_card_commands(commands, card);
    handset::AtLineReader reader;
    while (!input.empty()) {
        if (const auto line = reader.take(static_cast<char>(input.u8()), settings.characters()))
            carry_out(*line, commands, settings);
    }
}

std::optional<handset::DiagFrame> read(handset::DiagFrameReader& reader, const wire::Bytes& bytes) {
    std::optional<handset::DiagFrame> frame;
    for (const uint8_t byte : bytes) {
        require(!frame, "a frame ends once");
        frame = reader.take(byte);
    }
    return frame;
}

void answer(const wire::Bytes& command, handset::DiagMasks& masks) {
    const handset::DiagProfile profile;
    const wire::Bytes response = *handset::diag_response(profile, masks, command).bytes;
    handset::DiagFrameReader reader;
    const auto frame = read(reader, handset::diag_frame(response));
    const bool fits = response.size() <= handset::DiagFrameReader::kPacketMax;
    require(!response.empty() && frame && frame->whole == fits, "a response is a frame");
    require(!fits || frame->bytes == response, "a frame holds its packet");
}

void write_frames(Input& input) {
    handset::DiagFrameReader reader;
    handset::DiagMasks masks;
    while (!input.empty()) {
        const auto frame = reader.take(input.u8());
        if (!frame)
            continue;
        require(frame->bytes.size() <= handset::DiagFrameReader::kPacketMax + 2, "a frame is bounded");
        // Nearly no frame that is made up has its CRC, so a command is tried
        // without it, too.
        answer(frame->bytes, masks);
    }
    masks.has_log(0xB0C2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    if (input.u8() == 0)
        write_lines(input);
    else
        write_frames(input);
    return 0;
}

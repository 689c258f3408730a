// A card: its files, its PIN, and the logical channels to it, as commands reach them. It knows neither slots
// nor services; its owner hands it bytes and keeps what must last.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "apdu.h"
#include "card_files.h"
#include "card_pin.h"

namespace handset {

/// An application that is more than files: it has the commands that the card itself does not know.
class Applet {
public:
    Applet() = default;
    virtual ~Applet() = default;
    Applet(const Applet&) = delete;
    Applet& operator=(const Applet&) = delete;

    virtual wire::View aid() const = 0;

    /// What its selection answers.
    virtual wire::Bytes control_information() const = 0;
    virtual CardAnswer command(uint8_t channel, const Apdu& apdu) = 0;

    /// The channel begins anew or was closed.
    virtual void forget(uint8_t channel) = 0;
};

/// What fills the body of a card.
struct CardContent {
    CardFiles files;
    CardPin pin;
    /// Called with what must last whenever that has changed, before the command is answered. False when it
    /// could not be kept, which the answer then says.
    std::function<bool(const wire::Bytes& memory)> keep;
    /// What an earlier card has kept; bytes that are none of that are left alone.
    wire::Bytes memory;
};

class Card {
public:
    static constexpr uint8_t kChannels = 4;  // the basic channel, 0, included

    /// The answer to reset of every card.
    static wire::View atr();

    explicit Card(CardContent content, Applet* applet = nullptr);

    /// Power-up: channels closed, the PIN forgotten.
    void reset();

    /// Another card's files in the same body: selections of files are lost, channels and applet stay.
    void exchange(CardContent content);

    const CardFiles& files() const { return files_; }
    const CardPin& pin() const { return pin_; }
    bool has_usim() const { return files_.application().has_value(); }

    bool is_open(uint8_t channel) const { return channel < kChannels && channels_[channel].open; }
    unsigned open_channels() const;
    std::optional<uint8_t> open_channel();
    bool close_channel(uint8_t channel);

    /// Selects an application by name on an open channel. False when there is none.
    bool select_application(uint8_t channel, wire::View name);

    /// The name of what was selected on the channel; empty when that is no application.
    wire::View selected(uint8_t channel) const;

    /// What the selection of that application answers.
    wire::Bytes control_information(uint8_t channel) const;

    /// Carries out one command on an open channel. An answer of more than `longest` bytes, status words
    /// included, is announced and fetched by GET RESPONSE.
    wire::Bytes transmit(uint8_t channel, wire::View command, size_t longest);

    /// Reads as the phone does, from the master file on.
    struct Content {
        uint16_t words;
        wire::View bytes;
    };
    Content read_binary(const FilePath& path, size_t offset, size_t length) const;  // 0: to the end
    Content read_record(const FilePath& path, size_t record) const;

private:
    static constexpr size_t kNoFile = SIZE_MAX;
    struct Channel {
        bool open = false;
        bool applet = false;
        size_t application = kNoFile;
        size_t directory = CardFiles::kMaster;
        size_t file = kNoFile;
        size_t record = 0;
        wire::Bytes rest;
    };
    using Command = CardAnswer (Card::*)(uint8_t channel, const Apdu& apdu);
    struct Row {
        uint8_t instruction;
        uint8_t command_class;
        Command command;
    };
    static const Row kCommands[];

    CardAnswer carry_out(uint8_t channel, wire::View command);
    CardAnswer select(uint8_t channel, const Apdu& apdu);
    CardAnswer status(uint8_t channel, const Apdu& apdu);
    CardAnswer read_binary(uint8_t channel, const Apdu& apdu);
    CardAnswer update_binary(uint8_t channel, const Apdu& apdu);
    CardAnswer read_record(uint8_t channel, const Apdu& apdu);
    CardAnswer update_record(uint8_t channel, const Apdu& apdu);
    CardAnswer pin_command(uint8_t channel, const Apdu& apdu);
    CardAnswer manage_channel(uint8_t channel, const Apdu& apdu);
    CardAnswer get_response(uint8_t channel, const Apdu& apdu);
    CardAnswer authenticate(uint8_t channel, const Apdu& apdu);

    CardAnswer select_name(Channel& channel, const Apdu& apdu);
    std::optional<size_t> by_id(const Channel& channel, uint16_t id) const;
    std::optional<size_t> by_path(const Channel& channel, size_t start, wire::View path) const;
    void enter(Channel& channel, size_t place);
    uint16_t choose_binary(Channel& channel, const Apdu& apdu, size_t& offset);
    uint16_t choose_record(Channel& channel, const Apdu& apdu, size_t& record);
    uint16_t check(size_t place, FileKind kind, bool update) const;
    bool permitted(Access access) const;
    uint16_t kept(uint16_t words) const;
    void start(Channel& channel);

    void remember(wire::View memory);

    CardFiles files_;
    CardPin pin_;
    std::function<bool(const wire::Bytes&)> keep_;
    Applet* const applet_;
    std::array<Channel, kChannels> channels_;
};

}  // namespace handset

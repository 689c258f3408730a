// Channels, the frame of a command, and the commands that are about neither files nor selection. The others
// are in card_select.cpp and card_access.cpp.
#include "card.h"

#include <algorithm>

namespace handset {
namespace {

// TS = 3B, T=0 and T=1, historical bytes with the card capabilities.
constexpr uint8_t kAtr[] = {0x3B, 0x9F, 0x96, 0x80, 0x1F, 0xC7, 0x80, 0x31, 0xE0, 0x73, 0xFE,
                            0x21, 0x1B, 0x67, 0x76, 0x78, 0x6B, 0x73, 0x69, 0x6D, 0x01, 0xC3};

constexpr uint8_t kReferencePin = 0x01;
constexpr uint8_t kVerify = 0x20;
constexpr uint8_t kChangePin = 0x24;
constexpr uint8_t kDisablePin = 0x26;
constexpr uint8_t kEnablePin = 0x28;
constexpr uint8_t kUnblockPin = 0x2C;

constexpr uint8_t kOpenChannel = 0x00;
constexpr uint8_t kCloseChannel = 0x80;

constexpr uint8_t kContextSpecific = 0x80;
constexpr size_t kResponseMax = 256;

uint8_t low_byte(size_t left) {
    return static_cast<uint8_t>(left >= kResponseMax ? 0 : left);
}

}  // namespace

const Card::Row Card::kCommands[] = {
    {0xA4, kClassIso, &Card::select},
    {0xF2, kClassProprietary, &Card::status},
    {0xB0, kClassIso, &Card::read_binary},
    {0xB2, kClassIso, &Card::read_record},
    {0xD6, kClassIso, &Card::update_binary},
    {0xDC, kClassIso, &Card::update_record},
    {kVerify, kClassIso, &Card::pin_command},
    {kChangePin, kClassIso, &Card::pin_command},
    {kDisablePin, kClassIso, &Card::pin_command},
    {kEnablePin, kClassIso, &Card::pin_command},
    {kUnblockPin, kClassIso, &Card::pin_command},
    {0x70, kClassIso, &Card::manage_channel},
    {0xC0, kClassIso, &Card::get_response},
    {0x88, kClassIso, &Card::authenticate},
};

wire::View Card::atr() {
    return {kAtr, sizeof kAtr};
}

Card::Card(CardContent content, Applet* applet)
    : files_(std::move(content.files)),
      pin_(std::move(content.pin)),
      keep_(std::move(content.keep)),
      applet_(applet) {
    remember(content.memory);
    reset();
}

void Card::remember(wire::View memory) {
    if (!pin_.read(memory))
        return;
    wire::TlvReader reader(memory);
    while (const auto tlv = reader.next())
        files_.apply_change(tlv->value);
}

uint16_t Card::kept(uint16_t words) const {
    wire::Writer memory;
    pin_.write(memory);
    files_.write_changes(memory);
    return keep_(memory.data()) ? words : uint16_t{kSwMemoryFailure};
}

void Card::start(Channel& channel) {
    channel = Channel();
    if (applet_ != nullptr)
        applet_->forget(static_cast<uint8_t>(&channel - channels_.data()));
}

// The phone has the USIM active on the basic channel.
void Card::reset() {
    pin_.forget();
    for (Channel& channel : channels_)
        start(channel);
    channels_[0].open = true;
    channels_[0].application = files_.application().value_or(kNoFile);
}

void Card::exchange(CardContent content) {
    files_ = std::move(content.files);
    pin_ = std::move(content.pin);
    keep_ = std::move(content.keep);
    remember(content.memory);
    for (Channel& channel : channels_) {
        channel.application = kNoFile;
        channel.directory = CardFiles::kMaster;
        channel.file = kNoFile;
    }
    channels_[0].application = files_.application().value_or(kNoFile);
}

unsigned Card::open_channels() const {
    return static_cast<unsigned>(std::count_if(channels_.begin() + 1, channels_.end(),
                                               [](const Channel& channel) { return channel.open; }));
}

std::optional<uint8_t> Card::open_channel() {
    for (uint8_t number = 1; number < kChannels; ++number) {
        if (!channels_[number].open) {
            start(channels_[number]);
            channels_[number].open = true;
            return number;
        }
    }
    return std::nullopt;
}

bool Card::close_channel(uint8_t channel) {
    if (channel == 0 || !is_open(channel))
        return false;
    start(channels_[channel]);
    return true;
}

wire::View Card::selected(uint8_t channel) const {
    const Channel& at = channels_[channel];
    if (at.applet)
        return applet_->aid();
    return at.application == kNoFile ? wire::View() : wire::View(files_.at(at.application).name);
}

wire::Bytes Card::transmit(uint8_t channel, wire::View command, size_t longest) {
    CardAnswer answer = carry_out(channel, command);
    if (answer.data.size() + 2 > longest) {
        answer.words = static_cast<uint16_t>(kSwMoreData | low_byte(answer.data.size()));
        channels_[channel].rest = std::move(answer.data);
        answer.data.clear();
    }
    const wire::Bytes words = status_words(answer.words);
    answer.data.insert(answer.data.end(), words.begin(), words.end());
    return std::move(answer.data);
}

CardAnswer Card::carry_out(uint8_t channel, wire::View command) {
    if (command.size < kApduHeader)
        return kSwWrongLength;
    const int command_class = command.data[0] & ~kChannelBits;
    if (command_class != kClassIso && command_class != kClassProprietary)
        return kSwUnknownClass;
    const uint8_t instruction = command.data[1];
    const Row* row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                  [&](const Row& known) { return known.instruction == instruction; });
    const bool known = row != std::end(kCommands);
    if (known && row->command_class != command_class)
        return kSwUnknownClass;
    if (!known && !channels_[channel].applet)
        return kSwUnknownInstruction;
    if (!known || row->command != &Card::get_response)
        channels_[channel].rest.clear();
    const auto apdu = parse_apdu(command);
    if (!apdu)
        return kSwWrongLength;
    return known ? (this->*row->command)(channel, *apdu) : applet_->command(channel, *apdu);
}

CardAnswer Card::get_response(uint8_t channel, const Apdu& apdu) {
    wire::Bytes& rest = channels_[channel].rest;
    if (apdu.p1 != 0 || apdu.p2 != 0)
        return kSwWrongParameters;
    if (apdu.data.size != 0 || !apdu.expected)
        return kSwWrongLength;
    if (rest.empty())
        return kSwConditions;
    const size_t count =
        *apdu.expected == kResponseMax ? std::min(rest.size(), kResponseMax) : *apdu.expected;
    if (count > rest.size())
        return static_cast<uint16_t>(kSwWrongExpected | low_byte(rest.size()));
    const auto end = rest.begin() + static_cast<std::ptrdiff_t>(count);
    CardAnswer answer(wire::Bytes(rest.begin(), end));
    rest.erase(rest.begin(), end);
    if (!rest.empty())
        answer.words = static_cast<uint16_t>(kSwMoreData | low_byte(rest.size()));
    return answer;
}

CardAnswer Card::pin_command(uint8_t, const Apdu& apdu) {
    if (apdu.p1 != 0 || (apdu.p2 != kReferencePin && apdu.p2 != 0))
        return kSwWrongParameters;
    if (apdu.p2 != kReferencePin || !has_usim())
        return kSwNoSuchData;
    uint16_t words = kSwWrongLength;
    switch (apdu.instruction) {
        case kVerify:
            words = pin_.verify(apdu.data);
            break;
        case kChangePin:
            words = pin_.change(apdu.data);
            break;
        case kUnblockPin:
            words = pin_.unblock(apdu.data);
            break;
        default:
            words = pin_.enable(apdu.data, apdu.instruction == kEnablePin);
            break;
    }
    // A question changes nothing.
    return apdu.data.size == 0 ? words : kept(words);
}

CardAnswer Card::manage_channel(uint8_t, const Apdu& apdu) {
    if (apdu.data.size != 0)
        return kSwWrongLength;
    if (apdu.p1 == kCloseChannel && apdu.p2 != 0)
        return close_channel(apdu.p2) ? kSwOk : kSwChannelNotSupported;
    if (apdu.p1 != kOpenChannel || apdu.p2 >= kChannels)
        return kSwWrongParameters;
    if (apdu.p2 == 0) {
        const auto opened = open_channel();
        return opened ? CardAnswer(wire::Bytes{*opened}) : CardAnswer(kSwNoChannel);
    }
    if (is_open(apdu.p2))
        return kSwNoChannel;
    start(channels_[apdu.p2]);
    channels_[apdu.p2].open = true;
    return kSwOk;
}

// The card has no key: it can neither check the network's challenge nor answer it.
CardAnswer Card::authenticate(uint8_t channel, const Apdu& apdu) {
    if (apdu.p1 != 0 || (apdu.p2 & ~0x07) != kContextSpecific)
        return kSwWrongParameters;
    if (channels_[channel].application == kNoFile)
        return kSwConditions;
    if (apdu.data.size == 0 || size_t{apdu.data.data[0]} + 1 > apdu.data.size)
        return kSwWrongLength;
    return pin_.satisfied() ? kSwNoContext : kSwSecurity;
}

}  // namespace handset

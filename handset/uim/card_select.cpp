// Which file, directory and application a channel is at.
#include <algorithm>

#include "card.h"
#include "der.h"
#include "fcp.h"

namespace handset {
namespace {

enum SelectBy : uint8_t {
    kById = 0x00,
    kByChild = 0x01,
    kByParent = 0x03,
    kByName = 0x04,
    kByMasterPath = 0x08,
    kByPath = 0x09
};

// What is to be answered; the rest of P2 is about sessions and occurrences.
constexpr uint8_t kReturn = 0x0C;
constexpr uint8_t kReturnInformation = 0x00;
constexpr uint8_t kReturnParameters = 0x04;
constexpr uint8_t kReturnNothing = 0x0C;
constexpr uint8_t kOccurrence = 0x03;
constexpr uint8_t kTerminate = 0x40;
constexpr uint8_t kUnusedBits = 0xB0;

constexpr uint8_t kStatusLast = 0x02;
constexpr uint8_t kStatusName = 0x01;
constexpr uint8_t kNameTag = 0x84;

uint16_t id_at(wire::View bytes, size_t offset) {
    return static_cast<uint16_t>(bytes.data[offset] << 8 | bytes.data[offset + 1]);
}

}  // namespace

// The master file, the application, what is directly below, the directory itself, its parent, and the
// directories beside it.
std::optional<size_t> Card::by_id(const Channel& channel, uint16_t id) const {
    if (id == kIdMaster)
        return CardFiles::kMaster;
    if (id == kIdApplication)
        return channel.application == kNoFile ? std::nullopt : std::optional<size_t>(channel.application);
    if (const auto below = files_.child(channel.directory, id))
        return below;
    const CardFile& directory = files_.at(channel.directory);
    if (directory.id == id)
        return channel.directory;
    if (files_.at(directory.parent).id == id)
        return directory.parent;
    const auto beside = files_.child(directory.parent, id);
    if (beside && files_.at(*beside).kind == FileKind::kDirectory)
        return beside;
    return std::nullopt;
}

std::optional<size_t> Card::by_path(const Channel& channel, size_t start, wire::View path) const {
    std::optional<size_t> place = start;
    for (size_t i = 0; i < path.size && place; i += 2) {
        const uint16_t id = id_at(path, i);
        if (i == 0 && id == kIdMaster)
            place = CardFiles::kMaster;
        else if (i <= 2 && id == kIdApplication)
            place = by_id(channel, id);
        else
            place = files_.child(*place, id);
    }
    return place;
}

void Card::enter(Channel& channel, size_t place) {
    const CardFile& file = files_.at(place);
    channel.record = 0;
    channel.file = file.kind == FileKind::kDirectory ? kNoFile : place;
    channel.directory = file.kind == FileKind::kDirectory ? place : file.parent;
}

bool Card::select_application(uint8_t number, wire::View name) {
    Channel& channel = channels_[number];
    constexpr size_t kNameMin = 5;
    if (applet_ != nullptr && name.size >= kNameMin && name.size <= applet_->aid().size &&
        std::equal(name.data, name.data + name.size, applet_->aid().data)) {
        applet_->forget(number);
        channel.applet = true;
        return true;
    }
    const auto place = files_.application(name);
    if (!place)
        return false;
    channel.applet = false;
    channel.application = *place;
    enter(channel, *place);
    return true;
}

CardAnswer Card::select_name(Channel& channel, const Apdu& apdu) {
    const auto number = static_cast<uint8_t>(&channel - channels_.data());
    // There is one application of each name: a second occurrence is none.
    if ((apdu.p2 & kOccurrence) > 1 || !select_application(number, apdu.data))
        return kSwFileNotFound;
    if ((apdu.p2 & kTerminate) != 0) {
        channel.applet = false;
        channel.application = kNoFile;
        enter(channel, CardFiles::kMaster);
        return kSwOk;
    }
    if ((apdu.p2 & kReturn) == kReturnNothing)
        return kSwOk;
    return control_information(number);
}

wire::Bytes Card::control_information(uint8_t number) const {
    const Channel& channel = channels_[number];
    if (channel.applet)
        return applet_->control_information();
    return channel.application == kNoFile ? wire::Bytes()
                                          : file_control_parameters(files_, channel.application, pin_);
}

CardAnswer Card::select(uint8_t number, const Apdu& apdu) {
    Channel& channel = channels_[number];
    const uint8_t wanted = apdu.p2 & kReturn;
    if ((apdu.p2 & kUnusedBits) != 0 ||
        (wanted != kReturnInformation && wanted != kReturnParameters && wanted != kReturnNothing))
        return kSwWrongParameters;
    if (apdu.p1 == kByName)
        return select_name(channel, apdu);

    size_t place = kNoFile;
    switch (apdu.p1) {
        case kById:
        case kByChild:
            if (apdu.data.size == 0 && apdu.p1 == kById)
                place = CardFiles::kMaster;
            else if (apdu.data.size != 2)
                return kSwWrongLength;
            else if (apdu.p1 == kById)
                place = by_id(channel, id_at(apdu.data, 0)).value_or(kNoFile);
            else
                place = files_.child(channel.directory, id_at(apdu.data, 0)).value_or(kNoFile);
            if (apdu.p1 == kByChild && place != kNoFile && files_.at(place).kind != FileKind::kDirectory)
                place = kNoFile;
            break;
        case kByParent:
            if (apdu.data.size != 0)
                return kSwWrongLength;
            place = files_.at(channel.directory).parent;
            break;
        case kByMasterPath:
        case kByPath:
            if (apdu.data.size == 0 || apdu.data.size % 2 != 0)
                return kSwWrongLength;
            place = by_path(channel, apdu.p1 == kByPath ? channel.directory : CardFiles::kMaster, apdu.data)
                        .value_or(kNoFile);
            break;
        default:
            return kSwWrongParameters;
    }
    if (place == kNoFile)
        return kSwFileNotFound;
    channel.applet = false;
    if (!files_.at(place).name.empty())
        channel.application = place;
    enter(channel, place);
    if (wanted == kReturnNothing)
        return kSwOk;
    return file_control_parameters(files_, place, pin_);
}

CardAnswer Card::status(uint8_t number, const Apdu& apdu) {
    const Channel& channel = channels_[number];
    if (apdu.p1 > kStatusLast)
        return kSwWrongParameters;
    if (apdu.data.size != 0)
        return kSwWrongLength;
    if (apdu.p2 == kReturnNothing)
        return kSwOk;
    wire::Bytes answer;
    if (apdu.p2 == kReturnInformation)
        answer = channel.applet ? applet_->control_information()
                                : file_control_parameters(files_, channel.directory, pin_);
    else if (apdu.p2 == kStatusName)
        answer = der(kNameTag, selected(number));
    else
        return kSwWrongParameters;
    if (apdu.expected && *apdu.expected < answer.size())
        answer.resize(*apdu.expected);
    return answer;
}

}  // namespace handset

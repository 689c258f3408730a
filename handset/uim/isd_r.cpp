#include "isd_r.h"

#include <utility>

namespace handset {
namespace {

constexpr uint8_t kAid[] = {0xA0, 0x00, 0x00, 0x05, 0x59, 0x10, 0x10, 0xFF,
                            0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};

constexpr uint8_t kStoreData = 0xE2;
constexpr uint8_t kMoreBlocks = 0x11;
constexpr uint8_t kLastBlock = 0x91;

constexpr uint32_t kTemplate = 0x6F;
constexpr uint32_t kName = 0x84;
constexpr uint32_t kOwnTemplate = 0xE0;
constexpr uint32_t kVersion = 0x82;

constexpr uint8_t kProfilePackage[] = {0xBF, 0x36};

}  // namespace

wire::View IsdR::aid() const {
    return {kAid, sizeof kAid};
}

wire::Bytes IsdR::control_information() const {
    DerWriter writer;
    writer.object(kName, aid()).object(kOwnTemplate, der(kVersion, es10_version()));
    return der(kTemplate, writer.data());
}

// Blocks are numbered from 0; one out of its order ends the request.
CardAnswer IsdR::command(uint8_t channel, const Apdu& apdu) {
    Request& request = requests_[channel];
    if (apdu.instruction != kStoreData || apdu.command_class != kClassProprietary)
        return kSwUnknownInstruction;
    if (apdu.data.size == 0)
        return kSwWrongLength;
    if (apdu.p2 == 0)
        request = Request();
    if ((apdu.p1 != kMoreBlocks && apdu.p1 != kLastBlock) || apdu.p2 != request.blocks) {
        request = Request();
        return kSwWrongParameters;
    }
    request.data.insert(request.data.end(), apdu.data.data, apdu.data.data + apdu.data.size);
    ++request.blocks;
    if (apdu.p1 == kMoreBlocks)
        return kSwOk;
    const wire::Bytes whole = std::exchange(request, Request()).data;
    return carry_out(whole);
}

CardAnswer IsdR::carry_out(wire::View request) {
    // A profile package comes in pieces that are not whole objects, and only in a session, which
    // there never is.
    if (request.size > 2 && request.data[0] == kProfilePackage[0] && request.data[1] == kProfilePackage[1])
        return kSwConditions;
    DerReader reader(request);
    const auto object = reader.next();
    if (!object)
        return kSwWrongLength;
    if (object->value.data + object->value.size != request.data + request.size)
        return kSwWrongData;
    return answer_es10(es10_, *object);
}

}  // namespace handset

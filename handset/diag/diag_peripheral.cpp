#include "diag_peripheral.h"

#include <chrono>
#include <string_view>
#include <utility>

#include "identity.h"

namespace handset {
namespace {

enum Code : uint8_t {
    kVersion = 0x00,
    kBadCommand = 0x13,
    kBadParameters = 0x14,
    kBadLength = 0x15,
    kTime = 0x1D,
    kLoopBack = 0x7B,
    kExtendedBuildId = 0x7C,
};

constexpr uint16_t kModel = 0x0FA5;
constexpr uint32_t kMsmRevision = 0x000A1B02;

wire::View bytes_of(std::string_view text) {
    return {text.data(), text.size()};
}

wire::Bytes version() {
    wire::Writer answer;
    answer.u8(kVersion);
    answer.bytes(bytes_of("Mar 14 2024")).bytes(bytes_of("09:26:53"));  // compiled
    answer.bytes(bytes_of("Mar 15 2024")).bytes(bytes_of("12:00:00"));  // released
    answer.bytes(bytes_of("vxk.sim "));                                 // directory of the version
    answer.u8(0x2A).u8(6).u8(static_cast<uint8_t>(kModel));             // station class, CAI revision, model
    answer.u16(0x0100).u8(2).u8(1).u8(0);  // firmware revision, slot cycle index, hardware major and minor
    return answer.take();
}

wire::Bytes extended_build_id() {
    wire::Writer answer;
    answer.u8(kExtendedBuildId).u8(2).u16(0);  // version of the layout, reserved
    answer.u32(kMsmRevision).u32(kModel);
    answer.bytes(bytes_of(kBuildName)).u8(0).bytes(bytes_of(kModelName)).u8(0);
    return answer.take();
}

wire::Bytes time() {
    wire::Writer answer;
    answer.u8(kTime).u64(diag_timestamp());
    return answer.take();
}

wire::Bytes refusal(Code why, wire::View command) {
    wire::Writer answer;
    answer.u8(why).bytes(command);
    return answer.take();
}

wire::Bytes mask_command(wire::View command, DiagMasks& masks) {
    DiagMasks::Outcome outcome = masks.carry_out(command);
    if (outcome.kind == DiagMasks::Outcome::kAnswer)
        return std::move(outcome.answer);
    return refusal(outcome.kind == DiagMasks::Outcome::kBadLength ? kBadLength : kBadParameters, command);
}

}  // namespace

uint64_t diag_timestamp() {
    using Unit = std::chrono::duration<uint64_t, std::ratio<1, 800>>;
    constexpr std::chrono::seconds kEpoch(315'964'800);  // since 1970
    const auto now = std::chrono::system_clock::now().time_since_epoch() - kEpoch;
    // The 16 bits below the units divide one.
    return std::chrono::duration_cast<Unit>(now).count() << 16;
}

wire::Bytes answer_diag_command(wire::View command, DiagMasks& masks) {
    switch (wire::Reader(command).u8()) {
        case kVersion:
            return version();
        case kTime:
            return time();
        case kLoopBack:
            return command.copy();
        case kExtendedBuildId:
            return extended_build_id();
        case kDiagEventReport:
        case kDiagLogConfig:
        case kDiagMessageConfig:
            return mask_command(command, masks);
        default:
            return refusal(kBadCommand, command);
    }
}

}  // namespace handset

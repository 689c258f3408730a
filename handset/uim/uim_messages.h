// Messages and TLVs of the UIM service, by number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "qmi_names.h"
#include "wire.h"

namespace handset {

enum UimMessage : uint16_t {
    kUimGetCardStatus = 47,
    kUimPowerDown = 48,
    kUimPowerUp = 49,
    kUimSendApdu = 59,
    kUimLogicalChannel = 63,
    kUimOpenLogicalChannel = 66,
    kUimRecovery = 97,  // an indication
    kUimGetEid = 101,
};

/// TLVs; those of a request and of a response are numbered apart.
enum UimTlv : uint8_t {
    kUimSlot = 0x01,
    kUimResult = 0x02,
    kUimApdu = 0x02,
    kUimExtendedWanted = 0x10,
    kUimIgnoreHotswap = 0x10,
    kUimPowerOption = 0x11,
    kUimApduChannel = 0x10,
    kUimProcedureBytes = 0x11,
    kUimClosedChannel = 0x11,
    kUimTerminate = 0x13,
    kUimAid = 0x10,
    kUimFileControlInformation = 0x11,

    kUimCardStatus = 0x10,
    kUimExtendedCardStatus = 0x15,
    kUimOpenedChannel = 0x10,
    kUimStatusWords = 0x11,
    kUimSelectResponse = 0x12,
    kUimResponseApdu = 0x10,
    kUimEid = 0x10,
};

/// The bytes behind a count of `width` bytes, or nothing when they are not as many.
inline std::optional<wire::View> uim_counted(wire::View value, size_t width) {
    wire::Reader reader(value);
    const wire::View bytes = reader.bytes(reader.number(width));
    if (!reader.ok() || reader.left() > 0)
        return std::nullopt;
    return bytes;
}

}  // namespace handset

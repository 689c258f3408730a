// Messages and TLVs of the UIM service, by number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "qmi_error.h"
#include "wire.h"

namespace handset {

enum UimMessage : uint16_t {
    kUimReset = 0,
    kUimGetSupportedMessages = 30,
    kUimReadTransparent = 32,
    kUimReadRecord = 33,
    kUimGetFileAttributes = 36,
    kUimRefreshRegister = 42,
    kUimRefreshComplete = 44,
    kUimRegisterEvents = 46,
    kUimGetCardStatus = 47,
    kUimPowerDown = 48,
    kUimPowerUp = 49,
    kUimCardStatusIndication = 50,
    kUimRefreshIndication = 51,
    kUimSendApdu = 59,
    kUimLogicalChannel = 63,
    kUimOpenLogicalChannel = 66,
    kUimRefreshRegisterAll = 68,
    kUimSwitchSlot = 70,
    kUimGetSlotStatus = 71,
    kUimSlotStatusIndication = 72,
    kUimGetEid = 101,
};

/// TLVs; those of a request and of a response are numbered apart.
enum UimTlv : uint8_t {
    kUimSlot = 0x01,
    kUimApdu = 0x02,
    kUimExtendedWanted = 0x10,
    kUimApduChannel = 0x10,
    kUimClosedChannel = 0x11,
    kUimAid = 0x10,
    kUimFileControlInformation = 0x11,

    kUimSession = 0x01,
    kUimEventMask = 0x01,
    kUimFile = 0x02,
    kUimRefreshInformation = 0x02,
    kUimPhysicalSlot = 0x02,
    kUimRange = 0x03,

    kUimCardStatus = 0x10,
    kUimSupportedMessages = 0x10,
    kUimCardResult = 0x10,
    kUimContent = 0x11,
    kUimFileAttributes = 0x11,
    kUimEventMaskTaken = 0x10,
    kUimRefreshEvent = 0x10,
    kUimSlotStatus = 0x10,
    kUimSlotInformation = 0x11,
    kUimSlotEid = 0x12,
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

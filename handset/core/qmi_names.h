// The QMI services that the handset has, and the error words of their answers.
#pragma once

#include <cstdint>

#include "messages.h"

namespace handset {

constexpr uint16_t kUimServiceId = messages::kUim;
constexpr uint16_t kSarServiceId = messages::kSar;
constexpr uint16_t kExtensionServiceId = messages::kExtension;
constexpr uint16_t kStatisticsServiceId = messages::kStatistics;

/// Error words of a QMI answer.
enum QmiError : uint16_t {
    kQmiErrorNone = 0,
    kQmiErrorMalformed = 1,
    kQmiErrorInternal = 3,
    kQmiErrorSimFileNotFound = 16,
    kQmiErrorMissingArgument = 17,
    kQmiErrorNoEffect = 26,
    kQmiErrorInvalidArgument = 48,
    kQmiErrorDeviceNotReady = 52,
    kQmiErrorInvalidMessage = 71,
    kQmiErrorInformationUnavailable = 74,
    kQmiErrorAccessDenied = 82,
    kQmiErrorNotSupported = 94,
};

}  // namespace handset

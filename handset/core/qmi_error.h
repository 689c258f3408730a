// The error words of the QMI services' answers.
#pragma once

#include <cstdint>

namespace handset {

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

// The QMI services that the handset knows, by number and by the name that the profile and the wire log use.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace handset {

constexpr uint16_t kUimServiceId = 11;
constexpr uint16_t kSarServiceId = 17;
constexpr uint16_t kExtensionServiceId = 65508;
constexpr uint16_t kStatisticsServiceId = 65509;

/// The number itself when the service has no name.
std::string service_name(uint16_t id);
std::optional<uint16_t> service_id(std::string_view name);

/// Error words of a QMI answer.
enum QmiError : uint16_t {
    kQmiErrorNone = 0,
    kQmiErrorMalformed = 1,
    kQmiErrorInternal = 3,
    kQmiErrorSimFileNotFound = 16,
    kQmiErrorMissingArgument = 17,
    kQmiErrorInvalidArgument = 48,
    kQmiErrorDeviceNotReady = 52,
    kQmiErrorInvalidMessage = 71,
    kQmiErrorInformationUnavailable = 74,
    kQmiErrorNotSupported = 94,
};

}  // namespace handset

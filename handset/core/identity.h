// What the modem calls itself, on whatever road it is asked.
#pragma once

#include <string_view>

namespace handset {

constexpr std::string_view kMaker("vxk");
constexpr std::string_view kModelName("vxk simulated handset");
constexpr std::string_view kBuildName("VXK.SIM.1.0-00042-MODEM-1");

/// 14 digits and the check digit; the type is that of a test device.
constexpr std::string_view kImei("001017000000011");
constexpr std::string_view kSoftwareVersion("01");
constexpr std::string_view kSerialNumber("VXK0000042");

}  // namespace handset

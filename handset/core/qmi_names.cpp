#include "qmi_names.h"

namespace handset {
namespace {

constexpr struct {
    uint16_t id;
    const char* name;
} kServices[] = {
    {kUimServiceId, "uim"},
    {kSarServiceId, "sar"},
    {kExtensionServiceId, "extension"},
    {kStatisticsServiceId, "statistics"},
};

}  // namespace

std::string service_name(uint16_t id) {
    for (const auto& service : kServices) {
        if (service.id == id)
            return service.name;
    }
    return std::to_string(id);
}

std::optional<uint16_t> service_id(std::string_view name) {
    for (const auto& service : kServices) {
        if (service.name == name)
            return service.id;
    }
    return std::nullopt;
}

}  // namespace handset

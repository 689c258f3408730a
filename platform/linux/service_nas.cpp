#include "network_access_service_v01.h"

namespace {

// The tool prepares slots for the service and sends it nothing, so no message is described.
constexpr qmi_idl_service_object kService = {
    NAS_V01_IDL_TOOL_VERS, NAS_V01_IDL_MAJOR_VERS, NAS_SERVICE_ID, 0, nullptr, 0};

}  // namespace

extern "C" qmi_idl_service_object_type nas_get_service_object_internal_v01(int32_t idl_major,
                                                                           int32_t idl_minor,
                                                                           int32_t library) {
    const bool known = idl_major == NAS_V01_IDL_MAJOR_VERS && idl_minor == NAS_V01_IDL_MINOR_VERS &&
                       library == NAS_V01_IDL_TOOL_VERS;
    return known ? &kService : nullptr;
}

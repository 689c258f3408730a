// The services' descriptions as the tool asks for them.
#include "modem_statistics_v01.h"
#include "network_access_service_v01.h"
#include "qmi_codec.h"
#include "sar_v01.h"
#include "tables.h"
#include "user_identity_module_v01.h"

namespace {

// The tool prepares slots for the service and sends it nothing, so no message is described.
constexpr qmi_idl_service_object kNas = {
    NAS_V01_IDL_TOOL_VERS, NAS_V01_IDL_MAJOR_VERS, NAS_SERVICE_ID, 0, nullptr, 0};

}  // namespace

extern "C" qmi_idl_service_object_type uim_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                                           int32_t library) {
    const bool known = major == UIM_V01_IDL_MAJOR_VERS && minor == UIM_V01_IDL_MINOR_VERS &&
                       library == UIM_V01_IDL_TOOL_VERS;
    return known ? seam::uim_table() : nullptr;
}

extern "C" qmi_idl_service_object_type vs_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                                          int32_t library) {
    const bool known =
        major == VS_V01_IDL_MAJOR_VERS && minor == VS_V01_IDL_MINOR_VERS && library == VS_V01_IDL_TOOL_VERS;
    return known ? seam::statistics_table() : nullptr;
}

extern "C" qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                                           int32_t library) {
    const bool known = major == SAR_V01_IDL_MAJOR_VERS && minor == SAR_V01_IDL_MINOR_VERS &&
                       library == SAR_V01_IDL_TOOL_VERS;
    return known ? seam::sar_table() : nullptr;
}

extern "C" qmi_idl_service_object_type nas_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                                           int32_t library) {
    const bool known = major == NAS_V01_IDL_MAJOR_VERS && minor == NAS_V01_IDL_MINOR_VERS &&
                       library == NAS_V01_IDL_TOOL_VERS;
    return known ? &kNas : nullptr;
}

extern "C" int32_t qmi_idl_get_message_c_struct_len(qmi_idl_service_object_type service,
                                                    qmi_idl_type_of_message_type type, uint16_t message_id,
                                                    uint32_t* c_struct_len) {
    const qmi_idl_message* message = seam::find_message(service, type, message_id);
    if (c_struct_len != nullptr)
        *c_struct_len = message != nullptr ? message->c_struct_len : 0;
    return message != nullptr && c_struct_len != nullptr ? 0 : -1;
}

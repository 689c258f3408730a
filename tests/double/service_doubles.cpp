// The services' descriptions as the double has them: told apart by their address alone. What links the
// workstation library's tables leaves this file out.
#include "modem_statistics_v01.h"
#include "network_access_service_v01.h"
#include "platform_double.h"
#include "sar_v01.h"
#include "user_identity_module_v01.h"

extern "C" {

int32_t qmi_idl_get_message_c_struct_len(qmi_idl_service_object_type, qmi_idl_type_of_message_type type,
                                         uint16_t message_id, uint32_t* len) {
    *len = 0;
    return platform().c_struct_len ? platform().c_struct_len(type, message_id, len) : 0;
}

static const qmi_idl_service_object kUim{6, 1, UIM_SERVICE_ID, 0, nullptr, 0};
static const qmi_idl_service_object kVs{6, 1, VS_SERVICE_ID, 0, nullptr, 0};
static const qmi_idl_service_object kSar{6, 1, SAR_SERVICE_ID, 0, nullptr, 0};
static const qmi_idl_service_object kNas{6, 1, NAS_SERVICE_ID, 0, nullptr, 0};

qmi_idl_service_object_type uim_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                                int32_t library) {
    return major == 1 && minor == 100 && library == 6 ? &kUim : nullptr;
}
qmi_idl_service_object_type vs_get_service_object_internal_v01(int32_t, int32_t, int32_t) {
    return &kVs;
}
qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t, int32_t, int32_t) {
    return &kSar;
}
qmi_idl_service_object_type nas_get_service_object_internal_v01(int32_t, int32_t, int32_t) {
    return &kNas;
}

}  // extern "C"

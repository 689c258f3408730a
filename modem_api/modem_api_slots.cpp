#include "modem_api_slots.h"

#include "android/log.h"
#include "network_access_service_v01.h"
#include "sar_v01.h"

namespace {

modem_api_service_slot_type g_vs_slot;
modem_api_service_slot_type g_sar_slot;
modem_api_service_slot_type g_nas_0_slot;
modem_api_service_slot_type g_nas_1_slot;

void fill(modem_api_service_slot_type* slot, qmi_idl_service_object_type service,
          modem_api_command_cb command_cb) {
    *slot = {};
    slot->service = service;
    slot->command_cb = command_cb;
}

qmi_idl_service_object_type nas_service() {
    return nas_get_service_object_internal_v01(NAS_V01_IDL_MAJOR_VERS, NAS_V01_IDL_MINOR_VERS,
                                               NAS_V01_IDL_TOOL_VERS);
}

}  // namespace

modem_api_service_slot_type* modem_api_service_slot(uint32_t type) {
    switch (type) {
        case MODEM_API_CLIENT_VS:
            return &g_vs_slot;
        case MODEM_API_CLIENT_SAR:
            return &g_sar_slot;
        case MODEM_API_CLIENT_NAS_0:
            return &g_nas_0_slot;
        case MODEM_API_CLIENT_NAS_1:
            return &g_nas_1_slot;
        default:
            return nullptr;
    }
}

void vs_init() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    fill(&g_vs_slot,
         vs_get_service_object_internal_v01(VS_V01_IDL_MAJOR_VERS, VS_V01_IDL_MINOR_VERS,
                                            VS_V01_IDL_TOOL_VERS),
         vs_client_command_cb);
}

void sar_init() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    fill(&g_sar_slot,
         sar_get_service_object_internal_v01(SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS,
                                             SAR_V01_IDL_TOOL_VERS),
         sar_client_command_cb);
}

void nas_0_init() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    fill(&g_nas_0_slot, nas_service(), nas_0_client_command_cb);
}

void nas_1_init() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    fill(&g_nas_1_slot, nas_service(), nas_1_client_command_cb);
}

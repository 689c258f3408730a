/* The SAR service: the modem's current device state index. */
#ifndef SAR_V01_H
#define SAR_V01_H

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

#define SAR_V01_IDL_MAJOR_VERS 1
#define SAR_V01_IDL_MINOR_VERS 0
#define SAR_V01_IDL_TOOL_VERS 6

/* The service object, or NULL when asked with other versions than the three above. It lives for ever. */
qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t idl_major, int32_t idl_minor,
                                                                int32_t library);

enum {
    SAR_SERVICE_ID = 17,
    SAR_GET_DSI_V01 = 2 /* its request has no elements */
};

typedef struct {
    qmi_response_type_v01 resp;
    uint8_t dsi_valid;
    uint32_t dsi;
    uint8_t reserved[24];
} sar_get_dsi_resp_msg_v01;

#ifdef __cplusplus
}

static_assert(sizeof(sar_get_dsi_resp_msg_v01) == 40, "layout");
static_assert(offsetof(sar_get_dsi_resp_msg_v01, dsi_valid) == 8, "layout");
static_assert(offsetof(sar_get_dsi_resp_msg_v01, dsi) == 12, "layout");
#endif
#endif

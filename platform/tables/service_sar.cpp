#include "sar_v01.h"
#include "service_tables.h"
#include "tables.h"

namespace seam {

namespace {

constexpr qmi_idl_element kGetDsiResponse[] = {
    kResult,
    optional(number(0x10, 4, VXK_FIELD(sar_get_dsi_resp_msg_v01, dsi)),
             VXK_FIELD(sar_get_dsi_resp_msg_v01, dsi_valid)),
};

constexpr qmi_idl_message kMessages[] = {
    {QMI_IDL_REQUEST, SAR_GET_DSI_V01, 0, nullptr, 0},
    message(QMI_IDL_RESPONSE, SAR_GET_DSI_V01, sizeof(sar_get_dsi_resp_msg_v01), kGetDsiResponse),
};

constexpr qmi_idl_service_object kService = service(SAR_SERVICE_ID, kMessages);

}  // namespace

qmi_idl_service_object_type sar_table() {
    return &kService;
}

}  // namespace seam

#include "service_tables.h"
#include "tables.h"
#include "user_identity_module_v01.h"

namespace seam {

namespace {

using GetCardStatusRequest = uim_get_card_status_req_msg_v01;
constexpr qmi_idl_element kGetCardStatusRequest[] = {
    optional(number(0x10, 1, VXK_FIELD(GetCardStatusRequest, extended_card_status)),
             VXK_FIELD(GetCardStatusRequest, extended_card_status_valid)),
};

constexpr qmi_idl_element kApplication[] = {
    number(1, VXK_FIELD(uim_application_v01, type)),
    number(1, VXK_FIELD(uim_application_v01, state)),
    number(1, VXK_FIELD(uim_application_v01, perso_state)),
    number(1, VXK_FIELD(uim_application_v01, perso_feature)),
    number(1, VXK_FIELD(uim_application_v01, perso_retries)),
    number(1, VXK_FIELD(uim_application_v01, perso_unblock_retries)),
    byte_array(0, 1, VXK_FIELD(uim_application_v01, aid_len), VXK_FIELD(uim_application_v01, aid)),
    number(1, VXK_FIELD(uim_application_v01, upin_replaces_pin1)),
    number(1, VXK_FIELD(uim_application_v01, pin1_state)),
    number(1, VXK_FIELD(uim_application_v01, pin1_retries)),
    number(1, VXK_FIELD(uim_application_v01, puk1_retries)),
    number(1, VXK_FIELD(uim_application_v01, pin2_state)),
    number(1, VXK_FIELD(uim_application_v01, pin2_retries)),
    number(1, VXK_FIELD(uim_application_v01, puk2_retries)),
};

constexpr qmi_idl_element kCard[] = {
    number(1, VXK_FIELD(uim_card_v01, card_state)),
    number(1, VXK_FIELD(uim_card_v01, upin_state)),
    number(1, VXK_FIELD(uim_card_v01, upin_retries)),
    number(1, VXK_FIELD(uim_card_v01, upuk_retries)),
    number(1, VXK_FIELD(uim_card_v01, error_code)),
    list(0, VXK_FIELD(uim_card_v01, application_count), VXK_FIELD(uim_card_v01, applications),
         sizeof(uim_application_v01), kApplication),
};

constexpr qmi_idl_element kCardStatus[] = {
    number(2, VXK_FIELD(uim_card_status_v01, index_gw_primary)),
    number(2, VXK_FIELD(uim_card_status_v01, index_1x_primary)),
    number(2, VXK_FIELD(uim_card_status_v01, index_gw_secondary)),
    number(2, VXK_FIELD(uim_card_status_v01, index_1x_secondary)),
    list(0, VXK_FIELD(uim_card_status_v01, card_count), VXK_FIELD(uim_card_status_v01, cards),
         sizeof(uim_card_v01), kCard),
};

using GetCardStatusResponse = uim_get_card_status_resp_msg_v01;
constexpr qmi_idl_element kGetCardStatusResponse[] = {
    kResult,
    optional(structure(0x10, offsetof(GetCardStatusResponse, card_status), kCardStatus),
             VXK_FIELD(GetCardStatusResponse, card_status_valid)),
    optional(structure(0x15, offsetof(GetCardStatusResponse, extended_card_status), kCardStatus),
             VXK_FIELD(GetCardStatusResponse, extended_card_status_valid)),
};

constexpr qmi_idl_element kPowerDownRequest[] = {
    number(0x01, 1, VXK_FIELD(uim_power_down_req_msg_v01, slot)),
};

using PowerUpRequest = uim_power_up_req_msg_v01;
constexpr qmi_idl_element kPowerUpRequest[] = {
    number(0x01, 1, VXK_FIELD(PowerUpRequest, slot)),
    optional(number(0x10, 1, VXK_FIELD(PowerUpRequest, ignore_hotswap_switch)),
             VXK_FIELD(PowerUpRequest, ignore_hotswap_switch_valid)),
    optional(number(0x11, 4, VXK_FIELD(PowerUpRequest, option)), VXK_FIELD(PowerUpRequest, option_valid)),
};

constexpr qmi_idl_element kPowerResponse[] = {kResult};

using SendApduRequest = uim_send_apdu_req_msg_v01;
constexpr qmi_idl_element kSendApduRequest[] = {
    number(0x01, 1, VXK_FIELD(SendApduRequest, slot)),
    byte_array(0x02, 2, VXK_FIELD(SendApduRequest, apdu_len), VXK_FIELD(SendApduRequest, apdu)),
    optional(number(0x10, 1, VXK_FIELD(SendApduRequest, channel_id)),
             VXK_FIELD(SendApduRequest, channel_id_valid)),
    optional(number(0x11, 1, VXK_FIELD(SendApduRequest, procedure_bytes)),
             VXK_FIELD(SendApduRequest, procedure_bytes_valid)),
};

using SendApduResponse = uim_send_apdu_resp_msg_v01;
constexpr qmi_idl_element kSendApduResponse[] = {
    kResult,
    optional(byte_array(0x10, 2, VXK_FIELD(SendApduResponse, apdu_len), VXK_FIELD(SendApduResponse, apdu)),
             VXK_FIELD(SendApduResponse, apdu_valid)),
};

using OpenChannelRequest = uim_open_logical_channel_req_msg_v01;
constexpr qmi_idl_element kOpenChannelRequest[] = {
    number(0x01, 1, VXK_FIELD(OpenChannelRequest, slot)),
    optional(byte_array(0x10, 1, VXK_FIELD(OpenChannelRequest, aid_len), VXK_FIELD(OpenChannelRequest, aid)),
             VXK_FIELD(OpenChannelRequest, aid_valid)),
    optional(number(0x11, 1, VXK_FIELD(OpenChannelRequest, file_control_information)),
             VXK_FIELD(OpenChannelRequest, file_control_information_valid)),
};

using ChannelRequest = uim_logical_channel_req_msg_v01;
constexpr qmi_idl_element kChannelRequest[] = {
    number(0x01, 1, VXK_FIELD(ChannelRequest, slot)),
    optional(number(0x11, 1, VXK_FIELD(ChannelRequest, channel_id)),
             VXK_FIELD(ChannelRequest, channel_id_valid)),
    optional(number(0x13, 1, VXK_FIELD(ChannelRequest, terminate_application)),
             VXK_FIELD(ChannelRequest, terminate_application_valid)),
};

using ChannelResponse = uim_logical_channel_resp_msg_v01;
constexpr qmi_idl_element kStatusWords[] = {
    number(1, VXK_FIELD(ChannelResponse, sw1)),
    number(1, VXK_FIELD(ChannelResponse, sw2)),
};
constexpr qmi_idl_element kCardResult =
    optional(structure(0x11, 0, kStatusWords), VXK_FIELD(ChannelResponse, card_result_valid));
constexpr qmi_idl_element kChannelResponse[] = {kResult, kCardResult};
constexpr qmi_idl_element kOpenChannelResponse[] = {
    kResult,
    optional(number(0x10, 1, VXK_FIELD(ChannelResponse, channel_id)),
             VXK_FIELD(ChannelResponse, channel_id_valid)),
    kCardResult,
    optional(byte_array(0x12, 1, VXK_FIELD(ChannelResponse, select_response_len),
                        VXK_FIELD(ChannelResponse, select_response)),
             VXK_FIELD(ChannelResponse, select_response_valid)),
};

constexpr qmi_idl_element kGetEidRequest[] = {
    number(0x01, 1, VXK_FIELD(uim_get_eid_req_msg_v01, slot)),
};

using GetEidResponse = uim_get_eid_resp_msg_v01;
constexpr qmi_idl_element kGetEidResponse[] = {
    kResult,
    optional(byte_array(0x10, 1, VXK_FIELD(GetEidResponse, eid_len), VXK_FIELD(GetEidResponse, eid)),
             VXK_FIELD(GetEidResponse, eid_valid)),
};

constexpr qmi_idl_element kRecoveryIndication[] = {
    number(0x01, 4, VXK_FIELD(uim_recovery_ind_msg_v01, word[0])),
    number(0x02, 4, VXK_FIELD(uim_recovery_ind_msg_v01, word[1])),
};

constexpr qmi_idl_message kMessages[] = {
    message(QMI_IDL_REQUEST, QMI_UIM_GET_CARD_STATUS_V01, sizeof(GetCardStatusRequest),
            kGetCardStatusRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_GET_CARD_STATUS_V01, sizeof(GetCardStatusResponse),
            kGetCardStatusResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_POWER_DOWN_V01, sizeof(uim_power_down_req_msg_v01), kPowerDownRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_POWER_DOWN_V01, sizeof(uim_power_resp_msg_v01), kPowerResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_POWER_UP_V01, sizeof(PowerUpRequest), kPowerUpRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_POWER_UP_V01, sizeof(uim_power_resp_msg_v01), kPowerResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_SEND_APDU_V01, sizeof(SendApduRequest), kSendApduRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_SEND_APDU_V01, sizeof(SendApduResponse), kSendApduResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_LOGICAL_CHANNEL_V01, sizeof(ChannelRequest), kChannelRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_LOGICAL_CHANNEL_V01, sizeof(ChannelResponse), kChannelResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_OPEN_LOGICAL_CHANNEL_V01, sizeof(OpenChannelRequest),
            kOpenChannelRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_OPEN_LOGICAL_CHANNEL_V01, sizeof(ChannelResponse),
            kOpenChannelResponse),
    message(QMI_IDL_REQUEST, QMI_UIM_GET_EID_V01, sizeof(uim_get_eid_req_msg_v01), kGetEidRequest),
    message(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_V01, sizeof(GetEidResponse), kGetEidResponse),
    message(QMI_IDL_INDICATION, QMI_UIM_RECOVERY_IND_V01, sizeof(uim_recovery_ind_msg_v01),
            kRecoveryIndication),
};

constexpr qmi_idl_service_object kService = service(UIM_SERVICE_ID, kMessages);

}  // namespace

qmi_idl_service_object_type uim_table() {
    return &kService;
}

}  // namespace seam

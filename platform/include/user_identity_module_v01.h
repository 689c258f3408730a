/* The UIM service: cards, their power, logical channels and APDUs, the EID of an embedded eUICC. */
#ifndef USER_IDENTITY_MODULE_V01_H
#define USER_IDENTITY_MODULE_V01_H

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

#define UIM_V01_IDL_MAJOR_VERS 1
#define UIM_V01_IDL_MINOR_VERS 100
#define UIM_V01_IDL_TOOL_VERS 6

/* The service object, or NULL when asked with other versions than the three above. It lives for ever. */
qmi_idl_service_object_type uim_get_service_object_internal_v01(int32_t idl_major, int32_t idl_minor,
                                                                int32_t library);

enum {
    UIM_SERVICE_ID = 11,

    QMI_UIM_GET_CARD_STATUS_V01 = 47,
    QMI_UIM_POWER_DOWN_V01 = 48,
    QMI_UIM_POWER_UP_V01 = 49,
    QMI_UIM_SEND_APDU_V01 = 59,
    QMI_UIM_LOGICAL_CHANNEL_V01 = 63,
    QMI_UIM_OPEN_LOGICAL_CHANNEL_V01 = 66,
    QMI_UIM_RECOVERY_IND_V01 = 97,
    QMI_UIM_GET_EID_V01 = 101,

    UIM_CARDS_MAX_V01 = 5,
    UIM_APPS_MAX_V01 = 8,
    UIM_AID_MAX_V01 = 32,
    UIM_SELECT_RESPONSE_MAX_V01 = 255,
    UIM_EID_LEN_V01 = 16,
    UIM_APDU_MAX_V01 = 1024
};

/* On the wire a slot is one byte; 1 is the first slot. */

typedef struct {
    uint8_t extended_card_status_valid;
    uint8_t extended_card_status;
} uim_get_card_status_req_msg_v01;

typedef struct {
    uint8_t type;
    uint8_t state;
    uint8_t perso_state;
    uint8_t perso_feature;
    uint8_t perso_retries;
    uint8_t perso_unblock_retries;
    uint8_t aid_len;
    uint8_t aid[UIM_AID_MAX_V01];
    uint8_t upin_replaces_pin1;
    uint8_t pin1_state;
    uint8_t pin1_retries;
    uint8_t puk1_retries;
    uint8_t pin2_state;
    uint8_t pin2_retries;
    uint8_t puk2_retries;
} uim_application_v01;

typedef struct {
    uint8_t card_state; /* 0 absent, 1 present, 2 error */
    uint8_t upin_state;
    uint8_t upin_retries;
    uint8_t upuk_retries;
    uint8_t error_code;
    uint8_t application_count;
    uim_application_v01 applications[UIM_APPS_MAX_V01];
    uint8_t reserved[11];
} uim_card_v01;

typedef struct {
    uint16_t index_gw_primary; /* 0xFFFF: none */
    uint16_t index_1x_primary;
    uint16_t index_gw_secondary;
    uint16_t index_1x_secondary;
    uint8_t card_count;
    uim_card_v01 cards[UIM_CARDS_MAX_V01];
} uim_card_status_v01;

typedef struct {
    qmi_response_type_v01 resp;
    uint8_t card_status_valid;
    uim_card_status_v01 card_status;
    uint8_t extended_card_status_valid;
    uim_card_status_v01 extended_card_status;
    uint8_t reserved[6736];
} uim_get_card_status_resp_msg_v01;

typedef struct {
    uint32_t slot;
} uim_power_down_req_msg_v01;

typedef struct {
    uint32_t slot;
    uint8_t ignore_hotswap_switch_valid;
    uint8_t ignore_hotswap_switch;
    uint8_t option_valid; /* of TLV 0x11, whose meaning is the modem's; sent as 0 */
    uint32_t option;
} uim_power_up_req_msg_v01;

/* Power down and power up. */
typedef struct {
    qmi_response_type_v01 resp;
} uim_power_resp_msg_v01;

typedef struct {
    uint32_t slot;
    uint32_t apdu_len;
    uint8_t apdu[UIM_APDU_MAX_V01];
    uint8_t channel_id_valid;
    uint8_t channel_id;
    uint8_t procedure_bytes_valid;
    uint32_t procedure_bytes;
    uint8_t reserved[16];
} uim_send_apdu_req_msg_v01;

typedef struct {
    qmi_response_type_v01 resp;
    uint8_t apdu_valid;
    uint32_t apdu_len;
    uint8_t apdu[UIM_APDU_MAX_V01];
    uint8_t reserved[12];
} uim_send_apdu_resp_msg_v01;

typedef struct {
    uint32_t slot;
    uint8_t aid_valid;
    uint32_t aid_len;
    uint8_t aid[UIM_AID_MAX_V01];
    uint8_t file_control_information_valid;
    uint32_t file_control_information;
} uim_open_logical_channel_req_msg_v01;

typedef struct {
    uint32_t slot;
    uint8_t aid_valid;
    uint32_t aid_len;
    uint8_t aid[UIM_AID_MAX_V01];
    uint8_t channel_id_valid;
    uint8_t channel_id;
    uint8_t file_control_information_valid;
    uint32_t file_control_information;
    uint8_t terminate_application_valid;
    uint8_t terminate_application;
} uim_logical_channel_req_msg_v01;

/* Opening and closing a logical channel. */
typedef struct {
    qmi_response_type_v01 resp;
    uint8_t channel_id_valid;
    uint8_t channel_id;
    uint8_t card_result_valid;
    uint8_t sw1;
    uint8_t sw2;
    uint8_t select_response_valid;
    uint32_t select_response_len;
    uint8_t select_response[UIM_SELECT_RESPONSE_MAX_V01];
    uint8_t reserved[1029];
} uim_logical_channel_resp_msg_v01;

typedef struct {
    uint32_t slot;
} uim_get_eid_req_msg_v01;

typedef struct {
    qmi_response_type_v01 resp;
    uint8_t eid_valid;
    uint32_t eid_len;
    uint8_t eid[UIM_EID_LEN_V01];
} uim_get_eid_resp_msg_v01;

typedef struct {
    uint32_t word[2];
    uint32_t reserved[2];
} uim_recovery_ind_msg_v01;

#ifdef __cplusplus
}

static_assert(sizeof(uim_get_card_status_req_msg_v01) == 2, "layout");
static_assert(sizeof(uim_application_v01) == 46, "layout");
static_assert(sizeof(uim_card_v01) == 385 && offsetof(uim_card_v01, card_state) == 0, "layout");
static_assert(sizeof(uim_get_card_status_resp_msg_v01) == 10616, "layout");
static_assert(sizeof(uim_power_down_req_msg_v01) == 4, "layout");
static_assert(sizeof(uim_power_up_req_msg_v01) == 12, "layout");
static_assert(offsetof(uim_power_up_req_msg_v01, ignore_hotswap_switch_valid) == 4, "layout");
static_assert(offsetof(uim_power_up_req_msg_v01, option_valid) == 6, "layout");
static_assert(offsetof(uim_power_up_req_msg_v01, option) == 8, "layout");
static_assert(sizeof(uim_power_resp_msg_v01) == 8, "layout");
static_assert(sizeof(uim_send_apdu_req_msg_v01) == 1056, "layout");
static_assert(offsetof(uim_send_apdu_req_msg_v01, apdu) == 8, "layout");
static_assert(offsetof(uim_send_apdu_req_msg_v01, channel_id_valid) == 1032, "layout");
static_assert(offsetof(uim_send_apdu_req_msg_v01, procedure_bytes_valid) == 1034, "layout");
static_assert(offsetof(uim_send_apdu_req_msg_v01, procedure_bytes) == 1036, "layout");
static_assert(sizeof(uim_send_apdu_resp_msg_v01) == 1052, "layout");
static_assert(offsetof(uim_send_apdu_resp_msg_v01, apdu_valid) == 8, "layout");
static_assert(offsetof(uim_send_apdu_resp_msg_v01, apdu_len) == 12, "layout");
static_assert(offsetof(uim_send_apdu_resp_msg_v01, apdu) == 16, "layout");
static_assert(sizeof(uim_open_logical_channel_req_msg_v01) == 52, "layout");
static_assert(offsetof(uim_open_logical_channel_req_msg_v01, aid) == 12, "layout");
static_assert(offsetof(uim_open_logical_channel_req_msg_v01, file_control_information_valid) == 44, "layout");
static_assert(offsetof(uim_open_logical_channel_req_msg_v01, file_control_information) == 48, "layout");
static_assert(sizeof(uim_logical_channel_req_msg_v01) == 56, "layout");
static_assert(offsetof(uim_logical_channel_req_msg_v01, channel_id_valid) == 44, "layout");
static_assert(offsetof(uim_logical_channel_req_msg_v01, file_control_information_valid) == 46, "layout");
static_assert(offsetof(uim_logical_channel_req_msg_v01, file_control_information) == 48, "layout");
static_assert(offsetof(uim_logical_channel_req_msg_v01, terminate_application_valid) == 52, "layout");
static_assert(sizeof(uim_logical_channel_resp_msg_v01) == 1304, "layout");
static_assert(offsetof(uim_logical_channel_resp_msg_v01, channel_id_valid) == 8, "layout");
static_assert(offsetof(uim_logical_channel_resp_msg_v01, card_result_valid) == 10, "layout");
static_assert(offsetof(uim_logical_channel_resp_msg_v01, sw2) == 12, "layout");
static_assert(sizeof(uim_get_eid_req_msg_v01) == 4, "layout");
static_assert(sizeof(uim_get_eid_resp_msg_v01) == 32, "layout");
static_assert(offsetof(uim_get_eid_resp_msg_v01, eid_valid) == 8, "layout");
static_assert(offsetof(uim_get_eid_resp_msg_v01, eid_len) == 12, "layout");
static_assert(offsetof(uim_get_eid_resp_msg_v01, eid) == 16, "layout");
static_assert(sizeof(uim_recovery_ind_msg_v01) == 16, "layout");
#endif
#endif

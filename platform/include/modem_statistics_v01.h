/* The modem-statistics service ("vs"): values by data id, and four indications. */
#ifndef MODEM_STATISTICS_V01_H
#define MODEM_STATISTICS_V01_H

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

#define VS_V01_IDL_MAJOR_VERS 1
#define VS_V01_IDL_MINOR_VERS 0
#define VS_V01_IDL_TOOL_VERS 6

/* The service object, or NULL when asked with other versions than the three above. It lives for ever. */
qmi_idl_service_object_type vs_get_service_object_internal_v01(int32_t idl_major, int32_t idl_minor,
                                                               int32_t library);

enum {
    VS_SERVICE_ID = 65509,

    VS_FEATURE_V01 = 3,
    VS_STATISTICS_V01 = 0x207,
    VS_STATUS_IND_V01 = 0x0004,
    VS_REPORT_IND_V01 = 0x0203,
    VS_BYTES_IND_V01 = 0x0204,
    VS_STATE_IND_V01 = 0x0601,

    VS_ENTRIES_MAX_V01 = 10,
    VS_REPORT_SECOND_MAX_V01 = 5,
    VS_VALUE_MAX_V01 = 700,
    VS_BYTES_IND_MAX_V01 = 100
};

/* The counts and lengths in responses and indications are kept as the modem sent them, at most the bound is
 * stored: a reader compares before it uses them. */

typedef struct {
    uint32_t value;
    uint8_t first_option_valid;
    uint8_t first_option;
    uint8_t second_option_valid;
    uint8_t second_option;
} vs_feature_req_msg_v01;

typedef struct {
    qmi_response_type_v01 resp;
} vs_feature_resp_msg_v01;

typedef struct {
    uint16_t sub;
    uint16_t type;
    uint32_t id;
    uint32_t value_len;
    uint8_t value[VS_VALUE_MAX_V01];
} vs_entry_v01;

typedef struct {
    uint16_t sub;
    uint16_t request_number;
    uint32_t entry_count;
    vs_entry_v01 entries[VS_ENTRIES_MAX_V01];
} vs_statistics_req_msg_v01;

typedef struct {
    qmi_response_type_v01 resp;
    uint8_t entries_valid;
    uint32_t entry_count;
    vs_entry_v01 entries[VS_ENTRIES_MAX_V01];
} vs_statistics_resp_msg_v01;

typedef struct {
    uint32_t value;
    uint8_t first_flag;
    uint8_t second_flag;
} vs_status_ind_msg_v01;

typedef struct {
    uint32_t id;
    uint16_t first;
    uint16_t second;
    uint32_t value_len;
    uint8_t value[VS_VALUE_MAX_V01];
} vs_report_entry_v01;

typedef struct {
    uint32_t value;
    uint32_t first_count;
    vs_report_entry_v01 first[VS_ENTRIES_MAX_V01];
    uint32_t second_count;
    vs_report_entry_v01 second[VS_REPORT_SECOND_MAX_V01];
    uint8_t last_valid;
    uint32_t last;
} vs_report_ind_msg_v01;

typedef struct {
    uint32_t value;
    uint32_t byte_count;
    uint8_t bytes[VS_BYTES_IND_MAX_V01];
    uint16_t first;
    uint16_t second;
} vs_bytes_ind_msg_v01;

typedef struct {
    uint8_t state;
} vs_state_ind_msg_v01;

#ifdef __cplusplus
}

static_assert(sizeof(vs_feature_req_msg_v01) == 8, "layout");
static_assert(offsetof(vs_feature_req_msg_v01, first_option_valid) == 4, "layout");
static_assert(sizeof(vs_feature_resp_msg_v01) == 8, "layout");
static_assert(sizeof(vs_entry_v01) == 712 && offsetof(vs_entry_v01, value) == 12, "layout");
static_assert(sizeof(vs_statistics_req_msg_v01) == 7128, "layout");
static_assert(offsetof(vs_statistics_req_msg_v01, entries) == 8, "layout");
static_assert(sizeof(vs_statistics_resp_msg_v01) == 7136, "layout");
static_assert(offsetof(vs_statistics_resp_msg_v01, entries_valid) == 8, "layout");
static_assert(offsetof(vs_statistics_resp_msg_v01, entries) == 16, "layout");
static_assert(sizeof(vs_report_entry_v01) == 712, "layout");
#endif
#endif

// The data of the events into which indications of the statistics service are turned. Counts and lengths
// never exceed the arrays they belong to.
#pragma once

#include <cstdint>

#include "modem_statistics_v01.h"

enum : int {
    MODEM_API_EVENT_STATUS = 2,
    MODEM_API_EVENT_REPORT = 3,
    MODEM_API_EVENT_BYTES = 4,
    MODEM_API_EVENT_STATE = 5
};

struct modem_api_status_event {
    uint32_t value;
    uint8_t first;  // 0 or 1
    uint8_t second;
};

struct modem_api_report_event {
    uint32_t value;
    uint32_t first_count;
    vs_report_entry_v01 first[VS_ENTRIES_MAX_V01];
    uint32_t second_count;
    vs_report_entry_v01 second[VS_REPORT_SECOND_MAX_V01];
    uint32_t last;  // 0xFFFFFFFF when it was not indicated
};

struct modem_api_bytes_event {
    uint32_t value;
    uint32_t count;
    uint32_t elements[VS_BYTES_IND_MAX_V01];
    uint16_t first;
    uint16_t second;
};

struct modem_api_state_event {
    uint8_t state;
};

static_assert(sizeof(modem_api_status_event) == 8 && sizeof(modem_api_report_event) == 10696 &&
                  sizeof(modem_api_bytes_event) == 412 && sizeof(modem_api_state_event) == 1,
              "layout");

// The statistics session of group 9, and the values that it fetches. Main thread only.
#pragma once

#include <cstdint>

#include "modem_statistics_v01.h"

/// Counts the fetches; printed as "number".
extern int32_t g_kolvo_req_number;

/// A fetched value, and how far it is consumed.
struct KolvoValue {
    uint8_t data[VS_VALUE_MAX_V01];
    int32_t data_left;  // bytes not consumed yet
    int32_t data_cnt;   // position of the next byte
    uint32_t data_id;
};

/// Frees what is left of a session before, and connects. Returns a result code of modem_api.h.
int kelvra_qmi_modem_stats_api_init();

/// Switches the modem's statistics feature on; a failure prints its line.
void kelvra_test_qmi_modem_stats_start();

/// Fetches one value of a subscription (0 or 1). Returns 0, or 1 after the line that says why not.
int kelvra_test_qmi_modem_stats_get(uint32_t sub, uint32_t data_id, KolvoValue* value);

/// Frees the client and releases the framework. Returns 0, or the framework's error.
int kelvra_qmi_modem_stats_api_deinit();

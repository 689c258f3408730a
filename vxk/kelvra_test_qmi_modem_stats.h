// Group 9: the statistics session, and the value that it fetched last. Main thread only.
#pragma once

#include <cstdint>

#include "modem_statistics_v01.h"

/// Counts the fetches; printed as "number".
extern int32_t g_kolvo_req_number;

/// The value of the last successful fetch and how much of it is consumed. The measurement commands consume
/// it.
extern uint8_t g_kolvo_data[VS_VALUE_MAX_V01];
extern int32_t g_kolvo_data_left;  // bytes not consumed yet
extern int32_t g_pK_DATA_CNT;      // position of the next byte
extern uint32_t g_kolvo_data_id;

/// Fetches one value of a subscription (0 or 1) into g_kolvo_data. Returns 0, or 1 after the line that says
/// why not.
int kelvra_test_qmi_modem_stats_get(uint32_t sub, uint32_t data_id);

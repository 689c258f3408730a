// The measurement commands of group 9: each fetches one value in the open session, decodes it and prints one
// line.
#pragma once

#include <cstdint>

/// Runs the measurement `opt` on a subscription; an unknown opt prints a line. Returns 0, or 1 when nothing
/// was fetched or the value was too short.
int kelvra_test_qmi_modem_stats_hdl(int opt, int sub);

// The measurements. Where several data ids share a layout the caller chooses; antenna info is always that of
// subscription 0.
int kelvra_test_qmi_modem_stats_4g_rssi(uint32_t sub, uint32_t data_id);
int kelvra_test_qmi_modem_stats_5g_rssi(uint32_t sub);
int kelvra_test_qmi_modem_stats_5g_snr(uint32_t sub);
int kelvra_test_qmi_modem_stats_5g_ant_diversity(uint32_t sub);
int kelvra_test_qmi_modem_stats_5g_rsrp(uint32_t sub, uint32_t data_id);
int kelvra_test_qmi_modem_stats_wcdma_rssi(uint32_t sub);
int kelvra_test_qmi_modem_stats_gsm_rssi(uint32_t sub);
int kelvra_test_qmi_modem_stats_ant_info(uint32_t sub);

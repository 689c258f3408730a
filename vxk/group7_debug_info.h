// The counters that the modem's statistics feature keeps about itself, and the verdict whether it runs and
// understands every diag log.
#pragma once

#include <cstdint>

/// Asks the modem for the counters. mask 0: prints the verdict; any other: prints all counters. A request
/// that fails prints its line.
void kelvra_test_modem_stats_get_debug_info_do(int mask);

/// Prints the verdict on a debug payload of at least kStatsCheckSize bytes; asks the modem for the diag logs
/// that it cannot parse when there are any.
constexpr uint32_t kStatsCheckSize = 26;
void kelvra_modem_stats_support_status_check(const uint8_t* payload);

/// Each prints one block in the layout of `version` and returns the bytes it takes, at most 95, which must be
/// there. cm and uim have one layout. A null block prints a line and takes 0.
int kelvra_modem_stats_main_info_unpk(const uint8_t* block, uint8_t version);
int kelvra_modem_stats_diag_info_unpk(const uint8_t* block, uint8_t version);
int kelvra_modem_stats_cm_info_unpk(const uint8_t* block, uint8_t version);
int kelvra_modem_stats_uim_info_unpk(const uint8_t* block, uint8_t version);

// The commands of group 5. Each takes the whole command line and returns 0 for success, or the code that the
// group reports.
#pragma once

#include <cstdint>

int kelvra_cmn_diag_cmd_send(int argc, char** argv);
int kelvra_cmn_esim_test(int argc, char** argv);

uint32_t kelvra_cmn_card_status_query(int argc, char** argv);
uint32_t kelvra_cmn_card_status_get(int argc, char** argv);
uint32_t kelvra_cmn_card_status_set(int argc, char** argv);
uint32_t kelvra_cmn_card_type_query(int argc, char** argv);
uint32_t kelvra_cmn_card_hotswap_test(int argc, char** argv);

/// The modem's SAR device state index, -1 when the modem could not be asked. Each call makes a client of its
/// own, which stays.
int kelvra_get_sar_dsi();

/// Prints the modem's SAR device state index, -1 when the modem could not be asked.
void kelvra_cmn_test_get_sar_dsi();

// The list of command groups. A group's function takes the whole command line, checks it, runs one command
// and prints the outcome; what it returns is its command's result, which the process does not report. Called
// by main, once a process.
#pragma once

#include "group.h"

extern const Group kNvGroup;
extern const Group kImeiGroup;
extern const Group kRfGroup;
extern const Group kNvefsGroup;
extern const Group kCmnGroup;
extern const Group kRawQmiGroup;
extern const Group kStatsGroup;
extern const Group kAtGroup;
extern const Group kStatsQmiGroup;
extern const Group kMbnGroup;
extern const Group kSmartGroup;

int kelvra_test_rf_do(int argc, char** argv);
int kelvra_test_nvefs_do(int argc, char** argv);
int kelvra_test_cmn_do(int argc, char** argv);
int kelvra_test_qmi_send_data_do(int argc, char** argv);
int kelvra_test_modem_stats_do(int argc, char** argv);
int kelvra_test_at_cmd_do(int argc, char** argv);
int kelvra_test_qmi_modem_stats_do(int argc, char** argv);
int kelvra_test_mbn_do(int argc, char** argv);
int kelvra_smart_test_do(int argc, char** argv);

/// The group of an option; null for none.
const Group* find_group(int option);

/// Prints the help of one group between the two banners; of all groups for 0, of none for a number that is no
/// group. Returns 0.
int show_help(int group);

// The command groups. Each takes the whole command line, checks it, runs one command and prints the outcome;
// what it returns is its command's result, which the process does not report. Called by main, once a process.
#pragma once

int kelvra_test_rf_do(int argc, char** argv);               // 3
int kelvra_test_nvefs_do(int argc, char** argv);            // 4
int kelvra_test_cmn_do(int argc, char** argv);              // 5
int kelvra_test_qmi_send_data_do(int argc, char** argv);    // 6
int kelvra_test_modem_stats_do(int argc, char** argv);      // 7
int kelvra_test_at_cmd_do(int argc, char** argv);           // 8
int kelvra_test_qmi_modem_stats_do(int argc, char** argv);  // 9
int kelvra_test_mbn_do(int argc, char** argv);              // 10
int kelvra_smart_test_do(int argc, char** argv);            // 11

// Raw diag commands to the modem, over the callback road (one registered callback for all responses) or the
// DCI road (a client of its own for each command), with or without waiting for the response. Commands with a
// result run one at a time.
#pragma once

#include <cstdint>

/// The longest command, and the longest buffer that the hex printer prints, in bytes.
constexpr int DIAG_CMD_MAX = 4096;
/// The longest response, and the size of the caller's reply buffer, in bytes.
constexpr int DIAG_RSP_BUF_MAX = 10240;

/// Sends cmd_len bytes (1 to DIAG_CMD_MAX) and waits for the response. time_out is in milliseconds, in steps
/// of 100: the callback road takes 1 to 60000 and makes 3000 of anything else, the DCI road takes any value;
/// below 100 both wait 100. reply_buf has DIAG_RSP_BUF_MAX bytes; *p_reply_len is its size, 1 or more, and
/// becomes the number of bytes copied there: a longer response is cut. Returns 0 when a response came, 1 for
/// bad arguments, a failing step or a time-out. Any thread.
int kelvra_diag_cmd_send_with_result_by_callback_mode(uint8_t* cmd, int cmd_len, int time_out,
                                                      uint8_t* reply_buf, int* p_reply_len);
int kelvra_diag_cmd_send_with_result_by_dci_mode(uint8_t* cmd, int cmd_len, int time_out, uint8_t* reply_buf,
                                                 int* p_reply_len);

/// Copies the command and starts a detached worker that sends it: over the callback road when
/// diag_work_mode is 0, else over the DCI road. Responses are only logged. Nothing waits for the worker,
/// which fails in the log alone. Returns 0, or 1 for a bad command or when memory ran out. Any thread;
/// workers run one at a time.
int kelvra_diag_cmd_send_without_result_start_thread(const uint8_t* cmd, int cmd_len, int diag_work_mode);

/// Logs 1 to DIAG_CMD_MAX bytes as one line of upper-case hex; anything else is logged as
/// invalid. Any thread.
void kelvra_print_data_with_hex(const uint8_t* data, int len);

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

constexpr int kTickMs = 100;
constexpr int kTimeOutMaxMs = 60000;
constexpr int kDefaultTimeOutMs = 3000;

struct Request {
    const char* function;
    uint8_t* cmd;
    int cmd_len;
    int time_out;
    uint8_t* reply_buf;
    int* p_reply_len;
};

// The diag library's callbacks of the DCI road return nothing.
void dci_response(unsigned char* ptr, int len, void* data) {
    kelvra_diag_cmd_response_by_dci(ptr, len, data);
}
void dci_logs(unsigned char* ptr, int len) {
    kelvra_diag_cmd_response_by_dci_log_stream(ptr, len);
}
void dci_events(unsigned char* ptr, int len) {
    kelvra_diag_cmd_response_by_dci_event_stream(ptr, len);
}

int checked(const Request& request, int (*road)(const Request& request)) {
    const DiagLock one_command_at_a_time(g_diag_send_mutex);
    if (kelvra_diag_comand_input_check(request.cmd, request.cmd_len) != 0) {
        KELVRA_LOGD_AS(request.function, "kelvra_diag_comand_param_check fail");
        return 1;
    }
    if (kelvra_diag_comand_output_check(request.reply_buf, request.p_reply_len) != 0) {
        KELVRA_LOGD_AS(request.function, "kelvra_diag_comand_output_check fail");
        return 1;
    }
    kelvra_diag_init_with_result();
    diag_response_begin();
    return road(request);
}

// What the wait thread counts up to. Set before it starts, so that its first look finds both.
int start_waiting(int time_out) {
    const int ticks = time_out / kTickMs;
    g_diag_wait_flag = 1;
    g_diag_wait_limit = ticks;
    return ticks;
}

int await(const Request& request, bool keep_response) {
    return diag_response_await(
        {request.function, request.reply_buf, *request.p_reply_len, request.p_reply_len, keep_response});
}

int send_by_callback(const Request& request) {
    int result = diag_send_by_callback(request.function, kelvra_diag_cmd_response_by_callback, request.cmd,
                                       request.cmd_len);
    if (result != 0) {
        KELVRA_LOGD_AS(request.function, "Fail to send diag cmd");
        result = 1;
    } else {
        int time_out = request.time_out;
        if (time_out < 1 || time_out > kTimeOutMaxMs) {
            KELVRA_LOGD_AS(request.function, "Time out is invalid, set default");
            time_out = kDefaultTimeOutMs;
        }
        const int ticks = start_waiting(time_out);
        KELVRA_LOGD_AS(request.function, "Command time = %d * 100ms", ticks);
        result = await(request, true);
    }
    diag_leave_callback_road();
    kelvra_diag_deinit_with_result();
    return result;
}

int await_dci(const void* context) {
    const Request& request = *static_cast<const Request*>(context);
    const int ticks = start_waiting(request.time_out);
    KELVRA_LOGD_AS(request.function, "Dci Command time = %d", ticks);
    return await(request, false);
}

int send_by_dci(const Request& request) {
    return diag_run_dci({request.function, request.cmd, request.cmd_len, dci_logs, dci_events, dci_response,
                         await_dci, &request, kelvra_diag_deinit_with_result});
}

}  // namespace

int kelvra_diag_cmd_send_with_result_by_callback_mode(uint8_t* cmd, int cmd_len, int time_out,
                                                      uint8_t* reply_buf, int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    return checked({__func__, cmd, cmd_len, time_out, reply_buf, p_reply_len}, send_by_callback);
}

int kelvra_diag_cmd_send_with_result_by_dci_mode(uint8_t* cmd, int cmd_len, int time_out, uint8_t* reply_buf,
                                                 int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    return checked({__func__, cmd, cmd_len, time_out, reply_buf, p_reply_len}, send_by_dci);
}

// A command without a result: a detached worker sends it, keeps its road open for a while, and closes it.
// Responses are only logged.
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"
#include "lock.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

// How long a road stays open for the response.
constexpr unsigned kCallbackGraceMicroseconds = 200000;
constexpr unsigned kDciGraceSeconds = 1;

// Held by each worker for its whole run.
pthread_mutex_t g_diag_async_mutex = PTHREAD_MUTEX_INITIALIZER;

// A worker's command, one heap block, which the worker frees.
struct DiagCmdParam {
    int32_t length;
    uint8_t bytes[1];  // `length` of them, and one spare
};

int kelvra_diag_cmd_response_by_callback_no_handle(unsigned char*, int len, void*) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
    return 0;
}

void kelvra_diag_cmd_response_by_dci_no_handle(unsigned char*, int len, void*) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
}

void kelvra_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char*, int len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
}

void kelvra_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char*, int len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
}

constexpr DiagDciListeners kListeners = {kelvra_diag_cmd_response_by_dci_log_stream_no_handle,
                                         kelvra_diag_cmd_response_by_dci_event_stream_no_handle,
                                         kelvra_diag_cmd_response_by_dci_no_handle};

void send_by_callback(const char* function, DiagCmdParam& command) {
    const DiagCallbackRoad road(kelvra_diag_cmd_response_by_callback_no_handle);
    DiagCallbackRoad::send(function, command.bytes, command.length);
    usleep(kCallbackGraceMicroseconds);
}

void send_by_dci(const char* function, DiagCmdParam& command, DiagSession& session) {
    DiagDciRoad road(function, session);
    if (road.send(command.bytes, command.length, kListeners))
        sleep(kDciGraceSeconds);
}

void run_worker(const char* function, void* param, bool dci) {
    diag_name_this_thread();
    const Lock one_worker_at_a_time(g_diag_async_mutex);
    if (param == nullptr) {
        KELVRA_LOGD_AS(function, "param is null");
        return;
    }
    auto* const command = static_cast<DiagCmdParam*>(param);
    KELVRA_LOGD_AS(function, "data_len = %d", command->length);
    DiagSession session(DiagSession::kWorker);
    if (!session.is_open())
        KELVRA_LOGD_AS(function, "LSM init failed");
    else if (dci)
        send_by_dci(function, *command, session);
    else
        send_by_callback(function, *command);
    free(command);
}

void* kelvra_diag_cmd_send_without_result_by_callback_mode_thread_proc(void* param) {
    KELVRA_LOG_SCOPE();
    run_worker(__func__, param, false);
    return nullptr;
}

void* kelvra_diag_cmd_send_without_result_by_dci_mode_thread_proc(void* param) {
    KELVRA_LOG_SCOPE();
    run_worker(__func__, param, true);
    return nullptr;
}

}  // namespace

int kelvra_diag_cmd_send_without_result_start_thread(const uint8_t* cmd, int cmd_len, int diag_work_mode) {
    KELVRA_LOG_SCOPE();
    if (kelvra_diag_comand_input_check(cmd, cmd_len) != 0) {
        KELVRA_LOGD("kelvra_diag_comand_input_check fail");
        return 1;
    }
    const auto length = static_cast<size_t>(cmd_len);
    auto* const command = static_cast<DiagCmdParam*>(malloc(offsetof(DiagCmdParam, bytes) + length + 1));
    if (command == nullptr) {
        KELVRA_LOGE("Failed to allocate memory for ptr_out");
        return 1;
    }
    command->length = cmd_len;
    memcpy(command->bytes, cmd, length);

    pthread_t thread;
    const int result = diag_start_thread(
        &thread,
        diag_work_mode != 0 ? kelvra_diag_cmd_send_without_result_by_dci_mode_thread_proc
                            : kelvra_diag_cmd_send_without_result_by_callback_mode_thread_proc,
        command);
    if (result != 0)
        free(command);
    KELVRA_LOGD("kelvra daig is created, conf = %d, diag_work_mode = %d", result, diag_work_mode);
    return 0;
}

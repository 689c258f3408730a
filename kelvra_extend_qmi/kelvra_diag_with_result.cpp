// A command with a result. Three threads meet at its response: the sender waits for it, the diag library's
// thread brings it, and the wait thread gives up. The semaphore only wakes the sender; whether it may go on
// is `released`, decided once, under the guard, together with the bytes. So a post that comes late wakes
// nobody for nothing, a time-out is never taken for a response, and the wait thread of a command that is over
// finds another command's number and ends.
#include <semaphore.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"
#include "lock.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

constexpr int kTickMs = 100;
constexpr int kDefaultTicks = 30;
constexpr int kTimeOutMaxMs = 60000;
constexpr int kDefaultTimeOutMs = 3000;
// A DCI piece of exactly this size is followed by another one.
constexpr int kFullPiece = 4096;

// Held for a whole command.
pthread_mutex_t g_diag_send_mutex = PTHREAD_MUTEX_INITIALIZER;

// The guard of all that follows; the DCI handler holds it for a whole piece.
pthread_mutex_t g_diag_dci_rsp_mutex = PTHREAD_MUTEX_INITIALIZER;
struct {
    uint8_t* data;
    int32_t length;
    uint8_t* prev;  // the pieces held so far, while a further one is appended
} g_qcril_diag_rsp_buf;
uint8_t g_diag_wait_flag = 0;               // 1: a sender waits
int32_t g_diag_wait_limit = kDefaultTicks;  // in ticks of 100 ms
uint8_t g_diag_timeout_flag = 0;            // 1: the wait thread has given up
uintptr_t g_command = 0;                    // number of the last command that began
bool g_released = false;                    // its sender may go on

// Wakes the sender. It lives as long as the process, so that no post can come too late for it.
sem_t g_diag_rsp_sem;
[[maybe_unused]] const int g_sem_made = sem_init(&g_diag_rsp_sem, 0, 0);

pthread_t g_diag_wait_thread;  // used by the sender alone

// Wakes the sender when the function that declares it first is left: the function's own lines are all printed
// by then, and the sender's come behind them.
struct Wake {
    bool due = false;
    ~Wake() {
        if (due)
            sem_post(&g_diag_rsp_sem);
    }
};

uint8_t* allocate(int len) {
    return static_cast<uint8_t*>(malloc(static_cast<size_t>(len) + 1));
}

void copy(uint8_t* to, const uint8_t* from, int len) {
    memcpy(to, from, static_cast<size_t>(len));
}

void free_response() {
    free(g_qcril_diag_rsp_buf.prev);
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.prev = nullptr;
    g_qcril_diag_rsp_buf.data = nullptr;
}

// The three below are called under the guard; each returns the name of the block that could not be
// had, or null.

const char* replace_response(const uint8_t* ptr, int len, const char* block_name) {
    uint8_t* const block = allocate(len);
    if (block == nullptr)
        return block_name;
    copy(block, ptr, len);
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = block;
    g_qcril_diag_rsp_buf.length = len;
    return nullptr;
}

const char* append_to_response(const uint8_t* ptr, int len) {
    auto& held = g_qcril_diag_rsp_buf;
    const int before = held.length;
    uint8_t* const prev = allocate(before);
    if (prev == nullptr)
        return "ptr_out_2";
    copy(prev, held.data, before);
    free(held.prev);
    held.prev = prev;

    int total = 0;
    uint8_t* const block = __builtin_add_overflow(before, len, &total) ? nullptr : allocate(total);
    if (block == nullptr)
        return "ptr_out_3";
    copy(block, prev, before);
    copy(block + before, ptr, len);
    free(held.data);
    held.data = block;
    held.length = total;
    return nullptr;
}

const char* add_piece(const uint8_t* ptr, int len) {
    return g_qcril_diag_rsp_buf.data == nullptr ? replace_response(ptr, len, "ptr_out_1")
                                                : append_to_response(ptr, len);
}

// Callbacks of the diag library, on its thread: they store the response and wake the sender. 0: stored.

int kelvra_diag_cmd_response_by_callback(unsigned char* ptr, int len, void* context_data) {
    Wake wake;
    KELVRA_LOG_SCOPE();
    if (kelvra_diag_cmd_response_check(ptr, len, context_data) != 0) {
        KELVRA_LOGD("kelvra_diag_cmd_response_check fail");
        return 1;
    }
    const Lock lock(g_diag_dci_rsp_mutex);
    if (const char* const failed = replace_response(ptr, len, "ptr_out"); failed != nullptr) {
        KELVRA_LOGE("Failed to allocate memory for %s", failed);
        return 1;
    }
    KELVRA_LOGD("callback, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    g_released = true;
    wake.due = true;
    return 0;
}

int kelvra_diag_cmd_response_by_dci(unsigned char* ptr, int len, void* context_data) {
    Wake wake;
    KELVRA_LOG_SCOPE();
    const Lock lock(g_diag_dci_rsp_mutex);
    if (kelvra_diag_cmd_response_check(ptr, len, context_data) != 0) {
        KELVRA_LOGD("kelvra_diag_cmd_response_check fail");
        return 1;
    }
    if (const char* const failed = add_piece(ptr, len); failed != nullptr) {
        KELVRA_LOGE("Failed to allocate memory for %s", failed);
        return 1;
    }
    KELVRA_LOGD("response, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    if (len != kFullPiece) {
        g_released = true;
        wake.due = true;
    }
    return 0;
}

int kelvra_diag_cmd_response_by_dci_log_stream(unsigned char* ptr, int len) {
    KELVRA_LOG_SCOPE();
    kelvra_print_data_with_hex(ptr, len);
    return 0;
}

int kelvra_diag_cmd_response_by_dci_event_stream(unsigned char* ptr, int len) {
    KELVRA_LOG_SCOPE();
    kelvra_print_data_with_hex(ptr, len);
    return 0;
}

// The diag library's callbacks of the DCI road return nothing.
constexpr DiagDciListeners kListeners = {
    [](unsigned char* ptr, int len) { kelvra_diag_cmd_response_by_dci_log_stream(ptr, len); },
    [](unsigned char* ptr, int len) { kelvra_diag_cmd_response_by_dci_event_stream(ptr, len); },
    [](unsigned char* ptr, int len, void* data) { kelvra_diag_cmd_response_by_dci(ptr, len, data); },
};

bool goes_on_waiting(uintptr_t command, int ticks) {
    const Lock lock(g_diag_dci_rsp_mutex);
    return command == g_command && g_diag_wait_flag == 1 && ticks < g_diag_wait_limit;
}

// Whether the sender of this command is to be woken without waiting longer for its response.
bool give_up(uintptr_t command, const char* function) {
    const Lock lock(g_diag_dci_rsp_mutex);
    if (command != g_command)
        return false;
    const int length = g_qcril_diag_rsp_buf.length;
    if (length != 0 && length % kFullPiece == 0) {
        KELVRA_LOGD_AS(function, "stop waiting, receive success, length is times of 4096");
    } else if (g_diag_wait_flag == 1 && !g_released) {
        KELVRA_LOGD_AS(function, "stop waiting");
        g_diag_timeout_flag = 1;
    } else {
        return false;
    }
    g_released = true;
    return true;
}

// The thread that gives up for the sender. Its argument is the number of the command, as a pointer.
void* kelvra_diag_cmd_send_with_result_wait_thread_proc(void* command) {
    diag_name_this_thread();
    Wake wake;
    KELVRA_LOG_SCOPE();
    const auto number = reinterpret_cast<uintptr_t>(command);
    int count = 0;
    do {
        usleep(kTickMs * 1000);
        ++count;
        KELVRA_LOGD("%s, cnt_of_100ms = %d", __func__, count);
    } while (goes_on_waiting(number, count));
    wake.due = give_up(number, __func__);
    return nullptr;
}

void kelvra_diag_cmd_send_with_result_wait_create_thread(uintptr_t number) {
    KELVRA_LOG_SCOPE();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number that fits the argument needs no block to be freed
    void* const command = reinterpret_cast<void*>(number);
    const int result =
        diag_start_thread(&g_diag_wait_thread, kelvra_diag_cmd_send_with_result_wait_thread_proc, command);
    KELVRA_LOGD("kelvra daig is created, conf = %d", result);
}

bool is_released() {
    const Lock lock(g_diag_dci_rsp_mutex);
    return g_released;
}

struct Request {
    const char* function;
    uint8_t* cmd;
    int cmd_len;
    uint8_t* reply_buf;
    int* p_reply_len;
};

// 0: good.
int check(const Request& request) {
    if (kelvra_diag_comand_input_check(request.cmd, request.cmd_len) != 0) {
        KELVRA_LOGD_AS(request.function, "kelvra_diag_comand_param_check fail");
        return 1;
    }
    if (kelvra_diag_comand_output_check(request.reply_buf, request.p_reply_len) != 0) {
        KELVRA_LOGD_AS(request.function, "kelvra_diag_comand_output_check fail");
        return 1;
    }
    return 0;
}

// Forgets the response of the command before. Called before this one registers for responses.
void begin_response() {
    const Lock lock(g_diag_dci_rsp_mutex);
    ++g_command;
    g_released = false;
    free_response();
    g_qcril_diag_rsp_buf.length = 0;
}

// Sets what the wait thread counts up to, before it starts. Returns the number of the command.
uintptr_t begin_wait(int ticks) {
    const Lock lock(g_diag_dci_rsp_mutex);
    g_diag_wait_flag = 1;
    g_diag_wait_limit = ticks;
    return g_command;
}

enum class AfterCopy { kKeepResponse, kFreeResponse };

// Waits and copies the response out. Returns 0 when a response came, 1 when time ran out.
int await_response(const Request& request, uintptr_t command, AfterCopy after) {
    kelvra_diag_cmd_send_with_result_wait_create_thread(command);
    do {
        sem_wait(&g_diag_rsp_sem);
    } while (!is_released());

    const Lock lock(g_diag_dci_rsp_mutex);
    g_diag_wait_flag = 0;
    g_diag_wait_limit = kDefaultTicks;
    const int reply_len = *request.p_reply_len;
    const int length = g_qcril_diag_rsp_buf.length;
    const int copied = std::min(length, reply_len);
    KELVRA_LOGD_AS(request.function,
                   "req end, data_size = %d, g_qcril_diag_rsp_buf.length = %d, reply_len = %d", copied,
                   length, reply_len);
    *request.p_reply_len = copied;
    if (copied > 0)
        copy(request.reply_buf, g_qcril_diag_rsp_buf.data, std::min(copied, DIAG_RSP_BUF_MAX));
    if (after == AfterCopy::kFreeResponse)
        free_response();
    const int result = g_diag_timeout_flag;
    g_diag_timeout_flag = 0;
    return result;
}

}  // namespace

int kelvra_diag_cmd_send_with_result_by_callback_mode(uint8_t* cmd, int cmd_len, int time_out,
                                                      uint8_t* reply_buf, int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    const Request request{__func__, cmd, cmd_len, reply_buf, p_reply_len};
    const Lock one_command_at_a_time(g_diag_send_mutex);
    if (check(request) != 0)
        return 1;
    const DiagSession session(DiagSession::kWithResult);
    begin_response();
    const DiagCallbackRoad road(kelvra_diag_cmd_response_by_callback);
    if (DiagCallbackRoad::send(__func__, cmd, cmd_len) != 0) {
        KELVRA_LOGD("Fail to send diag cmd");
        return 1;
    }
    if (time_out < 1 || time_out > kTimeOutMaxMs) {
        KELVRA_LOGD("Time out is invalid, set default");
        time_out = kDefaultTimeOutMs;
    }
    const int ticks = time_out / kTickMs;
    const uintptr_t command = begin_wait(ticks);
    KELVRA_LOGD("Command time = %d * 100ms", ticks);
    return await_response(request, command, AfterCopy::kKeepResponse);
}

int kelvra_diag_cmd_send_with_result_by_dci_mode(uint8_t* cmd, int cmd_len, int time_out, uint8_t* reply_buf,
                                                 int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    const Request request{__func__, cmd, cmd_len, reply_buf, p_reply_len};
    const Lock one_command_at_a_time(g_diag_send_mutex);
    if (check(request) != 0)
        return 1;
    DiagSession session(DiagSession::kWithResult);
    begin_response();
    DiagDciRoad road(__func__, session);
    if (!road.send(cmd, cmd_len, kListeners))
        return 1;
    const int ticks = time_out / kTickMs;
    const uintptr_t command = begin_wait(ticks);
    KELVRA_LOGD("Dci Command time = %d", ticks);
    return await_response(request, command, AfterCopy::kFreeResponse);
}

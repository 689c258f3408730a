// Three threads meet at a response: the sender waits for it, the diag library's thread brings it, and the
// wait thread gives up. The semaphore only wakes the sender; whether it may go on is g_released, which is
// decided once, under the guard, together with the bytes. So a post that comes late wakes nobody for nothing,
// a time-out is never taken for a response, and the wait thread of a command that is over finds another
// command's number and ends.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

DiagResponse g_qcril_diag_rsp_buf{nullptr, {0}, nullptr};
sem_t g_diag_rsp_sem;
std::atomic<uint8_t> g_diag_wait_flag{0};
std::atomic<int32_t> g_diag_wait_limit{kDiagDefaultTicks};
std::atomic<uint8_t> g_diag_timeout_flag{0};
pthread_t g_diag_wait_thread;

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

constexpr unsigned kTickMicroseconds = 100000;

[[maybe_unused]] const int g_sem_made = sem_init(&g_diag_rsp_sem, 0, 0);

pthread_mutex_t g_guard = PTHREAD_MUTEX_INITIALIZER;
std::atomic<uintptr_t> g_command{0};  // number of the last command that began
std::atomic<bool> g_released{false};  // its sender may go on

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

// Wakes the sender when the function that declares it first is left: the function's own lines are all printed
// by then, and the sender's come behind them.
struct Wake {
    bool due = false;
    ~Wake() {
        if (due)
            sem_post(&g_diag_rsp_sem);
    }
};

// The three below are called under the guard; each returns the name of the block that could not be had, or
// null.

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
    DiagResponse& held = g_qcril_diag_rsp_buf;
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

// Whether the sender of this command is to be woken without waiting longer for its response.
bool give_up(uintptr_t command, const char* function) {
    const DiagLock lock(g_guard);
    if (command != g_command)
        return false;
    const int length = g_qcril_diag_rsp_buf.length;
    if (length != 0 && length % kDiagFullPiece == 0) {
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

}  // namespace

void diag_response_begin() {
    const DiagLock lock(g_guard);
    ++g_command;
    g_released = false;
    free_response();
    g_qcril_diag_rsp_buf.length = 0;
}

int kelvra_diag_cmd_response_by_callback(unsigned char* ptr, int len, void* context_data) {
    Wake wake;
    KELVRA_LOG_SCOPE();
    if (kelvra_diag_cmd_response_check(ptr, len, context_data) != 0) {
        KELVRA_LOGD("kelvra_diag_cmd_response_check fail");
        return 1;
    }
    const char* failed = nullptr;
    {
        const DiagLock lock(g_guard);
        failed = replace_response(ptr, len, "ptr_out");
        if (failed == nullptr)
            g_released = true;
    }
    if (failed != nullptr) {
        KELVRA_LOGE("Failed to allocate memory for %s", failed);
        return 1;
    }
    KELVRA_LOGD("callback, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    wake.due = true;
    return 0;
}

int kelvra_diag_cmd_response_by_dci(unsigned char* ptr, int len, void* context_data) {
    Wake wake;
    KELVRA_LOG_SCOPE();
    const DiagLock one_piece_at_a_time(g_diag_dci_rsp_mutex);
    if (kelvra_diag_cmd_response_check(ptr, len, context_data) != 0) {
        KELVRA_LOGD("kelvra_diag_cmd_response_check fail");
        return 1;
    }
    const bool last = len != kDiagFullPiece;
    const char* failed = nullptr;
    {
        const DiagLock lock(g_guard);
        failed = add_piece(ptr, len);
        if (failed == nullptr && last)
            g_released = true;
    }
    if (failed != nullptr) {
        KELVRA_LOGE("Failed to allocate memory for %s", failed);
        return 1;
    }
    KELVRA_LOGD("response, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    if (last)
        wake.due = true;
    return 0;
}

int diag_response_await(const DiagWait& wait) {
    kelvra_diag_cmd_send_with_result_wait_create_thread();
    do {
        sem_wait(&g_diag_rsp_sem);
    } while (!g_released);

    int length = 0;
    int copied = 0;
    bool timed_out = false;
    {
        const DiagLock lock(g_guard);
        g_diag_wait_flag = 0;
        g_diag_wait_limit = kDiagDefaultTicks;
        length = g_qcril_diag_rsp_buf.length;
        copied = std::min(length, wait.reply_len);
        *wait.p_reply_len = copied;
        if (copied > 0)
            copy(wait.reply_buf, g_qcril_diag_rsp_buf.data, std::min(copied, DIAG_RSP_BUF_MAX));
        if (!wait.keep_response)
            free_response();
        timed_out = g_diag_timeout_flag.exchange(0) == 1;
    }
    KELVRA_LOGD_AS(wait.function, "req end, data_size = %d, g_qcril_diag_rsp_buf.length = %d, reply_len = %d",
                   copied, length, wait.reply_len);
    return timed_out ? 1 : 0;
}

void kelvra_diag_cmd_send_with_result_wait_create_thread() {
    KELVRA_LOG_SCOPE();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number that fits the argument needs no block to be freed
    void* const command = reinterpret_cast<void*>(g_command.load());
    const int result =
        diag_start_thread(&g_diag_wait_thread, kelvra_diag_cmd_send_with_result_wait_thread_proc, command);
    KELVRA_LOGD("kelvra daig is created, conf = %d", result);
}

void* kelvra_diag_cmd_send_with_result_wait_thread_proc(void* command) {
    diag_name_this_thread();
    Wake wake;
    KELVRA_LOG_SCOPE();
    const auto number = reinterpret_cast<uintptr_t>(command);
    int count = 0;
    do {
        usleep(kTickMicroseconds);
        ++count;
        KELVRA_LOGD("%s, cnt_of_100ms = %d", __func__, count);
    } while (number == g_command && g_diag_wait_flag == 1 && count < g_diag_wait_limit);
    wake.due = give_up(number, __func__);
    return nullptr;
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

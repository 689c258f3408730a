// What the files of the diag transport share: the session, the steps that two roads have in common, and the
// response of the command that waits. Nothing outside the unit includes this, except its tests.
#pragma once

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cstdint>

#include "diag_lsm.h"

// State. The session's belongs to kelvra_diag_session.cpp, the response's to kelvra_diag_response.cpp.

/// 0: no session; n: open, and n callers have asked for it.
extern std::atomic<int32_t> g_diag_init_status;
/// Names of the processor heard last and of the remote processors, for the log. Guarded within the session.
extern char g_diag_channel_name[51];
extern char g_diag_mask_name[101];
/// Held for a whole command with a result, by the response handler of the DCI road, and for a worker's whole
/// run. Never destroyed, and neither is anything else that a detached thread uses: it may outlive main.
extern pthread_mutex_t g_diag_send_mutex;
extern pthread_mutex_t g_diag_dci_rsp_mutex;
extern pthread_mutex_t g_diag_async_mutex;

/// The response of the command that waits. The bytes are used under the response's own guard alone.
struct DiagResponse {
    uint8_t* data;
    std::atomic<int32_t> length;
    uint8_t* prev;  // the pieces held so far, while a further one is appended
};
extern DiagResponse g_qcril_diag_rsp_buf;
/// Wakes the sender. It lives as long as the process, so that no post can come too late for it; a session
/// that opens sets it to 0.
extern sem_t g_diag_rsp_sem;
extern std::atomic<uint8_t> g_diag_wait_flag;     // 1: a sender waits
extern std::atomic<int32_t> g_diag_wait_limit;    // in ticks of 100 ms
extern std::atomic<uint8_t> g_diag_timeout_flag;  // 1: the wait thread has given up
extern pthread_t g_diag_wait_thread;              // used by the sender alone

constexpr int kDiagDefaultTicks = 30;
/// A DCI piece of exactly this size is followed by another one.
constexpr int kDiagFullPiece = 4096;

class DiagLock {
public:
    explicit DiagLock(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
    ~DiagLock() { pthread_mutex_unlock(&mutex_); }
    DiagLock(const DiagLock&) = delete;
    DiagLock& operator=(const DiagLock&) = delete;

private:
    pthread_mutex_t& mutex_;
};

// Session

/// Opens the session, or counts one more caller. A failure is only logged.
void kelvra_diag_init_with_result();
/// Closes the session, whoever else has asked for it.
void kelvra_diag_deinit_with_result();
/// Registers `callback` for the local processor and for every remote one. Its context is an int, the
/// processor's number, which lives as long as the process.
void kelvra_diag_register_callback(diag_response_cb callback);
/// Writes the name of the mask's lowest bit, if it has one, to g_diag_mask_name and returns that.
const char* kelvra_print_diag_mask_name(uint16_t mask);
/// Keeps `name` in g_diag_channel_name. Any thread.
void diag_set_channel_name(const char* name);

/// Creates a detached thread; returns pthread_create's result.
int diag_start_thread(pthread_t* thread, void* (*body)(void*), void* arg);
/// Called by each thread of the unit first.
void diag_name_this_thread();

// Checks: 0 good, 1 bad

int kelvra_diag_comand_input_check(const uint8_t* data, int data_len);
int kelvra_diag_comand_output_check(const uint8_t* reply_buf, const int* p_reply_len);
/// context_data points to the processor's number, an int, or is null.
int kelvra_diag_cmd_response_check(const uint8_t* ptr, int len, const void* context_data);

// Roads. `function` is the operation in whose name the steps are logged.

/// Registers `callback`, turns the log to it and sends. Returns the library's result, 0 for success.
int diag_send_by_callback(const char* function, diag_response_cb callback, uint8_t* cmd, int cmd_len);
/// Turns the log back.
void diag_leave_callback_road();

/// One command over the DCI road.
struct DiagDciExchange {
    const char* function;
    uint8_t* cmd;
    int cmd_len;
    void (*logs)(unsigned char* ptr, int len);
    void (*events)(unsigned char* ptr, int len);
    void (*response)(unsigned char* ptr, int len, void* data);
    int (*sent)(const void* context);  // what to do between sending and closing; returns the result
    const void* context;
    void (*close_session)();
};

/// From an open session to a closed one, whatever fails. Returns what `sent` returned, 1 when a step failed.
int diag_run_dci(const DiagDciExchange& exchange);

// Response

/// Starts a command: forgets the response of the one before. The sender calls this once the session is open,
/// before it registers for responses.
void diag_response_begin();

/// Where a response goes, and in whose name its end is logged.
struct DiagWait {
    const char* function;
    uint8_t* reply_buf;
    int reply_len;
    int* p_reply_len;
    bool keep_response;  // or free it
};
/// Starts the wait thread, waits and copies the response out. The sender has set the wait flag and limit.
/// Returns 0 when a response came, 1 when time ran out.
int diag_response_await(const DiagWait& wait);

/// Callbacks of the diag library, on its thread: they store the response and wake the sender. 0: stored.
int kelvra_diag_cmd_response_by_callback(unsigned char* ptr, int len, void* context_data);
int kelvra_diag_cmd_response_by_dci(unsigned char* ptr, int len, void* context_data);

/// The thread that gives up for the sender. Its argument is the number of the command, as a pointer.
void kelvra_diag_cmd_send_with_result_wait_create_thread();
void* kelvra_diag_cmd_send_with_result_wait_thread_proc(void* command);

/// Listeners of the log and event streams.
int kelvra_diag_cmd_response_by_dci_log_stream(unsigned char* ptr, int len);
int kelvra_diag_cmd_response_by_dci_event_stream(unsigned char* ptr, int len);

// Without a result

/// Callbacks that only log.
int kelvra_diag_cmd_response_by_callback_no_handle(unsigned char* ptr, int len, void* context_data);
int kelvra_diag_cmd_response_by_dci_no_handle(unsigned char* ptr, int len, void* context_data);
int kelvra_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char* ptr, int len);
int kelvra_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char* ptr, int len);

/// A worker's command, one heap block, which the worker frees.
struct DiagCmdParam {
    int32_t length;
    uint8_t bytes[1];  // `length` of them, and one spare
};

void* kelvra_diag_cmd_send_without_result_by_callback_mode_thread_proc(void* param);
void* kelvra_diag_cmd_send_without_result_by_dci_mode_thread_proc(void* param);

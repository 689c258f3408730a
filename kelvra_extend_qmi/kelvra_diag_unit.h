// What the three files of the diag transport share: the session and the steps of a command on its road.
// Nothing outside the unit includes this, except its tests.
#pragma once

#include <pthread.h>

#include <cstdint>

#include "diag_lsm.h"

/// Opens the session, or counts one more caller. A failure is only logged.
void kelvra_diag_init_with_result();
/// Closes the session, whoever else has asked for it.
void kelvra_diag_deinit_with_result();
/// Registers `callback` for the local processor and for every remote one. Its context is an int, the
/// processor's number, which lives as long as the process.
void kelvra_diag_register_callback(diag_response_cb callback);
/// Writes the name of the mask's lowest bit, if it has one, to g_diag_mask_name and returns that.
const char* kelvra_print_diag_mask_name(uint16_t mask);

/// An open diag library, until the end of the scope or until it is closed.
class DiagSession {
public:
    enum Kind { kWithResult, kWorker };  // a worker opens the library without a session of its own

    explicit DiagSession(Kind kind);
    ~DiagSession() { close(); }
    DiagSession(const DiagSession&) = delete;
    DiagSession& operator=(const DiagSession&) = delete;

    /// Whether the library was opened; of a session it is never said.
    bool is_open() const { return open_; }
    void close();

private:
    const Kind kind_;
    bool open_;
};

/// The callback road: responses go to `callback` until the end of the scope. `function` is the operation in
/// whose name the steps are logged.
class DiagCallbackRoad {
public:
    explicit DiagCallbackRoad(diag_response_cb callback);
    ~DiagCallbackRoad();
    DiagCallbackRoad(const DiagCallbackRoad&) = delete;
    DiagCallbackRoad& operator=(const DiagCallbackRoad&) = delete;

    /// Returns the library's result, 0 for success.
    static int send(const char* function, uint8_t* cmd, int cmd_len);
};

/// Who hears of a DCI exchange.
struct DiagDciListeners {
    void (*logs)(unsigned char* ptr, int len);
    void (*events)(unsigned char* ptr, int len);
    void (*response)(unsigned char* ptr, int len, void* data);
};

/// The DCI road: a client of its own, made when the command is sent. The end of the scope closes the session,
/// then releases the client.
class DiagDciRoad {
public:
    DiagDciRoad(const char* function, DiagSession& session) : function_(function), session_(session) {}
    ~DiagDciRoad();
    DiagDciRoad(const DiagDciRoad&) = delete;
    DiagDciRoad& operator=(const DiagDciRoad&) = delete;

    /// False after logging the step that failed.
    bool send(uint8_t* cmd, int cmd_len, const DiagDciListeners& listeners);

private:
    bool register_client();
    bool open_streams(const DiagDciListeners& listeners);

    const char* const function_;
    DiagSession& session_;
    uint8_t* packet_ = nullptr;  // for the library's response
    bool registered_ = false;
    int client_id_ = 0;
    uint16_t peripherals_ = 0;
};

/// Creates a detached thread; returns pthread_create's result.
int diag_start_thread(pthread_t* thread, void* (*body)(void*), void* arg);
/// Called by each thread of the unit first.
void diag_name_this_thread();

// Checks: 0 good, 1 bad

int kelvra_diag_comand_input_check(const uint8_t* data, int data_len);
int kelvra_diag_comand_output_check(const uint8_t* reply_buf, const int* p_reply_len);
/// context_data points to the processor's number, an int, or is null.
int kelvra_diag_cmd_response_check(const uint8_t* ptr, int len, const void* context_data);

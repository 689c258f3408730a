// The seam as a test sees it: every call has a hook that the test may replace, and a default that succeeds.
// Hooks run on whatever thread the unit under test calls from.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "qmi_client.h"

/// One request as the unit handed it to the QMI library.
struct QmiRequest {
    qmi_client_type client = nullptr;
    unsigned message = 0;
    std::vector<uint8_t> bytes;  // the C structure
    unsigned response_len = 0;
};

struct PlatformDouble {
    // QMI. A client is any non-null pointer; the default one is the address of its service's description.
    std::function<int(qmi_client_type* notifier)> notifier_init;
    std::function<int(qmi_client_type* client)> client_init;
    std::function<int(uint32_t timeout_ms, qmi_client_type* client)> client_init_instance;
    std::function<int(qmi_client_type client)> register_error_cb;
    std::function<int(const QmiRequest& request, void* response)> send;  // the response is zeroed before
    std::function<int(qmi_idl_type_of_message_type type, unsigned message, const void* src, unsigned src_len,
                      void* dst, unsigned dst_len)>
        decode;  // the destination is zeroed before
    std::function<int(qmi_client_type client)> release;
    uint32_t unlisted_len = 0;  // of a message that no service's table has

    std::vector<QmiRequest> requests;        // every qmi_client_send_msg_sync, in order
    qmi_client_ind_cb ind_cb = nullptr;      // of the last client made
    qmi_client_error_cb error_cb = nullptr;  // of the last registration
    int releases = 0;

    // Diag.
    struct RemoteCallback {
        diag_response_cb cb;
        int proc;
        void* context;
    };
    std::function<bool()> lsm_init;
    std::function<bool()> lsm_deinit;
    std::function<int(int proc, const std::vector<uint8_t>& bytes)> diag_send;
    std::function<int(int* client_id, uint16_t* list, int proc, void* os_params)> dci_register;
    std::function<int(int client_id, const std::vector<uint8_t>& bytes)> dci_send;
    std::function<int(int* client_id)> dci_release;
    uint16_t remote_mask = 0;
    diag_response_cb diag_cb = nullptr;
    void* diag_context = nullptr;
    std::vector<RemoteCallback> remote_cbs;
    std::vector<int> logging_modes;  // every diag_switch_logging
    void (*dci_logs)(unsigned char*, int) = nullptr;
    void (*dci_events)(unsigned char*, int) = nullptr;
    void (*dci_cb)(unsigned char*, int, void*) = nullptr;
    void* dci_data = nullptr;

    // Android and the system log.
    std::map<std::string, std::string> properties;
    std::vector<std::string> system_log;   // "<priority> <text>"
    std::vector<std::string> android_log;  // "<priority> <tag> <text>"

    // The C library. The defaults record and return at once; sleep and system return 0.
    std::function<unsigned(unsigned seconds)> sleep;
    std::function<int(unsigned microseconds)> usleep;
    std::vector<unsigned> sleeps;
    std::vector<unsigned> usleeps;
    std::vector<std::string> commands;
    int fail_thread_creation = 0;  // when not 0: what pthread_create returns instead of creating a thread

    std::mutex mutex;  // guards the vectors and the map above while other threads run
};

/// The double in force.
PlatformDouble& platform();

/// Puts a fresh double in force, and no allocation fails.
void renew_platform();

/// For what is linked with the code under test and uses the C library itself: from the first call on, the
/// double takes the C library over for this thread while it is under test, and for the threads that it
/// creates meanwhile. Without a call every thread is under test.
void select_thread(bool under_test);

/// The n-th (from 1) following malloc or calloc of the code under test, on any thread, fails once; 0: none.
void fail_malloc(int n);

/// Waits until every thread that the code under test has created is over.
void wait_for_threads();

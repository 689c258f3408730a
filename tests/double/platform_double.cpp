#include "platform_double.h"

#include <syslog.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>

#include "android/log.h"
#include "cutils/properties.h"
#include "qtimutex.h"

namespace {

std::unique_ptr<PlatformDouble> g_platform = std::make_unique<PlatformDouble>();
std::atomic<int> g_malloc_countdown{0};
std::atomic<int> g_threads{0};            // created by the code under test and not over
std::atomic<bool> g_is_selective{false};  // the double is for the threads under test alone
thread_local bool t_is_under_test = false;

using Lock = std::lock_guard<std::mutex>;

__attribute__((format(printf, 1, 0))) std::string formatted(const char* fmt, va_list args) {
    char text[20000];
    vsnprintf(text, sizeof text, fmt, args);
    return text;
}

// Calls a hook if the test has set it, else returns the default.
template <typename Result, typename Hook, typename... Args>
Result call(const Hook& hook, Result otherwise, Args... args) {
    return hook ? hook(args...) : otherwise;
}

// Keeps a call for the test to see.
template <typename Call>
void record(std::vector<Call>& calls, Call call) {
    const Lock lock(platform().mutex);
    calls.push_back(std::move(call));
}

std::vector<uint8_t> copy(const void* bytes, int len) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    return first == nullptr || len < 1 ? std::vector<uint8_t>() : std::vector<uint8_t>(first, first + len);
}

struct ThreadStart {
    void* (*body)(void*);
    void* arg;
};

void* counted_thread(void* param) {
    const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(param));
    t_is_under_test = true;
    void* const result = start->body(start->arg);
    --g_threads;
    return result;
}

// Whether this thread's calls of the C library are none of the double's.
bool is_bypassed() {
    return g_is_selective && !t_is_under_test;
}

bool allocation_fails() {
    if (is_bypassed() || g_malloc_countdown <= 0 || --g_malloc_countdown != 0)
        return false;
    errno = ENOMEM;
    return true;
}

int make_client(qmi_idl_service_object_type service, qmi_client_type* client, int result) {
    if (result == 0 && *client == nullptr)
        *client = const_cast<qmi_idl_service_object*>(service);
    return result;
}

}  // namespace

PlatformDouble& platform() {
    return *g_platform;
}

void fail_malloc(int n) {
    g_malloc_countdown = n;
}

void wait_for_threads() {
    while (g_threads != 0)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

void select_thread(bool under_test) {
    g_is_selective = true;
    t_is_under_test = under_test;
}

void renew_platform() {
    g_platform = std::make_unique<PlatformDouble>();
    fail_malloc(0);
}

extern "C" {

// QMI

int qmi_client_notifier_init(qmi_idl_service_object_type service, qmi_client_os_params*,
                             qmi_client_type* notifier) {
    *notifier = nullptr;
    return make_client(service, notifier, call(platform().notifier_init, 0, notifier));
}

int qmi_client_get_service_list(qmi_idl_service_object_type, qmi_service_info*, unsigned*,
                                unsigned* services) {
    *services = 1;
    return 0;
}

int qmi_cci_os_signal_wait(qmi_client_os_params*, unsigned) {
    return 0;
}

int qmi_client_init(qmi_service_info*, qmi_idl_service_object_type service, qmi_client_ind_cb ind_cb, void*,
                    qmi_client_os_params*, qmi_client_type* client) {
    platform().ind_cb = ind_cb;
    *client = nullptr;
    return make_client(service, client, call(platform().client_init, 0, client));
}

int qmi_client_init_instance(qmi_idl_service_object_type service, unsigned, qmi_client_ind_cb ind_cb, void*,
                             qmi_client_os_params*, uint32_t timeout_ms, qmi_client_type* client) {
    platform().ind_cb = ind_cb;
    *client = nullptr;
    return make_client(service, client, call(platform().client_init_instance, 0, timeout_ms, client));
}

int qmi_client_register_error_cb(qmi_client_type client, qmi_client_error_cb error_cb, void*) {
    platform().error_cb = error_cb;
    return call(platform().register_error_cb, 0, client);
}

int qmi_client_send_msg_sync(qmi_client_type client, unsigned msg_id, void* req, unsigned req_len, void* resp,
                             unsigned resp_len, unsigned) {
    const QmiRequest request{client, msg_id, copy(req, static_cast<int>(req_len)), resp_len};
    record(platform().requests, request);
    memset(resp, 0, resp_len);
    return platform().send ? platform().send(request, resp) : 0;
}

int qmi_client_message_decode(qmi_client_type, qmi_idl_type_of_message_type type, unsigned msg_id,
                              const void* src, unsigned src_len, void* dst, unsigned dst_len) {
    memset(dst, 0, dst_len);
    return call(platform().decode, 0, type, msg_id, src, src_len, dst, dst_len);
}

int32_t __real_qmi_idl_get_message_c_struct_len(qmi_idl_service_object_type service,
                                                qmi_idl_type_of_message_type type, uint16_t message,
                                                uint32_t* len);

int32_t __wrap_qmi_idl_get_message_c_struct_len(qmi_idl_service_object_type service,
                                                qmi_idl_type_of_message_type type, uint16_t message,
                                                uint32_t* len) {
    if (__real_qmi_idl_get_message_c_struct_len(service, type, message, len) != 0)
        *len = platform().unlisted_len;
    return 0;
}

int qmi_client_release(qmi_client_type client) {
    ++platform().releases;
    return call(platform().release, 0, client);
}

// Diag

bool Diag_LSM_Init(unsigned char*) {
    return call(platform().lsm_init, true);
}
bool Diag_LSM_DeInit() {
    return call(platform().lsm_deinit, true);
}

void diag_register_callback(diag_response_cb cb, void* context) {
    platform().diag_cb = cb;
    platform().diag_context = context;
}

void diag_register_remote_callback(diag_response_cb cb, int proc, void* context) {
    platform().remote_cbs.push_back({cb, proc, context});
}

void diag_has_remote_device(uint16_t* mask) {
    *mask = platform().remote_mask;
}

int diag_callback_send_data(int proc, unsigned char* buf, int len) {
    return call(platform().diag_send, 0, proc, copy(buf, len));
}

void diag_switch_logging(int mode, char*) {
    record(platform().logging_modes, mode);
}

int diag_register_dci_client(int* client_id, uint16_t* list, int proc, void* os_params) {
    *client_id = 1;
    return call(platform().dci_register, 1001, client_id, list, proc, os_params);
}

int diag_register_dci_signal_data(int, int) {
    return 1001;
}
int diag_get_dci_support_list_proc(int, uint16_t*) {
    return 1001;
}

int diag_register_dci_stream_proc(int, void (*logs)(unsigned char*, int),
                                  void (*events)(unsigned char*, int)) {
    platform().dci_logs = logs;
    platform().dci_events = events;
    return 1001;
}

int diag_send_dci_async_req(int client_id, unsigned char* buf, int len, unsigned char*, int,
                            void (*cb)(unsigned char*, int, void*), void* data) {
    platform().dci_cb = cb;
    platform().dci_data = data;
    return call(platform().dci_send, 1001, client_id, copy(buf, len));
}

int diag_release_dci_client(int* client_id) {
    return call(platform().dci_release, 1001, client_id);
}

// Android and the system log

int property_get(const char* key, char* value, const char* default_value) {
    const Lock lock(platform().mutex);
    std::string text = platform().properties[key];
    if (text.empty() && default_value != nullptr)
        text = default_value;
    snprintf(value, PROPERTY_VALUE_MAX, "%s", text.c_str());
    return static_cast<int>(strlen(value));
}

int property_set(const char* key, const char* value) {
    const Lock lock(platform().mutex);
    platform().properties[key] = value;
    return 0;
}

int __android_log_print(int priority, const char* tag, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const std::string text = formatted(fmt, args);
    va_end(args);
    record(platform().android_log, std::to_string(priority) + " " + tag + " " + text);
    return 1;
}

void vsyslog(int priority, const char* fmt, va_list args) {
    record(platform().system_log, std::to_string(priority) + " " + formatted(fmt, args));
}

// The C library

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
unsigned __real_sleep(unsigned seconds);
int __real_usleep(unsigned microseconds);
int __real_system(const char* command);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*), void* arg);

void* __wrap_malloc(size_t size) {
    return allocation_fails() ? nullptr : __real_malloc(size);
}

// Also what an optimiser makes of a malloc that is filled with zeros.
void* __wrap_calloc(size_t count, size_t size) {
    return allocation_fails() ? nullptr : __real_calloc(count, size);
}

unsigned __wrap_sleep(unsigned seconds) {
    if (is_bypassed())
        return __real_sleep(seconds);
    record(platform().sleeps, seconds);
    return call(platform().sleep, 0U, seconds);
}

int __wrap_usleep(unsigned microseconds) {
    if (is_bypassed())
        return __real_usleep(microseconds);
    record(platform().usleeps, microseconds);
    return call(platform().usleep, 0, microseconds);
}

int __wrap_system(const char* command) {
    if (is_bypassed())
        return __real_system(command);
    record(platform().commands, std::string(command));
    return 0;
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*), void* arg) {
    if (is_bypassed())
        return __real_pthread_create(thread, attr, start, arg);
    if (platform().fail_thread_creation != 0)
        return platform().fail_thread_creation;
    ++g_threads;
    auto counted = std::make_unique<ThreadStart>(ThreadStart{start, arg});
    const int result = __real_pthread_create(thread, attr, counted_thread, counted.get());
    if (result == 0)
        (void)counted.release();
    else
        --g_threads;
    return result;
}

}  // extern "C"

namespace qtimutex {
QtiSharedMutex::QtiSharedMutex() : lock_(PTHREAD_RWLOCK_INITIALIZER) {}
QtiSharedMutex::~QtiSharedMutex() {
    pthread_rwlock_destroy(&lock_);
}
}  // namespace qtimutex

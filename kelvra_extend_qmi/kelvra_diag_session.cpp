#include <cstdio>
#include <cstring>
#include <iterator>

#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

std::atomic<int32_t> g_diag_init_status{0};
char g_diag_channel_name[51];
char g_diag_mask_name[101];
pthread_mutex_t g_diag_send_mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t g_diag_dci_rsp_mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t g_diag_async_mutex = PTHREAD_MUTEX_INITIALIZER;

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

constexpr int g_diag_channel = 0;

// The library's thread names the processor that answers while a command thread may still be registering.
pthread_mutex_t g_names_guard = PTHREAD_MUTEX_INITIALIZER;

// Contexts of the callbacks, by processor: the local one and one for each bit of the remote mask.
int g_processors[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

constexpr const char* kMaskNames[] = {" APSS", " MPSS", " LPASS", " WCNSS", " SENSORS", " WDSP"};

const char* name_of_lowest_bit(uint16_t mask) {
    for (size_t bit = 0; bit < std::size(kMaskNames); ++bit) {
        if ((mask >> bit & 1) != 0)
            return kMaskNames[bit];
    }
    return "";
}

template <size_t Size>
void set_name(char (&name)[Size], const char* text) {
    const DiagLock lock(g_names_guard);
    memset(name, 0, Size);
    snprintf(name, Size, "%s", text);
}

}  // namespace

void kelvra_diag_init_with_result() {
    KELVRA_LOG_SCOPE();
    const int status = g_diag_init_status;
    if (status != 0) {
        KELVRA_LOGD("diag init done, g_diag_init_status = %d", status);
        ++g_diag_init_status;
        return;
    }
    while (sem_trywait(&g_diag_rsp_sem) == 0) {
    }
    if (Diag_LSM_Init(nullptr))
        g_diag_init_status = 1;
    else
        KELVRA_LOGD("LSM init failed");
}

void kelvra_diag_deinit_with_result() {
    KELVRA_LOG_SCOPE();
    Diag_LSM_DeInit();
    g_diag_init_status = 0;
}

void kelvra_diag_register_callback(diag_response_cb callback) {
    KELVRA_LOG_SCOPE();
    diag_register_callback(callback, &g_processors[0]);
    uint16_t remote_mask = 0;
    diag_has_remote_device(&remote_mask);

    diag_set_channel_name("MSM");
    kelvra_print_diag_mask_name(remote_mask);
    KELVRA_LOGD("register call back, g_diag_channel = [%d]%s, data_primary = %d, remote_mask = [%d]%s",
                g_diag_channel, "MSM", g_processors[0], remote_mask, name_of_lowest_bit(remote_mask));

    for (size_t processor = 1; processor < std::size(g_processors); ++processor) {
        if ((remote_mask >> (processor - 1) & 1) == 0)
            continue;
        int* const data_remote = &g_processors[processor];
        KELVRA_LOGD("register remote call back, data_remote = %d", *data_remote);
        diag_register_remote_callback(callback, *data_remote, data_remote);
    }
}

const char* kelvra_print_diag_mask_name(uint16_t mask) {
    KELVRA_LOG_SCOPE();
    set_name(g_diag_mask_name, name_of_lowest_bit(mask));
    return g_diag_mask_name;
}

void diag_set_channel_name(const char* name) {
    set_name(g_diag_channel_name, name);
}

int diag_start_thread(pthread_t* thread, void* (*body)(void*), void* arg) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const int result = pthread_create(thread, &attributes, body, arg);
    pthread_attr_destroy(&attributes);
    return result;
}

void diag_name_this_thread() {
    pthread_setname_np(pthread_self(), "KELV DIAG");
}

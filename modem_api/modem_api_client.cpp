#include <unistd.h>

#include "android/log.h"
#include "lock.h"
#include "modem_api_slots.h"
#include "qcril_memory_management.h"

int32_t g_kolvo_client_id = -1;

namespace {

modem_api_client_info_type* g_modem_api_client_table[MODEM_API_MAX_CLIENTS];
pthread_mutex_t g_table_mutex = PTHREAD_MUTEX_INITIALIZER;

int32_t g_init_count;  // modem_api_init calls that prepared the table and are not released yet: 0 or 1
pthread_mutex_t g_init_mutex = PTHREAD_MUTEX_INITIALIZER;

void reset_table() {
    pthread_mutex_destroy(&g_table_mutex);
    pthread_mutex_init(&g_table_mutex, nullptr);
    for (auto& client : g_modem_api_client_table)
        client = nullptr;
}

bool is_client_id(int client_id) {
    return client_id >= 0 && client_id < MODEM_API_MAX_CLIENTS;
}

const modem_api_client_info_type* client_of_type(uint32_t type) {
    for (const auto* client : g_modem_api_client_table)
        if (client != nullptr && client->type == type)
            return client;
    return nullptr;
}

int lowest_empty_slot() {
    for (int id = 0; id < MODEM_API_MAX_CLIENTS; ++id)
        if (g_modem_api_client_table[id] == nullptr)
            return id;
    return -1;
}

int refuse_second_client(const modem_api_client_info_type& other) {
    constexpr const char* kFunction = "modem_api_init_client";
    if (other.operational_status == MODEM_API_STATUS_UP) {
        modem_api_log(ANDROID_LOG_DEBUG, kFunction, "Already another client init vs client successfully");
        return MODEM_API_CLIENT_UP;
    }
    modem_api_log(ANDROID_LOG_DEBUG, kFunction, "Another client init vs client with operational status %d",
                  static_cast<int>(other.operational_status));
    return MODEM_API_CLIENT_NOT_UP;
}

// Puts the record into the table and connects it. Only on success does the table keep it.
int add_client(modem_api_client_info_type* client) {
    constexpr const char* kFunction = "modem_api_init_client";
    if (const auto* other = client_of_type(client->type); other != nullptr)
        return refuse_second_client(*other);
    const int id = lowest_empty_slot();
    if (id < 0) {
        modem_api_log(ANDROID_LOG_ERROR, kFunction, "no more client can be added");
        return MODEM_API_TABLE_FULL;
    }
    g_modem_api_client_table[id] = client;
    if (auto* slot = modem_api_service_slot(client->type); slot != nullptr)
        slot->status_hook = modem_api_operational_status_cb;

    // The vs service alone is connected: the other slots are only prepared.
    if (client->type == MODEM_API_CLIENT_VS && vs_client_init(client->event_cb) == 0) {
        g_modem_api_client_table[id] = nullptr;
        return MODEM_API_FAILED;
    }
    g_kolvo_client_id = id;
    modem_api_log(ANDROID_LOG_DEBUG, kFunction, "new client: type %d, id %d", static_cast<int>(client->type),
                  id);
    return MODEM_API_OK;
}

void disconnect(uint32_t type) {
    modem_api_service_slot_type* slot = modem_api_service_slot(type);
    if (slot == nullptr)
        return;
    if (slot->status_hook != nullptr)
        slot->status_hook(static_cast<modem_api_qmi_client_e_type>(type), MODEM_API_STATUS_FREED);
    slot->inited = 0;
    // No callback comes after the release: only then may the fields go that callbacks read.
    if (slot->handle != nullptr)
        qmi_client_release(slot->handle);
    slot->handle = nullptr;
    slot->os_params = {};
    slot->event_cb = nullptr;
    slot->status_hook = nullptr;
}

}  // namespace

const modem_api_client_info_type* modem_api_client(int client_id) {
    return is_client_id(client_id) ? g_modem_api_client_table[client_id] : nullptr;
}

int modem_api_init() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    Lock lock(g_init_mutex);
    if (g_init_count == 0) {
        reset_table();
        ++g_init_count;
    }
    const int ret = lock.unlock();
    vs_init();
    sar_init();
    nas_0_init();
    nas_1_init();
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}

int modem_api_init_client(modem_api_qmi_client_e_type type, modem_api_event_cb event_cb,
                          modem_api_op_status_cb op_status_cb) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    auto* client = static_cast<modem_api_client_info_type*>(
        kolvo_malloc_adv(sizeof(modem_api_client_info_type), "modem_api_init_client"));
    int ret = MODEM_API_NO_MEMORY;
    if (client == nullptr) {
        KOLVO_LOG(ANDROID_LOG_ERROR, "could not allocate memory");
    } else {
        client->type = type;
        client->pid = getpid();
        client->event_cb = event_cb;
        client->op_status_cb = op_status_cb;
        ret = add_client(client);
        if (ret != MODEM_API_OK)
            kolvo_free_adv(client);
    }
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}

void modem_api_operational_status_cb(modem_api_qmi_client_e_type type,
                                     modem_api_operational_status_type status) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    for (int id = 0; id < MODEM_API_MAX_CLIENTS; ++id) {
        modem_api_client_info_type* client = g_modem_api_client_table[id];
        if (client == nullptr || client->type != type)
            continue;
        client->operational_status = status;
        KOLVO_LOG(ANDROID_LOG_DEBUG, "client type %d, client id %d, operational_status %d",
                  static_cast<int>(type), id, static_cast<int>(status));
        if (client->op_status_cb == nullptr)
            continue;
        if (status == MODEM_API_STATUS_UP)
            client->op_status_cb(MODEM_API_EVENT_UP, static_cast<int>(type));
        else if (status == MODEM_API_STATUS_DOWN)
            client->op_status_cb(MODEM_API_EVENT_DOWN, static_cast<int>(type));
    }
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit");
}

void modem_api_free_client(int client_id) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    KOLVO_LOG(ANDROID_LOG_DEBUG, "client_id %d", client_id);
    Lock lock(g_table_mutex);
    if (modem_api_client(client_id) == nullptr) {
        KOLVO_LOG(ANDROID_LOG_ERROR, "client already freed");
    } else {
        modem_api_client_info_type* client = g_modem_api_client_table[client_id];
        disconnect(client->type);
        kolvo_free_adv(client);
        g_modem_api_client_table[client_id] = nullptr;
    }
    lock.unlock();
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", 0L);
}

int modem_api_release() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    Lock lock(g_init_mutex);
    if (g_init_count >= 1) {
        reset_table();
        --g_init_count;
        kolvo_mem_report();
    }
    const int ret = lock.unlock();
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}

// The client framework of the modem-statistics service ("vs"): a table of clients, one connection a
// service, the requests of a session, and what the service indicates, as events. It speaks on the Android
// log, tag "KOLVO".
//
// Requests, creation and release of clients belong to one thread; callbacks come on the QMI library's.
#pragma once

#include <cstdint>

#include "modem_statistics_v01.h"
#include "qmi_client.h"

enum modem_api_qmi_client_e_type : uint32_t {
    MODEM_API_CLIENT_VS = 0,
    MODEM_API_CLIENT_SAR = 1,
    MODEM_API_CLIENT_NAS_0 = 2,
    MODEM_API_CLIENT_NAS_1 = 3
};

enum modem_api_operational_status_type : uint32_t {
    MODEM_API_STATUS_FREED = 0,
    MODEM_API_STATUS_CONNECTING = 1,
    MODEM_API_STATUS_FAILED = 2,
    MODEM_API_STATUS_UP = 3,
    MODEM_API_STATUS_DOWN = 4
};

/// The result codes of the framework.
enum : int {
    MODEM_API_OK = 0,
    MODEM_API_FAILED = 1,
    MODEM_API_NO_MEMORY = 3,
    MODEM_API_REFUSED = 4,
    MODEM_API_BAD_REQUEST = 5,
    MODEM_API_NOT_USABLE = 7,
    MODEM_API_NOT_READY = 8,
    MODEM_API_CLIENT_NOT_UP = 9,  // another client of the type exists and is not up
    MODEM_API_ABORTED = 10,
    MODEM_API_TIMEOUT = 11,
    MODEM_API_NO_CONNECTION = 12,
    MODEM_API_TABLE_FULL = 14,
    MODEM_API_CLIENT_UP = 15  // another client of the type exists and is up
};

/// The status of a call of a response callback; any other is a mapped error.
enum : int { MODEM_API_RESPONSE_DATA = 0, MODEM_API_RESPONSE_COMPLETE = 2, MODEM_API_RESPONSE_NONE = 3 };

/// What the service indicates. `data` holds `len` bytes, in one of the layouts of modem_api_events.h, valid
/// during the call.
using modem_api_event_cb = void (*)(int event, void* data, int len);

/// A change of a client's status: MODEM_API_EVENT_UP or MODEM_API_EVENT_DOWN.
using modem_api_op_status_cb = void (*)(int event, int client_type);
enum : int { MODEM_API_EVENT_DOWN = 0x10001, MODEM_API_EVENT_UP = 0x10002 };

constexpr int MODEM_API_MAX_CLIENTS = 10;

/// The id of the client created last, -1 for none. modem_api_init_client sets it, the session clears it.
extern int32_t g_kolvo_client_id;

/// Prepares the table, once until modem_api_release, and the four service slots. Returns 0.
int modem_api_init();

/// Creates the only client of its type. That of the vs service is connected: up to ten attempts, one second
/// apart. The callbacks may be null. Stores the new id in g_kolvo_client_id. Returns one of the result codes.
int modem_api_init_client(modem_api_qmi_client_e_type type, modem_api_event_cb event_cb,
                          modem_api_op_status_cb op_status_cb);

/// Disconnects a client and frees it; no event comes afterwards.
void modem_api_free_client(int client_id);

/// Empties the table without freeing its clients. Returns 0, or the error of the mutex.
int modem_api_release();

/// Stores a status in the client of a type and tells it of up and down.
void modem_api_operational_status_cb(modem_api_qmi_client_e_type type,
                                     modem_api_operational_status_type status);

/// The framework's result for the QMI library's and the response's, on purpose coarse. A null
/// response has failed.
int modem_api_map_qmi_error_to_modem_api(int qmi_client_error, const qmi_response_type_v01* resp);

/// One statistics value of a request or a response. value_len is as sent; at most VS_VALUE_MAX_V01
/// bytes are there.
using modem_stats_param_type = vs_entry_v01;

struct modem_stats_param_list {
    uint32_t count;
    modem_stats_param_type params[VS_ENTRIES_MAX_V01];
};

/// Switches the modem's statistics feature on, for g_kolvo_client_id. Returns one of the result codes, or a
/// mapped error.
int modem_api_set_kolvo_feature_status();

/// Asks for the values of list->params (at most 10), by id, of one subscription; the list becomes the
/// answer's: at most 10 values. Returns as above; the list is unchanged then.
int modem_api_get_stats_parameter(uint32_t sub, int32_t number, modem_stats_param_list* list);

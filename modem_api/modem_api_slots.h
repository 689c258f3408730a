// What the pieces of the framework share: the service slots, the client table, and the log.
#pragma once

#include "modem_api.h"

/// Formats "<function>: <message>" and writes it to the Android log.
#define KOLVO_LOG(priority, ...) modem_api_log(priority, __func__, __VA_ARGS__)
void modem_api_log(int priority, const char* function, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));

/// A response callback: the data (its own, freed with kolvo_free_adv) and its length, the requester's
/// pointer, and a MODEM_API_RESPONSE_... status or a mapped error.
using modem_api_response_cb = void (*)(void* data, uint32_t len, void* user_data, int status);

/// Allocated by the requester with kolvo_malloc_adv; modem_api_process_response frees it.
struct modem_api_cb_struct_type {
    modem_api_response_cb callback;
    void* user_data;
};

using modem_api_command_cb = void (*)(qmi_client_type handle, unsigned int msg_id, void* resp,
                                      unsigned int resp_len, void* resp_cb_data, int transport_error);

/// A service: what it is, and its connection while a client has one.
struct modem_api_service_slot_type {
    qmi_idl_service_object_type service;
    qmi_client_type handle;
    qmi_client_os_params os_params;
    modem_api_command_cb command_cb;
    modem_api_event_cb event_cb;
    void (*status_hook)(modem_api_qmi_client_e_type, modem_api_operational_status_type);
    uint32_t inited;  // 1: connected
};

/// A client. Its index in the table is its id.
struct modem_api_client_info_type {
    uint32_t type;
    int32_t pid;
    uint32_t operational_status;
    uint32_t reserved_word;
    uint16_t reserved_half;
    modem_api_event_cb event_cb;
    modem_api_op_status_cb op_status_cb;
};
static_assert(sizeof(void*) != 8 || sizeof(modem_api_client_info_type) == 40, "layout");

/// The slot of a type; null for a number that is no service.
modem_api_service_slot_type* modem_api_service_slot(uint32_t type);

/// The record of a client id; null for none.
const modem_api_client_info_type* modem_api_client(int client_id);

/// Fill the slot of their service, without connecting.
void vs_init();
void sar_init();
void nas_0_init();
void nas_1_init();

/// Connects the vs service for a client with this event callback. Returns 1, or 0 when no attempt succeeded.
/// Reports the progress to the slot's status hook.
int vs_client_init(modem_api_event_cb event_cb);

/// Callbacks that the QMI library calls for the vs connection.
void vs_client_unsol_ind_cb(qmi_client_type handle, unsigned int msg_id, void* ind_buf, unsigned int ind_len,
                            void* ind_cb_data);
void vs_client_service_down_event(qmi_client_type handle, qmi_client_error_type error, void* data);

/// Asynchronous responses, one callback a service; all hand over to modem_api_process_response.
void vs_client_command_cb(qmi_client_type handle, unsigned int msg_id, void* resp, unsigned int resp_len,
                          void* resp_cb_data, int transport_error);
void sar_client_command_cb(qmi_client_type handle, unsigned int msg_id, void* resp, unsigned int resp_len,
                           void* resp_cb_data, int transport_error);
void nas_0_client_command_cb(qmi_client_type handle, unsigned int msg_id, void* resp, unsigned int resp_len,
                             void* resp_cb_data, int transport_error);
void nas_1_client_command_cb(qmi_client_type handle, unsigned int msg_id, void* resp, unsigned int resp_len,
                             void* resp_cb_data, int transport_error);

/// Delivers a response of resp_len bytes, then its completion or its error; frees `resp` and `cb`
/// (kolvo_free_adv). A null callback is not called.
void modem_api_process_response(unsigned int msg_id, void* resp, unsigned int resp_len,
                                modem_api_cb_struct_type* cb, int transport_error);

/// Delivers a copy of the data of message 0's response: the result, a 32-bit length, and that many bytes.
void modem_api_common_command_cb_handler(const void* resp, unsigned int resp_len,
                                         const modem_api_cb_struct_type* cb);

/*
 * The QMI client library: finds a service, connects, exchanges messages synchronously, and delivers
 * indications and the loss of the service on a thread of its own.
 */
#ifndef QMI_CLIENT_H
#define QMI_CLIENT_H

#include <pthread.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A client or a notifier; NULL: none. Made by the library, given back with qmi_client_release. */
typedef void* qmi_client_type;

/* 0, or one of the negative codes below. */
typedef int qmi_client_error_type;
enum {
    QMI_NO_ERR = 0,
    QMI_INTERNAL_ERR = -1,
    QMI_SERVICE_ERR = -2, /* the service is gone */
    QMI_TIMEOUT_ERR = -3,
    QMI_EXTENDED_ERR = -4,
    QMI_PORT_NOT_OPEN_ERR = -5
};

#define QMI_CLIENT_INSTANCE_ANY 0xffff

/* An OS signal. The caller owns it and keeps it alive as long as the client or notifier that uses it. */
typedef struct {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    uint32_t flags;
} qmi_client_os_params;

/* Where a published service is found; opaque to the caller. */
typedef struct {
    uint32_t info[5];
} qmi_service_info;

/* An indication: ind_buf holds its TLVs (no packet header) and is the library's, valid during the call.
 * Called on the library's thread, never after qmi_client_release has returned. */
typedef void (*qmi_client_ind_cb)(qmi_client_type client, unsigned int msg_id, void* ind_buf,
                                  unsigned int ind_buf_len, void* ind_cb_data);

/* The service went away (error QMI_SERVICE_ERR). Called once, on the library's thread, before an open request
 * returns. */
typedef void (*qmi_client_error_cb)(qmi_client_type client, qmi_client_error_type error, void* err_cb_data);

/* Prepares `signal` to be set whenever the service may have been published or withdrawn, and makes a
 * notifier. */
qmi_client_error_type qmi_client_notifier_init(qmi_idl_service_object_type service,
                                               qmi_client_os_params* signal, qmi_client_type* notifier);

/* The published instances of a service. `array` takes at most *num_entries of them and *num_entries becomes
 * the number stored; both may be NULL to get only *num_services. Returns QMI_SERVICE_ERR and number 0 for
 * none. */
qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service,
                                                  qmi_service_info* array, unsigned int* num_entries,
                                                  unsigned int* num_services);

/* Waits until the signal is set, and clears it. timeout_ms 0: no limit. Returns 0, or QMI_TIMEOUT_ERR. */
int qmi_cci_os_signal_wait(qmi_client_os_params* signal, unsigned int timeout_ms);

/* Connects to one instance. ind_cb and signal may be NULL. On success *client is a client of the caller's. */
qmi_client_error_type qmi_client_init(qmi_service_info* instance, qmi_idl_service_object_type service,
                                      qmi_client_ind_cb ind_cb, void* ind_cb_data,
                                      qmi_client_os_params* signal, qmi_client_type* client);

/* Connects to the service, waiting at most timeout_ms for it to be published. Returns QMI_TIMEOUT_ERR if it
 * is not; a service that is there already is found, however small the time-out. */
qmi_client_error_type qmi_client_init_instance(qmi_idl_service_object_type service, unsigned int instance,
                                               qmi_client_ind_cb ind_cb, void* ind_cb_data,
                                               qmi_client_os_params* signal, uint32_t timeout_ms,
                                               qmi_client_type* client);

/* Sets the callback for the loss of the service. A service that is gone already is reported at once. */
qmi_client_error_type qmi_client_register_error_cb(qmi_client_type client, qmi_client_error_cb error_cb,
                                                   void* err_cb_data);

/* Encodes `req` (req_len bytes, the message's C structure; NULL with 0 for a message without elements), sends
 * it and waits at most timeout_ms for the answer, decoded into `resp`, which is zeroed first. Any thread; one
 * client's requests may overlap. */
qmi_client_error_type qmi_client_send_msg_sync(qmi_client_type client, unsigned int msg_id, void* req,
                                               unsigned int req_len, void* resp, unsigned int resp_len,
                                               unsigned int timeout_ms);

/* Decodes the TLVs of one message into its C structure, which is zeroed first. Returns QMI_INTERNAL_ERR for a
 * message that the service does not have, a destination that is too small, or TLVs that do not decode. */
qmi_client_error_type qmi_client_message_decode(qmi_client_type client, qmi_idl_type_of_message_type type,
                                                unsigned int msg_id, const void* src, unsigned int src_len,
                                                void* dst, unsigned int dst_len);

/* Ends a client or a notifier: waits for a callback that is running; none comes afterwards. Returns 0, also
 * for a client whose service is gone. Not to be called from a callback of the same client. */
qmi_client_error_type qmi_client_release(qmi_client_type client);

#ifdef __cplusplus
}
#endif
#endif

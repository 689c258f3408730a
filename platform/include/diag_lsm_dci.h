/*
 * The diag library, DCI road: a client registers, opens its streams and sends asynchronous requests. Every
 * int result is 1001 for success.
 */
#ifndef DIAG_LSM_DCI_H
#define DIAG_LSM_DCI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { DIAG_DCI_NO_ERROR = 1001 };

/* Registers a client for the peripherals in *list on processor `proc`; *client_id becomes its id. */
int diag_register_dci_client(int* client_id, uint16_t* list, int proc, void* os_params);

/* Names the signal that announces data. */
int diag_register_dci_signal_data(int client_id, int signal_type);

/* The peripherals of `proc` that support DCI. */
int diag_get_dci_support_list_proc(int proc, uint16_t* list);

/* Sets the listeners of the log and event streams, called on the library's thread. */
int diag_register_dci_stream_proc(int client_id, void (*logs)(unsigned char* ptr, int len),
                                  void (*events)(unsigned char* ptr, int len));

/* Sends a command. Each piece of the answer is put into `rsp` (rsp_len bytes, the caller's until the client
 * is released) and given to `cb` on the library's thread. */
int diag_send_dci_async_req(int client_id, unsigned char* buf, int len, unsigned char* rsp, int rsp_len,
                            void (*cb)(unsigned char* ptr, int len, void* data_ptr), void* data_ptr);

/* Ends a client. */
int diag_release_dci_client(int* client_id);

#ifdef __cplusplus
}
#endif
#endif

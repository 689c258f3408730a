/*
 * The diag library, callback road: one session a process, responses delivered to registered callbacks on the
 * library's own thread.
 */
#ifndef DIAG_LSM_H
#define DIAG_LSM_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A response of `len` bytes at `ptr`, the library's, valid during the call. context_data is what was
 * registered. */
typedef int (*diag_response_cb)(unsigned char* ptr, int len, void* context_data);

/* Opens the session; the argument is unused. True when it is open. */
bool Diag_LSM_Init(unsigned char* unused);

/* Closes the session: no callback runs once it has returned. */
bool Diag_LSM_DeInit(void);

/* Sets the callback for responses of the local processor. context_data must outlive the session. */
void diag_register_callback(int (*cb)(unsigned char* ptr, int len, void* context_data), void* context_data);

/* Sets the callback for responses of remote processor `proc` (1 and up). */
void diag_register_remote_callback(int (*cb)(unsigned char* ptr, int len, void* context_data), int proc,
                                   void* context_data);

/* The remote processors that are there: bit n stands for processor n + 1. */
void diag_has_remote_device(uint16_t* remote_mask);

/* Sends one command to a processor. Returns 0 when it was sent. */
int diag_callback_send_data(int proc, unsigned char* buf, int len);

/* Where responses go. `dir` is unused. */
void diag_switch_logging(int mode, char* dir);

#ifdef __cplusplus
}
#endif
#endif

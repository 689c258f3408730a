// The UIM service's client: one for the process, made when a request first needs it and dropped when the
// modem went away, so that the next request makes a fresh one. It is not released at the end of the process.
#pragma once

#include <atomic>
#include <cstdint>

#include "qmi_client.h"

/// The client, null when there is none. Requests use it on the main thread; the indication callback looks at
/// it on the QMI library's.
extern std::atomic<qmi_client_type> uim_qmi_client;

/// 1 from the moment the service went away (told on the QMI library's thread) until the next client is made.
extern std::atomic<int32_t> SSR_Detected;

/// Failed sends since the last client was made. Main thread only.
extern int32_t failed_cnt;

/// Waits at most 4 s for the service, connects and clears the two words above. False when there is no client.
/// Main thread only.
bool init_uim_qmi_client();

/// Releases the client, if there is one. The words above keep their values. Main thread only.
void uim_qmi_client_recovery();

/// Decodes indication 97 and logs what failed; any other indication is only logged. On the
/// QMI library's thread.
void kelvra_uim_qmi_client_unsol_ind_cb(qmi_client_type client, unsigned int msg_id, void* ind_buf,
                                        unsigned int ind_buf_len, void* cb_data);

/// For a client that expects no indications: logs the message id. On the QMI library's thread.
void kelvra_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type client, unsigned int msg_id,
                                                       void* ind_buf, unsigned int ind_buf_len,
                                                       void* cb_data);

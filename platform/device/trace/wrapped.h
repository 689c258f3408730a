// The SDK's functions that are looked at on their way (the linker's --wrap): a call of NAME comes to
// __wrap_NAME, and __real_NAME is the SDK's.
#pragma once

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "qmi_client.h"

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
#define VXK_WRAPPED(name)                    \
    extern "C" decltype(name) __real_##name; \
    extern "C" decltype(name) __wrap_##name

VXK_WRAPPED(qmi_client_init);
VXK_WRAPPED(qmi_client_init_instance);
VXK_WRAPPED(qmi_client_register_error_cb);
VXK_WRAPPED(qmi_client_send_msg_sync);
VXK_WRAPPED(qmi_client_release);
VXK_WRAPPED(Diag_LSM_Init);
VXK_WRAPPED(Diag_LSM_DeInit);
VXK_WRAPPED(diag_register_callback);
VXK_WRAPPED(diag_register_remote_callback);
VXK_WRAPPED(diag_has_remote_device);
VXK_WRAPPED(diag_callback_send_data);
VXK_WRAPPED(diag_switch_logging);
VXK_WRAPPED(diag_register_dci_client);
VXK_WRAPPED(diag_register_dci_signal_data);
VXK_WRAPPED(diag_get_dci_support_list_proc);
VXK_WRAPPED(diag_register_dci_stream_proc);
VXK_WRAPPED(diag_send_dci_async_req);
VXK_WRAPPED(diag_release_dci_client);
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

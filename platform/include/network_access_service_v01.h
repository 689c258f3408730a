/* The network access service. The tool prepares slots for it and connects none. */
#ifndef NETWORK_ACCESS_SERVICE_V01_H
#define NETWORK_ACCESS_SERVICE_V01_H

#include "qmi_idl_lib.h"

#ifdef __cplusplus
extern "C" {
#endif

#define NAS_V01_IDL_MAJOR_VERS 1
#define NAS_V01_IDL_MINOR_VERS 0
#define NAS_V01_IDL_TOOL_VERS 6

enum { NAS_SERVICE_ID = 3 };

/* The service object, or NULL when asked with other versions than the three above. It lives for ever. */
qmi_idl_service_object_type nas_get_service_object_internal_v01(int32_t idl_major, int32_t idl_minor,
                                                                int32_t library);

#ifdef __cplusplus
}
#endif
#endif

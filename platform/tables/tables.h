// The descriptions of the services that the tool uses and does not describe itself. Any thread.
#pragma once

#include "qmi_idl_lib.h"

namespace seam {

qmi_idl_service_object_type uim_table();
qmi_idl_service_object_type statistics_table();
qmi_idl_service_object_type sar_table();

}  // namespace seam

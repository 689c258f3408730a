// Notifiers: who waits for which service to be published.
#pragma once

#include "qmi_client.h"

namespace seam {

/// Forgets a notifier. False when the handle is none. Any thread.
bool release_notifier(qmi_client_type handle);

}  // namespace seam

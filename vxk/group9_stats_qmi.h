// Group 9: the measurements.
#pragma once

/// Runs the measurement `opt` in the open session; an unknown opt prints a line. Returns 0, or 1 when nothing
/// was fetched or the value was too short.
int kelvra_test_qmi_modem_stats_hdl(int opt, int sub);

// The serving-cell record of the modem statistics: network identity, cell identity and channels, in one of
// the four layouts that the modem has shipped.
#pragma once

/// Parses the record at the unpack cursor (group7_unpack.h, started) and prints its two summary lines.
/// Returns false after the line that says why when the version is unknown or a field cannot be read.
bool modem_stats_parse_xxxx_diag_xxxx();

// Group 7: the self-test of the record parser.
#pragma once

#include <cstdint>

/// Parses one record. `payload` holds at least kUnpkBufferMin bytes (group7_unpack.h), zero behind the
/// record; null prints a line.
void kelvra_test_modem_stats_parsing_process_do(const uint8_t* payload);

// Bytes as the commands print them.
#pragma once

#include <cstddef>
#include <cstdint>

/// Ends a line with `count` bytes, each as " %02X". Silent in quiet mode.
void print_hex_line(const uint8_t* bytes, size_t count);

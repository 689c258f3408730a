// Bytes as the commands print them. A text is one piece: no line of another thread comes between. Silent in
// quiet mode.
#pragma once

#include <cstddef>
#include <cstdint>

/// Ends a line with `count` bytes, each as " %02X".
void print_hex_line(const uint8_t* bytes, size_t count);

/// An empty line, "data len(%d)" with `len`, and the line of `label` and the bytes: none for
/// a negative `len`.
void print_data(const char* label, const uint8_t* bytes, int len);

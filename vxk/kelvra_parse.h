// Words of the command line as numbers, and bytes as text. The rules are lenient on purpose: scripts
// rely on them.
#pragma once

/// A decimal number as atoi reads it, or hexadecimal digits behind "0x" or "0X". A null text prints a line
/// (unless quiet) and is 0.
int kelvra_string_to_int(const char* str);

/// Hexadecimal digits without a prefix; a character that is no digit counts as 0. Each digit's term saturates
/// at 2147483647. More than 50 characters, or a sum that overflows, is fatal. A null text prints a line
/// (unless quiet) and is 0.
int kelvra_hex_string_to_int(const char* str);

/// Writes two lower-case digits a byte to `out`, 2 * count characters and no terminating zero. Does nothing
/// for null bytes or a count below 1.
void kelvra_byte_to_hex(const unsigned char* bytes, int count, char* out);

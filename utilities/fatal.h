// The one way in which the tool gives up.
#pragma once

/// Flushes standard output, writes "vxk: fatal: <message>" on standard error, and aborts (SIGABRT). The
/// message says what was wrong and with which value, in one line. Any thread.
[[noreturn]] void vxk_fatal(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// What the tool prints besides a command's own answer: every diagnostic goes to the console, for the person
// at the shell, and to the system log, for later collection.
//
//   console      RIL[<function>:<line>]: <message>
//   system log   SUB[shell][<unit>:<line>] <function>: <message>
//
// A source file says once, after its includes, under which unit its lines
// are logged: KELVRA_LOG_UNIT("name");
#pragma once

#include <atomic>

/// True while the console is to show only verdicts and error lines. Set by the eSIM state command; read by
/// every unit that prints progress, on any thread.
extern std::atomic<bool> g_quiet_mode;

/// 2: the property that gates debug copies in the system log is not read yet; 1: copies are on; 0: off.
extern std::atomic<int> g_adb_log_state;

/// Where a message comes from.
struct KelvraLogSite {
    const char* unit;      // source file without directory and extension
    const char* function;  // the operation that speaks
    int line;
};

#define KELVRA_LOG_UNIT(name) static constexpr char kLogUnit[] = name

/// Debug log: console unless quiet; system log if "persist.vendor.radio.adb_log_kv" allows it. A message
/// carries no line end of its own unless an empty line is to follow on the console.
#define KELVRA_LOGD(...) kelvra_log_debug({kLogUnit, __func__, __LINE__}, __VA_ARGS__)
/// The same in the name of another function: that of the operation this function is a piece of.
#define KELVRA_LOGD_AS(function, ...) kelvra_log_debug({kLogUnit, function, __LINE__}, __VA_ARGS__)
/// The same with a fixed line number, an identifier that people search for.
#define KELVRA_LOGD_AT(line, ...) kelvra_log_debug({kLogUnit, __func__, line}, __VA_ARGS__)

/// Error log: console and system log, always.
#define KELVRA_LOGE(...) kelvra_log_error({kLogUnit, __func__, __LINE__}, __VA_ARGS__)

/// The trace of a function: its start now, its end on whichever way the enclosing function is left.
#define KELVRA_LOG_SCOPE() const KelvraLogScope kelvra_log_scope({kLogUnit, __func__, __LINE__})

/// What the macros above call. The console form of a message is one write: lines of two threads never mix.
/// Any thread.
void kelvra_log_debug(const KelvraLogSite& site, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
void kelvra_log_error(const KelvraLogSite& site, const char* fmt, ...) __attribute__((format(printf, 2, 3)));

/// What KELVRA_LOG_SCOPE declares.
class KelvraLogScope {
public:
    explicit KelvraLogScope(const KelvraLogSite& site) : site_(site) {
        kelvra_log_debug(site_, "function entry ------------->");
    }
    ~KelvraLogScope() { kelvra_log_debug(site_, "function exit <-------------"); }
    KelvraLogScope(const KelvraLogScope&) = delete;
    KelvraLogScope& operator=(const KelvraLogScope&) = delete;

private:
    const KelvraLogSite site_;
};

/// System log at LOG_DEBUG and at LOG_ERR, with the process's default identity.
void kelvra_ril_syslog_dbg(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void kelvra_ril_syslog_err(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

/// Progress and answers that quiet mode silences: printf and puts that print nothing while
/// g_quiet_mode is set.
void kelvra_printf(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void kelvra_puts(const char* line);

/// Formats a line of the modem-statistics clients into `buffer` (512 characters, terminated). Returns what
/// vsnprintf returns.
constexpr int kKolvoLogMax = 512;
int kolvo_log_format_log_msg(char* buffer, const char* fmt, ...) __attribute__((format(printf, 2, 3)));

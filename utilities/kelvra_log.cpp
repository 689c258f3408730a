#include "kelvra_log.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "cutils/properties.h"

std::atomic<bool> g_quiet_mode{false};
std::atomic<int> g_adb_log_state{2};

namespace {

constexpr int kNotRead = 2;

// Copies of a longer message are cut in the system log; the console always gets the whole text.
constexpr size_t kSystemLogMax = 16384;

bool debug_copies_are_on() {
    int state = g_adb_log_state.load(std::memory_order_relaxed);
    if (state == kNotRead) {
        char value[PROPERTY_VALUE_MAX] = "";
        property_get("persist.vendor.radio.adb_log_kv", value, "1");
        state = value[0] == '1' ? 1 : 0;
        g_adb_log_state.store(state, std::memory_order_relaxed);
        kelvra_ril_syslog_dbg("%s", state == 1 ? "rild print is started" : "rild print is stoped");
    }
    return state == 1;
}

using SystemLog = void (*)(const char* fmt, ...);

__attribute__((format(printf, 3, 0))) void copy_to_system_log(SystemLog log, const KelvraLogSite& site,
                                                              const char* fmt, va_list args) {
    char message[kSystemLogMax];
    vsnprintf(message, sizeof message, fmt, args);
    log("SUB[%s][%s:%d] %s: %s", "shell", site.unit, site.line, site.function, message);
}

__attribute__((format(printf, 2, 0))) void print_to_console(const KelvraLogSite& site, const char* fmt,
                                                            va_list args) {
    flockfile(stdout);
    printf("RIL[%s:%d]: ", site.function, site.line);
    vprintf(fmt, args);
    putchar('\n');
    funlockfile(stdout);
}

}  // namespace

void kelvra_log_debug(const KelvraLogSite& site, const char* fmt, ...) {
    va_list args;
    if (debug_copies_are_on()) {
        va_start(args, fmt);
        copy_to_system_log(kelvra_ril_syslog_dbg, site, fmt, args);
        va_end(args);
    }
    if (!g_quiet_mode) {
        va_start(args, fmt);
        print_to_console(site, fmt, args);
        va_end(args);
    }
}

void kelvra_log_error(const KelvraLogSite& site, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    copy_to_system_log(kelvra_ril_syslog_err, site, fmt, args);
    va_end(args);
    va_start(args, fmt);
    print_to_console(site, fmt, args);
    va_end(args);
}

void kelvra_ril_syslog_dbg(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vsyslog(LOG_DEBUG, fmt, args);
    va_end(args);
}

void kelvra_ril_syslog_err(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vsyslog(LOG_ERR, fmt, args);
    va_end(args);
}

void kelvra_printf(const char* fmt, ...) {
    if (g_quiet_mode)
        return;
    va_list args;
    va_start(args, fmt);
    vprintf(fmt, args);
    va_end(args);
}

void kelvra_puts(const char* line) {
    if (!g_quiet_mode)
        puts(line);
}

int kolvo_log_format_log_msg(char* buffer, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const int length = vsnprintf(buffer, kKolvoLogMax, fmt, args);
    va_end(args);
    return length;
}

#include "kelvra_log.h"

#include <syslog.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <string_view>

#include "cutils/properties.h"

std::atomic<bool> g_quiet_mode{false};
std::atomic<int> g_adb_log_state{2};

namespace {

constexpr int kNotRead = 2;

// Copies of a longer message are cut in the system log; the console always gets the whole text.
constexpr int kSystemLogMax = 16384;

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

// A message of usual length, with room around it for what its line begins and ends with.
class Line {
public:
    /// The length that the message has, which may be more than is kept.
    __attribute__((format(printf, 2, 0))) int format(const char* fmt, va_list args) {
        const int length = vsnprintf(text_ + kHeadMax, kSystemLogMax, fmt, args);
        end_ = text_ + kHeadMax + std::clamp<int>(length, 0, kSystemLogMax - 1);
        return length;
    }
    /// The message behind a head, which takes the place of the head before; the end may be written to.
    char* behind(std::initializer_list<std::string_view> head) {
        char* start = text_ + kHeadMax;
        for (const std::string_view* word = head.end(); word != head.begin();) {
            --word;
            const size_t size = std::min(word->size(), static_cast<size_t>(start - text_));
            start -= size;
            memcpy(start, word->data(), size);
        }
        return start;
    }
    char* end() { return end_; }

private:
    static constexpr int kHeadMax = 256;

    char text_[kHeadMax + kSystemLogMax];
    char* end_ = text_ + kHeadMax;
};

// Both forms of one message. It is formatted once for both, unless it is longer than the system log keeps.
__attribute__((format(printf, 4, 0))) void log_message(const KelvraLogSite& site, SystemLog copy,
                                                       bool to_console, const char* fmt, va_list args) {
    Line line;
    va_list again;
    va_copy(again, args);
    const int length = line.format(fmt, args);
    char digits[16];
    const size_t count = static_cast<size_t>(std::to_chars(digits, std::end(digits), site.line).ptr - digits);
    const std::string_view number(digits, count);
    if (copy != nullptr)
        copy("%s", line.behind({"SUB[shell][", site.unit, ":", number, "] ", site.function, ": "}));
    if (to_console && length < kSystemLogMax) {
        const char* const start = line.behind({"RIL[", site.function, ":", number, "]: "});
        *line.end() = '\n';
        fwrite(start, 1, static_cast<size_t>(line.end() + 1 - start), stdout);
    } else if (to_console) {
        flockfile(stdout);
        printf("RIL[%s:%d]: ", site.function, site.line);
        vprintf(fmt, again);
        putchar('\n');
        funlockfile(stdout);
    }
    va_end(again);
}

}  // namespace

void kelvra_log_debug(const KelvraLogSite& site, const char* fmt, ...) {
    const SystemLog copy = debug_copies_are_on() ? kelvra_ril_syslog_dbg : nullptr;
    const bool to_console = !g_quiet_mode;
    if (copy == nullptr && !to_console)
        return;
    va_list args;
    va_start(args, fmt);
    log_message(site, copy, to_console, fmt, args);
    va_end(args);
}

void kelvra_log_error(const KelvraLogSite& site, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    log_message(site, kelvra_ril_syslog_err, true, fmt, args);
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

#include <cstdarg>
#include <cstdio>

#include "android/log.h"
#include "kelvra_log.h"
#include "modem_api_slots.h"

void modem_api_log(int priority, const char* function, const char* fmt, ...) {
    char message[kKolvoLogMax];
    va_list args;
    va_start(args, fmt);
    vsnprintf(message, sizeof message, fmt, args);
    va_end(args);

    char line[kKolvoLogMax];
    kolvo_log_format_log_msg(line, "%s: %s", function, message);
    __android_log_print(priority, "KOLVO", "%s", line);
}

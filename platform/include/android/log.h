/* The Android log. */
#ifndef ANDROID_LOG_H
#define ANDROID_LOG_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT
} android_LogPriority;

/* Writes one message. Returns a positive number when it was written. Any thread. */
int __android_log_print(int priority, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif
#endif

#include "qcril_logger.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "kelvra_log.h"

namespace qti::ril::logger {

KELVRA_LOG_UNIT("qcril_logger");

namespace {

constexpr size_t kLineMax = 1024;

StdoutLogger g_logger;

}  // namespace

const char* const kLevelNames[6] = {"VERBOSE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL"};

void Logger::log(Level level, const char* fmt, ...) const {
    if (level > maximum_)
        return;
    char line[kLineMax];
    va_list args;
    va_start(args, fmt);
    vsnprintf(line, sizeof line, fmt, args);
    va_end(args);
    write(line);
}

void StdoutLogger::write(const char* line) const {
    puts(line);
}

const Logger& LoggerFactory::logger() {
    return g_logger;
}

bool LoggerFactory::set_option(const char* name, const char* value) {
    if (strcmp(name, kOptions[0].name) == 0) {
        for (size_t i = 0; i < std::size(kLevelNames); ++i) {
            if (strcmp(value, kLevelNames[i]) == 0) {
                g_logger.set_maximum(static_cast<Level>(i));
                return true;
            }
        }
    }
    KELVRA_LOGE("QCRIL Logger Initialization failure");
    return false;
}

}  // namespace qti::ril::logger

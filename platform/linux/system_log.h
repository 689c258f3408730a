// Where a modem's machine keeps its system log.
#pragma once

#include <sys/time.h>

#include <cstddef>
#include <memory>
#include <string>

namespace seam {

/// One message on its way to the log, in a buffer with room around it.
struct LogMessage {
    static constexpr size_t kTagMax = 255;
    /// What a log may put in front of the text; behind it, there is room for one byte.
    static constexpr size_t kHeadMax = kTagMax + 100;

    timeval time;
    char priority;    // V D I W E F
    const char* tag;  // at most kTagMax characters
    char* text;       // one line, without its end
    size_t size;
};

class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Writes the message at once and as a whole: messages of several threads and processes never mix. May
    /// change the bytes around the text. False when it is lost. Any thread.
    virtual bool write(const LogMessage& message) = 0;
};

/// The file log/system.log of a handset's folder.
std::unique_ptr<SystemLog> log_file(std::string folder);

/// Of the machine that the process runs on: Android's log where it is, else syslog.
std::unique_ptr<SystemLog> machine_log();

}  // namespace seam

// The QCRIL logger: leveled lines of the radio library's own code, as its allocator. Usable where memory has
// just run out: it allocates nothing.
#pragma once

#include <atomic>

namespace qti::ril::logger {

/// From the most talkative to the gravest.
enum class Level { kVerbose, kDebug, kInfo, kWarn, kError, kFatal };

/// Level names in the order of Level: "VERBOSE" and so on.
extern const char* const kLevelNames[6];

class Logger {
public:
    /// Writes one line, formatted as printf does, unless `level` lies above the maximum. Any thread.
    void log(Level level, const char* fmt, ...) const __attribute__((format(printf, 3, 4)));

    void set_maximum(Level level) { maximum_ = level; }

protected:
    constexpr Logger() = default;
    ~Logger() = default;

private:
    virtual void write(const char* line) const = 0;

    std::atomic<Level> maximum_{Level::kFatal};
};

/// Lines on standard output, in quiet mode too.
class StdoutLogger final : public Logger {
public:
    constexpr StdoutLogger() = default;

private:
    void write(const char* line) const override;
};

class LoggerFactory {
public:
    struct Option {
        const char* name;
        const char* description;
    };

    static constexpr Option kOptions[] = {{"level", "Set the maximum level to log at."}};

    /// The process's logger, a StdoutLogger that logs every level until the option says otherwise. Lives for
    /// ever. Any thread.
    static const Logger& logger();

    /// Sets an option of the process's logger; "level" takes a level's name. An unknown option or value
    /// changes nothing: false, after an error log.
    static bool set_option(const char* name, const char* value);
};

}  // namespace qti::ril::logger

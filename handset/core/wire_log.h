// The wire log, log/wire.log: what passed between the modem and the rest of the world, for people to read and
// for scripts to search. The format of its lines is described in wire_log.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "wire.h"

namespace handset {

enum class Direction { kToModem, kFromModem, kEvent };

/// One line, built field by field.
class WireLine {
public:
    /// `where` is the road, with the service behind a slash ("qmi/uim", "diag", "at", "modem"); connection 0
    /// is none.
    WireLine(std::string_view where, uint64_t connection, Direction direction);

    WireLine& word(std::string_view word);
    WireLine& number(std::string_view name, int64_t value);
    WireLine& unsigned_number(std::string_view name, uint64_t value);
    WireLine& text(std::string_view name, std::string_view value);
    WireLine& bytes(std::string_view name, wire::View value);

    const std::string& str() const { return line_; }

private:
    void field(std::string_view name);

    std::string line_;
};

class WireLog {
public:
    /// Appends to the file; throws Error when it cannot be opened.
    explicit WireLog(const std::string& path);
    ~WireLog();
    WireLog(const WireLog&) = delete;
    WireLog& operator=(const WireLog&) = delete;

    /// Stamps the line with the present time. It is in the file after the next flush().
    void add(const WireLine& line);

    /// Called before anything can be seen from outside, an answer as well as a closed connection: whoever
    /// sees it finds it in the log.
    void flush();

private:
    int fd_;
    std::string pending_;
    int64_t stamp_second_ = -1;
    std::string stamp_;
};

}  // namespace handset

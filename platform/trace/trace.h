// VXK_TRACE=FILE: what this process exchanges with the modem, at the end of FILE, in the JSON lines of
// json_line.h. A line is one write, so that several processes can share a file.
//
// A packet is only noted when it passes, because its line costs as much as a quick exchange. Lines are made
// and written once it is quiet, and before that, as far as it takes a small part of the time, by who waits
// for the modem: so what a lone exchange told is in the file when its answer is read.
#pragma once

#include <cstdint>
#include <memory>

#include "wire.h"

namespace trace {

/// Whether VXK_TRACE asks for a trace and its file can be written. Any thread.
bool is_on();

/// One connection. It is in the trace from its first packet on. Any thread.
class Connection {
public:
    /// Of a QMI service, or of the diag interface. Null when nothing is traced: then nothing is looked at but
    /// the environment, once. A file that cannot be written is one line on standard error.
    static std::unique_ptr<Connection> to_service(uint16_t service);
    static std::unique_ptr<Connection> to_diag();

    virtual ~Connection() = default;

    /// Notes a whole packet, as it travels on a handset's socket.
    virtual void sent(wire::View packet) = 0;
    virtual void received(wire::View packet) = 0;

    /// Notes that a request will have no answer; one that does come is noted all the same.
    virtual void gave_up(wire::View request) = 0;

    enum class By { kClient, kModem };
    /// Notes who ended it, and before that the requests that it leaves without an answer. Only the
    /// first call counts.
    virtual void closed(By by) = 0;

    /// Writes the lines of all that is noted, of every connection.
    virtual void flush() = 0;

    /// Writes what may be written while somebody waits.
    virtual void flush_in_passing() = 0;

    /// Writes all, if nothing has been noted since the last call, or too much is kept: for a thread that
    /// looks from time to time. What passes quickly would be slowed down by it.
    virtual void flush_when_quiet() = 0;
};

}  // namespace trace

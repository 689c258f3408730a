// A trace as a modem: what was answered to each request, and what else came, at the distance at which it
// came. A request is known by its road and its bytes, without what numbers it: the transaction, a diag
// client's number. It gets the answers of its occurrences in the trace one after the other, and then the last
// of them again and again. The carrying out is Port's.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "wire.h"

namespace handset {

/// One line of a trace, as far as a replay needs it.
struct TraceEvent {
    enum Kind {
        kRequest,
        kResponse,
        kIndication,
        kUnanswered,  // a request that stayed without an answer
        kConnected,
        kClosed,     // the modem ended the connection
        kWithdrawn,  // a service went away
        kPublished,
        kRestart,  // the modem went away
        kBoot,     // another handset, from here on
    };
    Kind kind = kRequest;
    std::chrono::microseconds time{0};
    std::string where;  // as in the wire log; with `pid` and `connection` it tells connections apart
    int64_t pid = 0;
    uint64_t connection = 0;
    uint32_t number = 0;  // kUnanswered: the transaction or op
    std::string fault;
    wire::Bytes packet;
};

class ReplayBook {
public:
    struct Step {
        enum Kind { kAnswer, kIndication, kUnanswered, kClose, kWithdraw, kRestart };
        Kind kind = kAnswer;
        std::chrono::milliseconds delay{0};  // since the request; kUnanswered: none
        std::chrono::milliseconds away{0};   // kWithdraw, kRestart: until the service is back
        wire::Bytes packet;
        std::string fault;
    };
    using Steps = std::vector<Step>;

    /// With `fast`, everything comes at once, except an answer that came after its client had gone on.
    ReplayBook(const std::vector<TraceEvent>& trace, bool fast, bool strict);

    /// What follows the request, or null when the trace does not have it; then `line` is kept for unknown().
    const Steps* next(const std::string& where, wire::View request, const std::string& line);

    /// What came on the next connection of the port before its first request.
    const Steps* opened(const std::string& where);

    /// Whether a request that the trace does not have is to be refused.
    bool strict() const { return strict_; }

    /// A recorded answer as the answer to this request.
    static wire::Bytes answer_to(const std::string& where, wire::View request, const wire::Bytes& recorded);

    /// Lines of requests that the trace does not have, each once, and how often it came.
    struct Unknown {
        std::string line;
        unsigned count = 0;
    };
    const std::vector<Unknown>& unknown() const { return unknown_; }

private:
    friend class TraceReader;
    struct Occurrences {
        std::vector<Steps> all;
        size_t next = 0;
    };

    std::map<std::string, Occurrences> requests_;  // by port and bytes
    std::map<std::string, Occurrences> connections_;
    std::map<std::string, size_t> unknown_numbers_;
    std::vector<Unknown> unknown_;
    bool strict_;
};

}  // namespace handset

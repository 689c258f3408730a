// One request on its way to its answer. A road says how to carry its requests out and how its answers are
// shaped; Port sends the answers and lets faults spoil them, the same way on every road.
#pragma once

#include <chrono>

#include "fault.h"
#include "wire.h"
#include "wire_log.h"

namespace handset {

struct Answer {
    wire::Bytes packet;
    std::chrono::milliseconds delay{0};
};

class Exchange {
public:
    virtual ~Exchange() = default;

    virtual ExchangeKey key() const = 0;

    /// Carries the request out. Called at most once.
    virtual Answer act() = 0;

    /// Whole packets that a fault sends instead of the answer.
    virtual wire::Bytes with_result(int32_t result) const = 0;
    virtual wire::Bytes with_modem_result(int32_t result) const = 0;
    virtual wire::Bytes with_payload(wire::View payload) const = 0;
    virtual wire::Bytes with_tlvs(wire::View tlvs) const = 0;

    /// The answer to a request that the modem does not know.
    virtual wire::Bytes unknown() const = 0;

    /// An answer's packet with only the first `keep` bytes behind its header.
    virtual wire::Bytes cut(wire::View packet, size_t keep) const = 0;

    /// The line of an answer, and the line that stands for one that is never sent.
    virtual WireLine answer_line(wire::View packet) const = 0;
    virtual WireLine no_answer_line() const = 0;
};

}  // namespace handset

// What differs between the ways to a modem: how its services are found, opened and lost, and how packets
// travel. Above this line nobody knows which way it is.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qmi_client.h"
#include "wire.h"

namespace seam {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// What is left until a deadline, rounded up; 0 once it has passed.
Milliseconds left_until(Clock::time_point deadline);

/// poll()'s time-out for what is left until a deadline.
int poll_limit(Clock::time_point deadline);

/// The end of a wait that begins when it is first asked for: what need not wait reads no clock, which on some
/// machines costs as much as a system call. Of one thread.
class Deadline {
public:
    explicit Deadline(Milliseconds limit) : limit_(limit) {}
    explicit Deadline(Clock::time_point at) : at_(at) {}

    Clock::time_point at() {
        if (!at_)
            at_ = Clock::now() + limit_;
        return *at_;
    }
    bool has_passed() { return at() <= Clock::now(); }

private:
    Milliseconds limit_{0};
    std::optional<Clock::time_point> at_;
};

/// Packets from and to one service. Any thread may send; one at a time receives.
class Channel {
public:
    enum class Sent { kDone, kNoRoom, kEnded, kRefused };

    virtual ~Channel() = default;

    /// A descriptor that is readable when receive() has something to do.
    virtual int descriptor() const = 0;

    /// One that is readable after shut(), where descriptor() does not tell that; else -1.
    virtual int end_descriptor() const { return -1; }

    /// Sends one packet without waiting. kRefused: the system does not take it, now or later.
    virtual Sent send(wire::View packet) = 0;

    /// Returns when there may be room for a packet, or at the deadline.
    virtual void wait_for_room(Deadline& deadline) = 0;

    /// One packet into `room`, cut to `size`, waiting at most until the deadline. Returns its size; 0 when
    /// nothing has come, also before the deadline; a negative number once the service is gone and all that it
    /// had sent is received, and after shut().
    virtual ssize_t receive(uint8_t* room, size_t size, Deadline& deadline) = 0;

    /// Ends the channel and a receive() that waits. Any thread, more than once.
    virtual void shut() = 0;
};

/// One way to a modem. Any thread. An instance of a service is described by a qmi_service_info, whose first
/// word is the service's id; the others are the road's. No call takes longer than its deadline allows.
class Road {
public:
    using Instances = std::vector<qmi_service_info>;

    virtual ~Road() = default;

    /// The published instances of a service, the preferred one first, without waiting for one. `known` is
    /// what an earlier look told: what is still in place as it was need not be asked again.
    virtual Instances look(uint32_t service_id, const Instances& known) = 0;

    /// Waits until another look at the services may tell something else. May return before the deadline.
    virtual void wait_for_change(const std::vector<uint32_t>& service_ids, Clock::time_point deadline) = 0;

    /// Opens an instance, or the preferred one when `instance` is null. Null: it cannot be opened.
    virtual std::unique_ptr<Channel> open(uint32_t service_id, const qmi_service_info* instance,
                                          Clock::time_point deadline) = 0;

    /// Why a service may not be there, and what to do: "no handset publishes it in ...", for the person at
    /// the shell.
    virtual std::string absence() const = 0;
};

}  // namespace seam

// One connection to a service: callers exchange requests and answers, and everything else that arrives is
// delivered on a thread of the connection's own.
//
// A caller that waits for its answer reads the channel itself, so that an answer needs no hop over a
// second thread; what it finds for others it puts into their hands. The connection's thread reads only
// while nobody waits.
#pragma once

#include <pthread.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "road.h"
#include "trace.h"
#include "unique_fd.h"
#include "wire.h"

namespace seam {

/// How the packets of one protocol are told apart. Called by any thread, one at a time.
struct Protocol {
    const char* thread_name;  // at most 15 characters
    size_t packet_max;        // a longer packet is cut to this and one byte
    /// The key of the request that a packet answers. Nothing: the packet is an event.
    std::optional<uint32_t> (*answer_key)(wire::View packet);
};

class Connection {
public:
    enum class Outcome { kAnswered, kEnded, kTimedOut, kRefused };

    /// `on_event` gets every packet that is no answer, in the order of arrival; `on_end` runs when the peer
    /// is gone and all events are delivered. Both on the connection's thread. `trace`: null when
    /// the packets are not to be traced.
    Connection(std::unique_ptr<Channel> channel, const Protocol& protocol,
               std::function<void(wire::Bytes&)> on_event, std::function<void()> on_end,
               std::unique_ptr<trace::Connection> trace);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Starts the connection's thread. False when the system has none to give.
    bool start();

    /// Sends a request and waits for the answer that has its key. kRefused: the system does not take the
    /// packet. An answer that comes after the limit, or that nobody asked for, is dropped. Any thread.
    Outcome exchange(wire::View packet, uint32_t key, Milliseconds limit, wire::Bytes& answer);

    /// Sends a packet that has no answer. kAnswered: it is sent. Any thread.
    Outcome send(wire::View packet, Deadline& deadline);

    /// After the peer has gone: waits until on_end has returned, or the connection is closed.
    void wait_for_end();

    /// Runs on_end again, if it has run already.
    void repeat_end();

    /// True once the peer is gone or the connection is closed.
    bool has_ended();

    bool is_own_thread() const;

    /// Ends the connection: waits for a callback that is running; none comes afterwards. Not on
    /// the own thread.
    void close();

private:
    struct Request {
        uint32_t key;
        bool is_answered;
        wire::Bytes answer;
    };

    static void* thread_main(void* self);
    void run();
    void sleep_until_something_happens(std::unique_lock<std::mutex>& lock);
    void wait_for_answer(Request& request, Deadline& deadline, std::unique_lock<std::mutex>& lock);
    void start_reading(const Request& request);
    void stop_reading(std::optional<Clock::time_point> start);
    void set_watched(bool is_watched);
    void watch_for_burst(Clock::time_point start);
    ssize_t receive(Deadline& deadline);
    void take(ssize_t size);
    void hand_out(wire::View packet);
    void end();
    void wake();
    void flush_trace();

    const std::unique_ptr<Channel> channel_;
    const host::UniqueFd wake_;   // an eventfd
    const host::UniqueFd epoll_;  // of the connection's thread: the channel and wake_
    const Protocol protocol_;
    const std::function<void(wire::Bytes&)> on_event_;
    const std::function<void()> on_end_;
    const std::unique_ptr<trace::Connection> trace_;
    pthread_t thread_{};
    bool is_started_ = false;

    // Of whoever reads: the caller that is reader_, else the connection's thread under the lock.
    // Not cleared: most of it is never touched, and clearing it costs a short command more than its exchange.
    const size_t buffer_size_;
    const std::unique_ptr<uint8_t[]> buffer_;

    std::mutex mutex_;  // guards all that follows
    std::condition_variable changed_;
    std::vector<Request*> open_;       // oldest first; each on its caller's stack
    const Request* reader_ = nullptr;  // whose caller reads the channel
    Clock::time_point started_at_;     // the last exchange whose caller read, outside a burst
    unsigned exchanges_ = 0;           // one soon after the other
    bool is_burst_ = false;            // of exchanges: the connection's thread does not watch the channel
    bool was_read_ = false;            // by a caller, since the thread looked last
    std::deque<wire::Bytes> events_;
    bool has_ended_ = false;
    bool is_closed_ = false;
    unsigned ends_due_ = 0;  // how often on_end is to run, and how often it has
    unsigned ends_done_ = 0;
};

}  // namespace seam

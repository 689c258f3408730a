// The handset's one thread: everything that happens to it is a ready descriptor or a timer that ran out.
// Callbacks may watch, forget, start and cancel anything, themselves included. Only the thread that runs the
// loop may call it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace handset {

class EventLoop {
public:
    using Token = uint64_t;
    using Ready = std::function<void(uint32_t events)>;
    using Action = std::function<void()>;
    using Milliseconds = std::chrono::milliseconds;

    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Calls `ready` whenever one of the epoll events is there. The caller keeps and closes the descriptor,
    /// and forgets it first.
    Token watch(int fd, uint32_t events, Ready ready);
    void change(Token watch, uint32_t events);
    void forget(Token watch);

    /// Calls `action` once, not before `delay` has passed and never from inside this call. Timers that are
    /// due at the same moment run in the order in which they were started.
    Token after(Milliseconds delay, Action action);

    /// Nothing happens for a timer that has run or was cancelled.
    void cancel(Token timer);

    /// Runs until stop() is called.
    void run();
    void stop() { running_ = false; }

    /// Handles what is ready now, until nothing is left; does not wait for timers.
    void drain();

private:
    using Clock = std::chrono::steady_clock;
    struct Watch {
        int fd;
        Ready ready;
    };

    /// Returns the number of descriptors that were ready.
    int step(int timeout_ms);
    int time_to_next_timer() const;
    void run_due_timers();

    int epoll_fd_;
    bool running_ = false;
    Token last_token_ = 0;
    std::map<Token, std::shared_ptr<Watch>> watches_;
    std::map<std::pair<Clock::time_point, Token>, Action> timers_;
};

}  // namespace handset

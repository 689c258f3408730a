#include "event_loop.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "error.h"

namespace handset {

EventLoop::EventLoop() : epoll_fd_(epoll_create1(EPOLL_CLOEXEC)) {
    if (epoll_fd_ < 0)
        throw system_error("cannot create an event queue", errno);
}

EventLoop::~EventLoop() {
    close(epoll_fd_);
}

EventLoop::Token EventLoop::watch(int fd, uint32_t events, Ready ready) {
    const Token token = ++last_token_;
    epoll_event event{};
    event.events = events;
    event.data.u64 = token;
    if (epoll_ctl(epoll_fd_, EPOLL_CTL_ADD, fd, &event) != 0)
        throw system_error("cannot watch a descriptor", errno);
    watches_[token] = std::make_shared<Watch>(Watch{fd, std::move(ready)});
    return token;
}

void EventLoop::change(Token watch, uint32_t events) {
    const auto found = watches_.find(watch);
    if (found == watches_.end())
        return;
    epoll_event event{};
    event.events = events;
    event.data.u64 = watch;
    epoll_ctl(epoll_fd_, EPOLL_CTL_MOD, found->second->fd, &event);
}

void EventLoop::forget(Token watch) {
    const auto found = watches_.find(watch);
    if (found == watches_.end())
        return;
    epoll_ctl(epoll_fd_, EPOLL_CTL_DEL, found->second->fd, nullptr);
    watches_.erase(found);
}

EventLoop::Token EventLoop::after(Milliseconds delay, Action action) {
    const Token token = ++last_token_;
    timers_.emplace(std::make_pair(Clock::now() + delay, token), std::move(action));
    return token;
}

void EventLoop::cancel(Token timer) {
    const auto found = std::find_if(timers_.begin(), timers_.end(),
                                    [timer](const auto& entry) { return entry.first.second == timer; });
    if (found != timers_.end())
        timers_.erase(found);
}

void EventLoop::run() {
    running_ = true;
    while (running_) {
        step(time_to_next_timer());
        run_due_timers();
    }
}

void EventLoop::drain() {
    while (step(0) > 0) {
    }
}

int EventLoop::step(int timeout_ms) {
    std::array<epoll_event, 32> events;
    const int count = epoll_wait(epoll_fd_, events.data(), static_cast<int>(events.size()), timeout_ms);
    if (count < 0 && errno != EINTR)
        throw system_error("cannot wait for events", errno);
    for (int i = 0; i < count; ++i) {
        // A copy: members of the packed structure must not be referred to.
        const epoll_event event = events[static_cast<size_t>(i)];
        const Token token = event.data.u64;
        // An earlier callback of this round may have forgotten the watch.
        const auto found = watches_.find(token);
        if (found == watches_.end())
            continue;
        const std::shared_ptr<Watch> watch = found->second;
        watch->ready(event.events);
    }
    return count;
}

int EventLoop::time_to_next_timer() const {
    if (timers_.empty())
        return -1;
    // Rounded up: a wait that ends a little early would spin until the timer is due.
    const auto left = std::chrono::ceil<Milliseconds>(timers_.begin()->first.first - Clock::now());
    return static_cast<int>(std::clamp<Milliseconds::rep>(left.count(), 0, 60'000));
}

void EventLoop::run_due_timers() {
    const Clock::time_point now = Clock::now();
    // What a timer starts is due after `now`, or comes behind it; it waits for the next round.
    const Token last = last_token_;
    while (running_ && !timers_.empty()) {
        const auto first = timers_.begin();
        if (first->first.first > now || first->first.second > last)
            return;
        const Action action = std::move(first->second);
        timers_.erase(first);
        action();
    }
}

}  // namespace handset

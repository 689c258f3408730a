#include "connection.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <csignal>
#include <utility>

namespace seam {

namespace {

thread_local const Connection* t_own_connection = nullptr;

// A peer that sends events faster than they are delivered has to wait, instead of filling the memory.
constexpr size_t kEventsMax = 256;

// How long no caller reads before a burst has ended, and how often an idle connection writes what is noted
// for the trace, in milliseconds.
constexpr int kQuietTime = 2;

// So many exchanges, each that soon after the other, are a burst: more than any command makes before it waits
// for an event.
constexpr unsigned kBurst = 8;

void watch(int epoll, int operation, int fd, uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = fd;
    epoll_ctl(epoll, operation, fd, &event);
}

}  // namespace

Connection::Connection(std::unique_ptr<Channel> channel, const Protocol& protocol,
                       std::function<void(wire::Bytes&)> on_event, std::function<void()> on_end,
                       std::unique_ptr<trace::Connection> trace)
    : channel_(std::move(channel)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      epoll_(epoll_create1(EPOLL_CLOEXEC)),
      protocol_(protocol),
      on_event_(std::move(on_event)),
      on_end_(std::move(on_end)),
      trace_(std::move(trace)),
      buffer_size_(protocol.packet_max + 1),
      buffer_(new uint8_t[buffer_size_]) {
    watch(epoll_.get(), EPOLL_CTL_ADD, wake_.get(), EPOLLIN);
    watch(epoll_.get(), EPOLL_CTL_ADD, channel_->descriptor(), EPOLLIN);
    if (channel_->end_descriptor() >= 0)
        watch(epoll_.get(), EPOLL_CTL_ADD, channel_->end_descriptor(), EPOLLIN);
}

Connection::~Connection() {
    close();
}

bool Connection::start() {
    if (!wake_ || !epoll_)
        return false;
    // The process's signals belong to its own threads.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    const std::lock_guard<std::mutex> lock(mutex_);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    is_started_ = pthread_create(&thread_, nullptr, thread_main, this) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return is_started_;
}

void Connection::close() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (is_closed_)
            return;
        is_closed_ = true;
        channel_->shut();
        wake();
        if (trace_)
            trace_->closed(trace::Connection::By::kClient);
    }
    if (is_started_)
        pthread_join(thread_, nullptr);
    flush_trace();
}

bool Connection::has_ended() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return has_ended_ || is_closed_;
}

bool Connection::is_own_thread() const {
    return t_own_connection == this;
}

// Callers.

Connection::Outcome Connection::exchange(wire::View packet, uint32_t key, Milliseconds limit,
                                         wire::Bytes& answer) {
    std::unique_lock<std::mutex> lock(mutex_);
    // Only before a burst is it of interest when an exchange started.
    const auto start = is_burst_ ? std::nullopt : std::optional(Clock::now());
    auto deadline = start ? Deadline(*start + limit) : Deadline(limit);
    if (has_ended_ || is_closed_)
        return Outcome::kEnded;
    Request request{key, false, {}};
    open_.push_back(&request);
    if (reader_ == nullptr)
        start_reading(request);
    lock.unlock();
    if (trace_)
        trace_->sent(packet);
    Outcome outcome = send(packet, deadline);
    if (trace_)
        trace_->flush_in_passing();
    lock.lock();
    if (outcome == Outcome::kAnswered)
        wait_for_answer(request, deadline, lock);
    open_.erase(std::find(open_.begin(), open_.end(), &request));
    if (reader_ == &request)
        stop_reading(start);
    if (trace_) {
        if (!request.is_answered)
            trace_->gave_up(packet);
        lock.unlock();
        trace_->flush_in_passing();
        lock.lock();
    }
    if (outcome != Outcome::kAnswered)
        return outcome;
    answer = std::move(request.answer);
    if (request.is_answered)
        return Outcome::kAnswered;
    return has_ended_ || is_closed_ ? Outcome::kEnded : Outcome::kTimedOut;
}

/// kAnswered: sent.
Connection::Outcome Connection::send(wire::View packet, Deadline& deadline) {
    for (;;) {
        switch (channel_->send(packet)) {
            case Channel::Sent::kDone:
                return Outcome::kAnswered;
            case Channel::Sent::kEnded:
                return Outcome::kEnded;
            case Channel::Sent::kRefused:
                return Outcome::kRefused;
            case Channel::Sent::kNoRoom:
                if (deadline.has_passed())
                    return Outcome::kTimedOut;
                channel_->wait_for_room(deadline);
        }
    }
}

void Connection::wait_for_answer(Request& request, Deadline& deadline, std::unique_lock<std::mutex>& lock) {
    bool is_late = false;
    while (!request.is_answered && !has_ended_ && !is_closed_ && !is_late) {
        if (reader_ == nullptr)
            start_reading(request);
        const bool must_wait = events_.size() >= kEventsMax && !is_own_thread();
        if (reader_ == &request && !must_wait) {
            lock.unlock();
            const ssize_t size = receive(deadline);
            lock.lock();
            take(size);
            is_late = !request.is_answered && deadline.has_passed();
        } else {
            is_late = changed_.wait_until(lock, deadline.at()) == std::cv_status::timeout;
        }
    }
}

// Taking the channel out of the thread's watch, and not only telling the thread to leave it alone, keeps the
// answer from waking two threads. A peer that goes away is reported all the same.
void Connection::start_reading(const Request& request) {
    reader_ = &request;
    was_read_ = true;
    if (!is_burst_)
        set_watched(false);
}

void Connection::stop_reading(std::optional<Clock::time_point> start) {
    reader_ = nullptr;
    if (start)
        watch_for_burst(*start);
    if (!is_burst_)
        set_watched(true);
    changed_.notify_all();
}

void Connection::set_watched(bool is_watched) {
    watch(epoll_.get(), EPOLL_CTL_MOD, channel_->descriptor(), is_watched ? EPOLLIN : 0U);
}

void Connection::watch_for_burst(Clock::time_point start) {
    if (start - std::exchange(started_at_, start) > Milliseconds(kQuietTime))
        exchanges_ = 0;
    if (++exchanges_ < kBurst || is_burst_)
        return;
    is_burst_ = true;
    // The thread sleeps without a limit.
    wake();
}

void Connection::wait_for_end() {
    if (is_own_thread())
        return on_end_();
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return is_closed_ || (has_ended_ && ends_done_ == ends_due_); });
}

void Connection::repeat_end() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!has_ended_)
        return;
    ++ends_due_;
    wake();
}

// Whoever reads.

/// One packet into the buffer; returns what Channel::receive() does.
ssize_t Connection::receive(Deadline& deadline) {
    return channel_->receive(buffer_.get(), buffer_size_, deadline);
}

/// Takes what receive() returned. The lock is held.
void Connection::take(ssize_t size) {
    if (size > 0)
        hand_out({buffer_.get(), static_cast<size_t>(size)});
    else if (size < 0)
        end();
}

/// Puts a packet into the hands of whom it is for. The lock is held.
void Connection::hand_out(wire::View packet) {
    if (trace_)
        trace_->received(packet);
    const auto key = protocol_.answer_key(packet);
    if (!key) {
        events_.push_back(packet.copy());
        return wake();
    }
    const auto asked = std::find_if(open_.begin(), open_.end(), [&](const Request* request) {
        return request->key == *key && !request->is_answered;
    });
    if (asked == open_.end())
        return;
    (*asked)->answer = packet.copy();
    (*asked)->is_answered = true;
    if (*asked != reader_)
        changed_.notify_all();
}

void Connection::end() {
    has_ended_ = true;
    if (trace_)
        trace_->closed(trace::Connection::By::kModem);
    ++ends_due_;
    wake();
}

/// Makes every thread of the connection look again.
void Connection::wake() {
    changed_.notify_all();
    if (!is_own_thread())
        eventfd_write(wake_.get(), 1);
}

void Connection::flush_trace() {
    if (trace_)
        trace_->flush();
}

// The connection's thread.

void* Connection::thread_main(void* self) {
    auto* connection = static_cast<Connection*>(self);
    t_own_connection = connection;
    pthread_setname_np(pthread_self(), connection->protocol_.thread_name);
    connection->run();
    return nullptr;
}

void Connection::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!is_closed_) {
        if (!events_.empty()) {
            wire::Bytes event = std::move(events_.front());
            events_.pop_front();
            changed_.notify_all();
            lock.unlock();
            flush_trace();
            on_event_(event);
            lock.lock();
        } else if (ends_done_ != ends_due_) {
            const unsigned serving = ends_due_;
            lock.unlock();
            flush_trace();
            on_end_();
            lock.lock();
            ends_done_ = serving;
            changed_.notify_all();
        } else if (has_ended_) {
            changed_.wait(lock);
        } else {
            sleep_until_something_happens(lock);
        }
    }
}

void Connection::sleep_until_something_happens(std::unique_lock<std::mutex>& lock) {
    const int limit = is_burst_ || trace_ ? kQuietTime : -1;
    lock.unlock();
    epoll_event happened{};
    const int count = epoll_wait(epoll_.get(), &happened, 1, limit);
    if (trace_)
        trace_->flush_when_quiet();
    eventfd_t wakes = 0;
    if (count == 1 && happened.data.fd == wake_.get())
        eventfd_read(wake_.get(), &wakes);
    lock.lock();
    if (wakes != 0)
        return;
    if (count == 0) {
        if (!is_burst_ || std::exchange(was_read_, false))
            return;
        if (reader_ == nullptr) {
            is_burst_ = false;
            return set_watched(true);
        }
    } else if (reader_ == nullptr) {
        Deadline at_once{Milliseconds(0)};
        return take(receive(at_once));
    }
    // A caller reads, and has for a while; or the channel ended, or was readable just before the caller took
    // it over: it reads on.
    const auto may_go_on = [this] {
        return reader_ == nullptr || is_closed_ || has_ended_ || !events_.empty();
    };
    if (trace_)
        changed_.wait_for(lock, Milliseconds(kQuietTime), may_go_on);
    else
        changed_.wait(lock, may_go_on);
}

}  // namespace seam

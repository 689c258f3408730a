#include "trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "describe.h"
#include "json_line.h"

namespace trace {
namespace {

using messages::LineHead;

// A packet or an event on its way to the file.
struct Note {
    timespec time{};
    std::optional<uint16_t> service;  // nothing: diag
    uint32_t connection = 0;
    const char* direction = "--";
    const char* event = nullptr;  // null: a packet
    const char* by = nullptr;     // who closed a connection
    uint32_t number = 0;          // of the request that stays unanswered: its transaction or op
    wire::Bytes packet;
    std::optional<int64_t> latency_us;
    std::optional<messages::Asked> asked;
};

timespec now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return time;
}

int64_t microseconds(const timespec& time) {
    return time.tv_sec * 1'000'000LL + time.tv_nsec / 1000;
}

std::string command_of_process() {
    std::string words;
    const int fd = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    char part[4096];
    for (ssize_t size = 0; (size = read(fd, part, sizeof part)) > 0;)
        words.append(part, static_cast<size_t>(size));
    close(fd);
    if (!words.empty() && words.back() == '\0')
        words.pop_back();
    std::replace(words.begin(), words.end(), '\0', ' ');
    return words;
}

std::string line_of(Note& note) {
    const bool to_modem = strcmp(note.direction, "->") == 0;
    std::optional<messages::QmiMessage> qmi;
    std::optional<messages::DiagMessage> diag;
    LineHead head;
    if (!note.event && note.service) {
        if (const auto packet = wire::decode_qmi(note.packet))
            head = messages::head_of(qmi.emplace(messages::decode(*note.service, *packet)));
    } else if (!note.event) {
        head = messages::head_of(diag.emplace(messages::decode_diag(to_modem, note.packet)));
    }
    head.time = note.time;
    head.road = note.service ? "qmi" : "diag";
    head.service = note.service;
    head.connection = note.connection;
    head.pid = getpid();
    head.direction = note.direction;
    if (note.event)
        head.message = note.event;
    if (note.number != 0)
        (note.service ? head.transaction : head.message_id) = note.number;

    messages::JsonLine line(head);
    if (qmi)
        messages::describe(*qmi, note.asked ? &*note.asked : nullptr, line);
    else if (diag)
        messages::describe(*diag, line);
    else if (!note.event)
        line.malformed();
    else if (strcmp(note.event, "connected") == 0)
        line.text("command", command_of_process());
    if (note.by)
        line.text("by", note.by);
    return line.finish(note.packet, note.latency_us, "");
}

/// The file of this process. Never destroyed.
class File {
public:
    explicit File(std::string name) : name_(std::move(name)) {
        // A pipe that nobody reads is refused, not waited for; one that is slow is waited for.
        fd_ = open(name_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
        if (fd_ < 0)
            complain();
        else
            fcntl(fd_, F_SETFL, O_APPEND);
    }

    bool is_open() const { return fd_ >= 0; }

    /// The next number of a connection to that service or to diag.
    uint32_t next_connection(std::optional<uint16_t> service) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return ++connections_[service];
    }

    void enter(Connection* connection) {
        const std::lock_guard<std::mutex> lock(mutex_);
        open_.insert(connection);
    }

    void leave(Connection* connection) {
        const std::lock_guard<std::mutex> lock(mutex_);
        open_.erase(connection);
    }

    /// Ends what the process leaves open when it exits.
    void close_all() {
        std::set<Connection*> left;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            left = open_;
        }
        for (Connection* connection : left)
            connection->closed(Connection::By::kClient);
        flush();
    }

    void add(Note note) {
        const std::lock_guard<std::mutex> lock(mutex_);
        notes_.push_back(std::move(note));
        ++added_;
    }

    void flush() {
        const std::lock_guard<std::mutex> writing(writing_);
        while (write_next()) {
        }
    }

    void flush_in_passing() {
        std::unique_lock<std::mutex> writing(writing_, std::try_to_lock);
        for (bool more = writing.owns_lock(); more;) {
            const auto start = Clock::now();
            if (spent_ > kFreeTime + (start - opened_) / kPartOfTime)
                return;
            more = write_next();
            spent_ += Clock::now() - start;
        }
    }

    void flush_when_quiet() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (std::exchange(seen_, added_) != added_ && notes_.size() < kNotesMax)
                return;
        }
        flush();
    }

private:
    using Clock = std::chrono::steady_clock;

    // How much of the time goes into lines that somebody waits for: a few lines of a short command, and of a
    // long one a part that nobody notices.
    static constexpr std::chrono::microseconds kFreeTime{40};
    static constexpr int kPartOfTime = 100;
    static constexpr size_t kNotesMax = 2048;

    /// False when there is nothing to write.
    bool write_next() {
        Note note;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (notes_.empty())
                return false;
            note = std::move(notes_.front());
            notes_.pop_front();
        }
        write_line(line_of(note) + "\n");
        return true;
    }

    void write_line(const std::string& line) {
        std::string_view left = line;
        while (fd_ >= 0 && !left.empty()) {
            const ssize_t count = write(fd_, left.data(), left.size());
            if (count >= 0) {
                left.remove_prefix(static_cast<size_t>(count));
            } else if (errno != EINTR) {
                complain();
                close(std::exchange(fd_, -1));
            }
        }
    }

    void complain() const {
        fprintf(stderr, "%s: cannot write the trace %s: %s\n", program_invocation_short_name, name_.c_str(),
                strerror(errno));
    }

    const std::string name_;
    const Clock::time_point opened_ = Clock::now();
    std::mutex writing_;  // held while lines are made and written, before the other; guards the next two
    int fd_ = -1;
    Clock::duration spent_{0};
    std::mutex mutex_;  // guards all that follows
    std::deque<Note> notes_;
    uint64_t added_ = 0;  // notes, ever, and as flush_when_quiet() saw them last
    uint64_t seen_ = 0;
    std::set<Connection*> open_;
    std::map<std::optional<uint16_t>, uint32_t> connections_;
};

File* file();

File* open_file() {
    const char* name = getenv("VXK_TRACE");
    if (name == nullptr || *name == '\0')
        return nullptr;
    auto file = std::make_unique<File>(name);
    if (!file->is_open())
        return nullptr;
    atexit([] { trace::file()->close_all(); });
    return file.release();
}

File* file() {
    static File* const the_one = open_file();
    return the_one;
}

class TracedConnection : public Connection {
public:
    TracedConnection(File& file, std::optional<uint16_t> service) : file_(file), service_(service) {
        file_.enter(this);
    }
    ~TracedConnection() override { file_.leave(this); }
    TracedConnection(const TracedConnection&) = delete;
    TracedConnection& operator=(const TracedConnection&) = delete;

    void sent(wire::View packet) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        Note note = new_note("->");
        if (const auto number = number_of(packet, false)) {
            Open& open = open_[*number];
            open = {microseconds(note.time), {}, false};
            if (service_ == messages::kExtension) {
                const auto request = wire::decode_qmi(packet);
                const auto body =
                    request ? messages::decode_extension(request->flags, request->body) : std::nullopt;
                if (body)
                    open.asked = messages::asked(*body);
            }
        }
        note.packet = packet.copy();
        file_.add(std::move(note));
    }

    void received(wire::View packet) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        Note note = new_note("<-");
        const auto number = number_of(packet, true);
        const auto open = number ? open_.find(*number) : open_.end();
        if (open != open_.end()) {
            note.latency_us = microseconds(note.time) - open->second.time;
            note.asked = open->second.asked;
            open_.erase(open);
        }
        note.packet = packet.copy();
        file_.add(std::move(note));
    }

    void gave_up(wire::View request) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto number = number_of(request, false);
        const auto open = number ? open_.find(*number) : open_.end();
        if (open != open_.end() && !is_closed_)
            note_unanswered(*open);
    }

    void closed(By by) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (std::exchange(is_closed_, true) || number_ == 0)
            return;
        for (auto& open : open_)
            note_unanswered(open);
        note_event("--", "closed", 0, by == By::kModem ? "modem" : "client");
    }

    void flush() override { file_.flush(); }
    void flush_in_passing() override { file_.flush_in_passing(); }
    void flush_when_quiet() override { file_.flush_when_quiet(); }

private:
    struct Open {
        int64_t time = 0;
        std::optional<messages::Asked> asked;
        bool is_given_up = false;
    };

    /// What an answer repeats of its request, or nothing when the packet is neither.
    std::optional<uint32_t> number_of(wire::View packet, bool is_answer) const {
        if (service_) {
            const auto head = wire::decode_qmi_head(packet);
            return head && head->flags == (is_answer ? wire::kQmiResponse : wire::kQmiRequest)
                       ? std::optional<uint32_t>(head->transaction)
                       : std::nullopt;
        }
        if (packet.size == 0 || ((packet.data[0] & wire::kDiagAnswer) != 0) != is_answer)
            return std::nullopt;
        return packet.data[0] & ~static_cast<uint32_t>(wire::kDiagAnswer);
    }

    // The lock is held, so that the notes of a connection are in the order of their times.
    Note new_note(const char* direction) {
        if (number_ == 0) {
            number_ = file_.next_connection(service_);
            note_event("--", "connected");
        }
        Note note;
        note.time = now();
        note.service = service_;
        note.connection = number_;
        note.direction = direction;
        return note;
    }

    void note_event(const char* direction, const char* event, uint32_t number = 0, const char* by = nullptr) {
        Note note = new_note(direction);
        note.by = by;
        note.event = event;
        note.number = number;
        file_.add(std::move(note));
    }

    void note_unanswered(std::pair<const uint32_t, Open>& open) {
        if (!std::exchange(open.second.is_given_up, true))
            note_event("<-", "unanswered", open.first);
    }

    File& file_;
    const std::optional<uint16_t> service_;
    std::mutex mutex_;  // guards all that follows; held before the file's
    uint32_t number_ = 0;
    bool is_closed_ = false;
    std::map<uint32_t, Open> open_;
};

std::unique_ptr<Connection> connection_to(std::optional<uint16_t> service) {
    return file() != nullptr ? std::make_unique<TracedConnection>(*file(), service) : nullptr;
}

}  // namespace

bool is_on() {
    return file() != nullptr;
}

std::unique_ptr<Connection> Connection::to_service(uint16_t service) {
    return connection_to(service);
}

std::unique_ptr<Connection> Connection::to_diag() {
    return connection_to(std::nullopt);
}

}  // namespace trace

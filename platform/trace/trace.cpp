#include "trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "describe.h"
#include "json_line.h"

namespace trace {
namespace {

using messages::LineHead;

/// What a connection tells, in the order in which it happens.
enum class What : uint8_t { kSent, kReceived, kGaveUp, kClosedByClient, kClosedByModem };

/// Packets and what happens to connections, with their times, one behind the other in one piece of memory:
/// noting one costs no more than copying it.
class Notes {
public:
    struct Head {
        timespec time{};
        uint32_t connection = 0;
        What what{};
        uint32_t size = 0;   // of the packet
        uint32_t zeros = 0;  // at its end, which are not kept
    };

    void add(Head head, wire::View packet) {
        clock_gettime(CLOCK_REALTIME, &head.time);
        const size_t kept = wire::without_zeros(packet);
        head.size = static_cast<uint32_t>(packet.size);
        head.zeros = static_cast<uint32_t>(packet.size - kept);
        const auto* const bytes = reinterpret_cast<const uint8_t*>(&head);
        bytes_.insert(bytes_.end(), bytes, bytes + sizeof head);
        bytes_.insert(bytes_.end(), packet.data, packet.data + kept);
    }

    /// The oldest note; nothing when all are taken.
    std::optional<Head> take(wire::Bytes& packet) {
        if (taken_ == bytes_.size())
            return std::nullopt;
        Head head;
        memcpy(&head, bytes_.data() + taken_, sizeof head);
        const uint8_t* const kept = bytes_.data() + taken_ + sizeof head;
        packet.assign(kept, kept + head.size - head.zeros);
        packet.resize(head.size);
        taken_ += sizeof head + head.size - head.zeros;
        return head;
    }

    size_t size() const { return bytes_.size(); }
    void clear() {
        bytes_.clear();
        taken_ = 0;
    }

private:
    std::vector<uint8_t> bytes_;
    size_t taken_ = 0;
};

// A packet or an event on its way to the file.
struct Note {
    timespec time{};
    std::optional<uint16_t> service;  // nothing: diag
    uint32_t connection = 0;
    const char* direction = "--";
    const char* event = nullptr;  // null: a packet
    const char* by = nullptr;     // who closed a connection
    uint32_t number = 0;          // of the request that stays unanswered: its transaction or op
    wire::View packet;
    std::optional<int64_t> latency_us;
    const messages::Asked* asked = nullptr;
};

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

std::string line_of(const Note& note) {
    const bool to_modem = strcmp(note.direction, "->") == 0;
    std::optional<messages::QmiMessage> qmi;
    std::optional<messages::DiagMessage> diag;
    LineHead head;
    if (note.event == nullptr && note.service) {
        if (const auto packet = wire::decode_qmi(note.packet))
            head = messages::head_of(qmi.emplace(messages::decode(*note.service, *packet)));
    } else if (note.event == nullptr) {
        head = messages::head_of(diag.emplace(messages::decode_diag(to_modem, note.packet)));
    }
    head.time = note.time;
    head.road = note.service ? "qmi" : "diag";
    head.service = note.service;
    head.connection = note.connection;
    head.pid = getpid();
    head.direction = note.direction;
    if (note.event != nullptr)
        head.message = note.event;
    if (note.number != 0)
        (note.service ? head.transaction : head.message_id) = note.number;

    messages::JsonLine line(head);
    if (qmi)
        messages::describe(*qmi, note.asked, line);
    else if (diag)
        messages::describe(*diag, line);
    else if (note.event == nullptr)
        line.malformed();
    else if (strcmp(note.event, "connected") == 0)
        line.text("command", command_of_process());
    if (note.by != nullptr)
        line.text("by", note.by);
    return line.finish(note.packet, note.latency_us, "");
}

/// What is known of one connection while its notes become lines.
class Story {
public:
    using Take = std::function<void(const Note& line)>;

    explicit Story(std::optional<uint16_t> service) : service_(service) {}

    const std::optional<uint16_t>& service() const { return service_; }
    bool has_begun() const { return number_ != 0; }
    void begin(uint32_t number) { number_ = number; }

    /// Hands the lines of one note to `take`, and keeps what a later one needs of it. It has begun.
    void tell(const Notes::Head& head, wire::View packet, const Take& take) {
        switch (head.what) {
            case What::kSent:
                return tell_request(head, packet, take);
            case What::kReceived:
                return tell_answer(head, packet, take);
            case What::kGaveUp: {
                const auto number = number_of(packet, false);
                const auto open = number ? open_.find(*number) : open_.end();
                if (open != open_.end() && !is_closed_)
                    tell_unanswered(head, *open, take);
                return;
            }
            case What::kClosedByClient:
            case What::kClosedByModem:
                return tell_end(head, take);
        }
    }

    /// The connection's first line.
    void tell_begin(const Notes::Head& head, const Take& take) {
        Note note = note_of(head);
        note.event = "connected";
        take(note);
    }

private:
    struct Open {
        int64_t time = 0;
        std::optional<messages::Asked> asked;
        bool is_given_up = false;
    };

    void tell_request(const Notes::Head& head, wire::View packet, const Take& take) {
        Note note = note_of(head);
        note.direction = "->";
        note.packet = packet;
        take(note);
        const auto number = number_of(packet, false);
        if (!number)
            return;
        Open& open = open_[*number];
        open = {messages::microseconds(head.time), {}, false};
        if (service_ != messages::kExtension)
            return;
        const auto request = wire::decode_qmi(packet);
        const auto body = request ? messages::decode_extension(request->flags, request->body) : std::nullopt;
        if (body)
            open.asked = messages::asked(*body);
    }

    void tell_answer(const Notes::Head& head, wire::View packet, const Take& take) {
        Note note = note_of(head);
        note.direction = "<-";
        note.packet = packet;
        const auto number = number_of(packet, true);
        const auto open = number ? open_.find(*number) : open_.end();
        if (open == open_.end())
            return take(note);
        note.latency_us = messages::microseconds(head.time) - open->second.time;
        note.asked = open->second.asked ? &*open->second.asked : nullptr;
        take(note);
        open_.erase(open);
    }

    void tell_unanswered(const Notes::Head& head, std::pair<const uint32_t, Open>& open, const Take& take) {
        if (std::exchange(open.second.is_given_up, true))
            return;
        Note note = note_of(head);
        note.direction = "<-";
        note.event = "unanswered";
        note.number = open.first;
        take(note);
    }

    void tell_end(const Notes::Head& head, const Take& take) {
        if (std::exchange(is_closed_, true))
            return;
        for (auto& open : open_)
            tell_unanswered(head, open, take);
        Note note = note_of(head);
        note.event = "closed";
        note.by = head.what == What::kClosedByModem ? "modem" : "client";
        take(note);
    }

    Note note_of(const Notes::Head& head) const {
        Note note;
        note.time = head.time;
        note.service = service_;
        note.connection = number_;
        return note;
    }

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

    const std::optional<uint16_t> service_;
    uint32_t number_ = 0;
    bool is_closed_ = false;
    std::map<uint32_t, Open> open_;
};

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

    /// Its place among the connections.
    uint32_t enter(std::optional<uint16_t> service) {
        const std::lock_guard<std::mutex> lock(mutex_);
        connections_.push_back(service);
        return static_cast<uint32_t>(connections_.size() - 1);
    }

    /// Ends what the process leaves open when it exits.
    void close_all() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            for (uint32_t i = 0; i < connections_.size(); ++i)
                notes_.add({{}, i, What::kClosedByClient}, {});
        }
        flush();
    }

    void add(uint32_t connection, What what, wire::View packet) {
        const std::lock_guard<std::mutex> lock(mutex_);
        notes_.add({{}, connection, what}, packet);
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
    static constexpr size_t kNotesMax = 1024 * 1024;

    /// False when there is nothing to write.
    bool write_next() {
        auto head = told_.take(packet_);
        if (!head) {
            told_.clear();
            const std::lock_guard<std::mutex> lock(mutex_);
            std::swap(told_, notes_);
            for (size_t i = stories_.size(); i < connections_.size(); ++i)
                stories_.emplace_back(connections_[i]);
            head = told_.take(packet_);
        }
        if (!head)
            return false;
        Story& story = stories_[head->connection];
        const auto write = [this](const Note& note) { write_line(line_of(note) + "\n"); };
        const bool is_packet = head->what == What::kSent || head->what == What::kReceived;
        if (is_packet && !story.has_begun()) {
            story.begin(++counts_[story.service()]);
            story.tell_begin(*head, write);
        }
        if (story.has_begun())
            story.tell(*head, packet_, write);
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
    std::mutex writing_;  // held while lines are made and written, before the other; guards the next six
    int fd_ = -1;
    Clock::duration spent_{0};
    Notes told_;  // those that become lines
    wire::Bytes packet_;
    std::vector<Story> stories_;
    std::map<std::optional<uint16_t>, uint32_t> counts_;  // of connections with a number, by service
    std::mutex mutex_;                                    // guards all that follows
    Notes notes_;
    uint64_t added_ = 0;  // notes, ever, and as flush_when_quiet() saw them last
    uint64_t seen_ = 0;
    std::vector<std::optional<uint16_t>> connections_;  // their services
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
    TracedConnection(File& file, std::optional<uint16_t> service)
        : file_(file), number_(file.enter(service)) {}

    void sent(wire::View packet) override { file_.add(number_, What::kSent, packet); }
    void received(wire::View packet) override { file_.add(number_, What::kReceived, packet); }
    void gave_up(wire::View request) override { file_.add(number_, What::kGaveUp, request); }
    void closed(By by) override {
        file_.add(number_, by == By::kModem ? What::kClosedByModem : What::kClosedByClient, {});
    }
    void flush() override { file_.flush(); }
    void flush_in_passing() override { file_.flush_in_passing(); }
    void flush_when_quiet() override { file_.flush_when_quiet(); }

private:
    File& file_;
    const uint32_t number_;
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

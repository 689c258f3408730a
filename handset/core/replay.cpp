#include "replay.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>

#include "messages.h"

namespace handset {
namespace {

using Microseconds = std::chrono::microseconds;
using Milliseconds = std::chrono::milliseconds;

constexpr size_t kQmiMessageAt = 3;  // behind the flags and the transaction

bool is_qmi(const std::string& where) {
    return where.compare(0, 4, "qmi/") == 0;
}

// The handset numbers its diag clients itself, so a client of the trace may have another number here.
void mask_diag_client(std::string& packet) {
    const messages::DiagOp* op =
        packet.empty() ? nullptr : messages::diag_op(static_cast<uint8_t>(packet[0]));
    if (op == nullptr || std::string_view(op->request[0].name) != "client" || packet.size() < 5)
        return;
    packet.replace(1, 4, 4, '\0');
}

std::string key_of(const std::string& where, wire::View request) {
    const size_t numbered = is_qmi(where) ? std::min(kQmiMessageAt, request.size) : 0;
    std::string bytes(reinterpret_cast<const char*>(request.data) + numbered, request.size - numbered);
    if (where == "diag")
        mask_diag_client(bytes);
    return where + '\n' + bytes;
}

// What tells an answer's request: the transaction, on the diag road the op.
std::optional<uint32_t> number_of(const std::string& where, wire::View packet) {
    if (is_qmi(where)) {
        const auto head = wire::decode_qmi_head(packet);
        return head ? std::optional<uint32_t>(head->transaction) : std::nullopt;
    }
    if (packet.size == 0)
        return std::nullopt;
    return packet.data[0] & ~wire::kDiagAnswer;
}

}  // namespace

// Goes through a trace and sorts what came from the modem to the requests that it followed.
class TraceReader {
public:
    TraceReader(ReplayBook& book, bool fast) : book_(book), fast_(fast) {}

    void read(const std::vector<TraceEvent>& trace) {
        for (size_t i = 0; i < trace.size(); ++i)
            read(trace, i);
    }

private:
    // The steps behind a request or an opened connection; the book may grow meanwhile.
    struct Place {
        ReplayBook::Occurrences* list = nullptr;
        size_t index = 0;
        Microseconds time{0};
        ReplayBook::Steps& steps() const { return list->all[index]; }
        bool operator!=(const Place& other) const { return list != other.list || index != other.index; }
    };
    struct Connection {
        Place current;
        std::map<uint32_t, Place> open;
    };
    using Key = std::tuple<std::string, int64_t, uint64_t>;

    static Place add(ReplayBook::Occurrences& list, Microseconds time) {
        list.all.emplace_back();
        return {&list, list.all.size() - 1, time};
    }

    Connection& connection(const TraceEvent& event) {
        const Key key{event.where, event.pid, event.connection};
        const auto known = connections_.find(key);
        if (known != connections_.end())
            return known->second;
        Connection& made = connections_[key];
        made.current = add(book_.connections_[event.where], event.time);
        return made;
    }

    void add_step(const Place& place, const TraceEvent& event, ReplayBook::Step::Kind kind,
                  Milliseconds away = Milliseconds(0), bool gone_on = false) {
        const auto delay = std::chrono::duration_cast<Milliseconds>(event.time - place.time);
        const bool at_once = (fast_ && !gone_on) || delay.count() < 0;
        place.steps().push_back({kind, at_once ? Milliseconds(0) : delay, away, event.packet, event.fault});
    }

    void read(const std::vector<TraceEvent>& trace, size_t i) {
        const TraceEvent& event = trace[i];
        switch (event.kind) {
            case TraceEvent::kBoot:
                connections_.clear();
                last_.clear();
                away_.clear();
                any_last_.reset();
                break;
            case TraceEvent::kConnected:
                connections_.erase({event.where, event.pid, event.connection});
                connection(event);
                break;
            case TraceEvent::kRequest:
                request(event);
                break;
            case TraceEvent::kIndication:
                add_step(connection(event).current, event, ReplayBook::Step::kIndication);
                break;
            case TraceEvent::kResponse:
                if (const auto number = number_of(event.where, event.packet))
                    answer(event, *number, ReplayBook::Step::kAnswer);
                break;
            case TraceEvent::kUnanswered:
                spoilt_ = event.fault == "withdraw" ? event.where : "";
                answer(event, event.number, ReplayBook::Step::kUnanswered);
                break;
            case TraceEvent::kClosed:
                close(event);
                break;
            case TraceEvent::kWithdrawn:
                withdraw(trace, i, last_.count(event.where) > 0 ? &last_[event.where] : nullptr);
                away_.insert(event.where);
                spoilt_.clear();
                break;
            case TraceEvent::kPublished:
                away_.erase(event.where);
                restarting_ = false;
                break;
            case TraceEvent::kRestart:
                withdraw(trace, i, any_last_ ? &*any_last_ : nullptr);
                restarting_ = true;
                break;
        }
    }

    void request(const TraceEvent& event) {
        const auto number = number_of(event.where, event.packet);
        if (!number)
            return;
        Connection& from = connection(event);
        from.current = add(book_.requests_[key_of(event.where, event.packet)], event.time);
        from.open[*number] = from.current;
        last_[event.where] = from.current;
        any_last_ = from.current;
    }

    void answer(const TraceEvent& event, uint32_t number, ReplayBook::Step::Kind kind) {
        Connection& to = connection(event);
        const auto open = to.open.find(number);
        if (open == to.open.end())
            return;
        add_step(open->second, event, kind, Milliseconds(0), open->second != to.current);
        to.open.erase(open);
    }

    void close(const TraceEvent& event) {
        const auto closed = connections_.find({event.where, event.pid, event.connection});
        if (closed == connections_.end())
            return;
        if (away_.count(event.where) == 0)
            add_step(closed->second.current, event, ReplayBook::Step::kClose);
        connections_.erase(closed);
    }

    // A restart has all services away, and nobody who wants one finds it: this time is no delay to
    // be left out.
    void withdraw(const std::vector<TraceEvent>& trace, size_t i, const Place* after) {
        const TraceEvent& event = trace[i];
        const bool restart = event.kind == TraceEvent::kRestart;
        if (after == nullptr || (restarting_ && !restart))
            return;
        // Where the trace ends before: at least so long that its last client does not see it come back.
        Microseconds back = trace.back().time + std::chrono::seconds(1);
        bool is_back = false;
        for (size_t j = i + 1; j < trace.size() && trace[j].kind != TraceEvent::kBoot && !is_back; ++j) {
            is_back = trace[j].kind == TraceEvent::kPublished && (restart || trace[j].where == event.where);
            if (is_back)
                back = trace[j].time;
        }
        // At the end of its run a handset withdraws everything.
        if (!is_back && !restart && spoilt_ != event.where)
            return;
        const auto away = std::chrono::duration_cast<Milliseconds>(back - event.time);
        add_step(*after, event, restart ? ReplayBook::Step::kRestart : ReplayBook::Step::kWithdraw,
                 std::max(away, Milliseconds(0)));
    }

    ReplayBook& book_;
    const bool fast_;
    std::map<Key, Connection> connections_;
    std::map<std::string, Place> last_;  // request of a port
    std::optional<Place> any_last_;      // of all
    std::set<std::string> away_;         // ports that are withdrawn
    std::string spoilt_;                 // port that a fault has withdrawn just now
    bool restarting_ = false;
};

ReplayBook::ReplayBook(const std::vector<TraceEvent>& trace, bool fast, bool strict) : strict_(strict) {
    TraceReader(*this, fast).read(trace);
}

const ReplayBook::Steps* ReplayBook::next(const std::string& where, wire::View request,
                                          const std::string& line) {
    const std::string key = key_of(where, request);
    const auto known = requests_.find(key);
    if (known == requests_.end()) {
        const auto number = unknown_numbers_.emplace(key, unknown_.size());
        if (number.second)
            unknown_.push_back({line, 0});
        ++unknown_[number.first->second].count;
        return nullptr;
    }
    Occurrences& list = known->second;
    const Steps& steps = list.all[list.next];
    list.next = std::min(list.next + 1, list.all.size() - 1);
    return &steps;
}

const ReplayBook::Steps* ReplayBook::opened(const std::string& where) {
    const auto known = connections_.find(where);
    if (known == connections_.end() || known->second.next == known->second.all.size())
        return nullptr;
    return &known->second.all[known->second.next++];
}

wire::Bytes ReplayBook::answer_to(const std::string& where, wire::View request, const wire::Bytes& recorded) {
    wire::Bytes packet = recorded;
    if (is_qmi(where) && packet.size() >= kQmiMessageAt && request.size >= kQmiMessageAt)
        std::copy_n(request.data + 1, kQmiMessageAt - 1, packet.begin() + 1);
    return packet;
}

}  // namespace handset

#include "port.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "core.h"

namespace handset {
namespace {

// The words of a process's command, while it lives.
std::string command_of(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/cmdline", std::ios::binary);
    std::string words(std::istreambuf_iterator<char>(file), {});
    if (!words.empty() && words.back() == '\0')
        words.pop_back();
    std::replace(words.begin(), words.end(), '\0', ' ');
    return words;
}

void describe_peer(const Peer& peer, WireLine& line) {
    if (!peer.address.empty())
        line.text("address", peer.address);
    if (peer.pid == 0)
        return;
    line.number("pid", peer.pid);
    const std::string command = command_of(peer.pid);
    if (!command.empty())
        line.command(command);
}

}  // namespace

Port::Port(Core& core, std::string where, const PortName& name) : core_(core), where_(std::move(where)) {
    for (const auto& transport : core_.transports()) {
        if (auto endpoint = transport->endpoint(*this, name))
            endpoints_.push_back(std::move(endpoint));
    }
    core_.add_port(*this);
}

Port::~Port() {
    Port::withdraw();
}

void Port::publish() {
    core_.loop().cancel(std::exchange(comeback_, 0));
    if (std::exchange(published_, true))
        return;
    log(WireLine(where_, 0, Direction::kEvent).event("published"));
    core_.flush();
    for (const auto& endpoint : endpoints_)
        endpoint->publish();
}

void Port::withdraw() {
    core_.loop().cancel(std::exchange(comeback_, 0));
    if (!std::exchange(published_, false))
        return;
    log(WireLine(where_, 0, Direction::kEvent).event("withdrawn"));
    core_.flush();
    for (const auto& endpoint : endpoints_)
        endpoint->withdraw();
    while (!connections_.empty())
        close_connection(connections_.begin()->first);
}

void Port::withdraw_for(std::chrono::milliseconds time) {
    withdraw();
    comeback_ = core_.loop().after(time, [this] { publish(); });
}

ConnectionId Port::next_connection() {
    return core_.next_connection();
}

void Port::opened(Endpoint& endpoint, ConnectionId id, Peer peer) {
    connections_[id] = {&endpoint, std::move(peer), 0};
    connection_opened(id);
    const ReplayBook::Steps* steps = core_.replay() != nullptr ? core_.replay()->opened(where_) : nullptr;
    if (steps == nullptr)
        return;
    for (const ReplayBook::Step& step : *steps)
        after(step.delay, [this, id, &step] { play(id, step); });
}

void Port::received(ConnectionId id, wire::View packet) {
    handle(id, packet);
    core_.flush();
}

void Port::received_too_much(ConnectionId id, size_t length) {
    log(line(id, Direction::kToModem)
            .event("malformed", static_cast<uint32_t>(length))
            .unsigned_number("length", length));
    core_.flush();
}

void Port::sent_too_much(ConnectionId id, size_t length) {
    log(line(id, Direction::kEvent)
            .event("unsent", static_cast<uint32_t>(length))
            .unsigned_number("length", length));
    core_.flush();
}

void Port::closed(ConnectionId id) {
    end(id, false);
}

void Port::end(ConnectionId id, bool by_modem) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    if (found->second.number != 0)
        log(line(id, Direction::kEvent).event("closed", by_modem ? 1 : 0));
    core_.flush();
    connections_.erase(found);
    connection_closed(id);
}

void Port::close_connection(ConnectionId id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    Endpoint* const endpoint = found->second.endpoint;
    end(id, true);
    endpoint->close(id);
}

void Port::send(ConnectionId id, const wire::Bytes& packet, const WireLine& entry) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    log(entry, packet);
    core_.flush();
    found->second.endpoint->send(id, packet);
}

void Port::answer(ConnectionId connection, wire::View packet, const WireLine& asked, Exchange& exchange) {
    if (const Fault* fault = core_.next_fault(exchange.key()))
        return spoil(connection, exchange, *fault);
    if (replay(connection, packet, asked, exchange))
        return;
    const Answer answer = exchange.act();
    send_answer(connection, exchange, answer.packet, answer.delay);
}

void Port::spoil(ConnectionId connection, Exchange& exchange, const Fault& fault) {
    Answer answer;
    if (fault.acts)
        answer = exchange.act();
    std::chrono::milliseconds delay = answer.delay;
    switch (fault.action) {
        case FaultAction::kLate:
            delay += fault.time;
            break;
        case FaultAction::kResult:
            answer.packet = exchange.with_result(fault.result);
            break;
        case FaultAction::kModemResult:
            answer.packet = exchange.with_modem_result(fault.result);
            break;
        case FaultAction::kPayload:
            answer.packet = exchange.with_payload(fault.bytes);
            break;
        case FaultAction::kTlvs:
            answer.packet = exchange.with_tlvs(fault.bytes);
            break;
        case FaultAction::kCut:
            answer.packet = exchange.cut(answer.packet, fault.keep);
            break;
        case FaultAction::kNoAnswer:
        case FaultAction::kClose:
        case FaultAction::kWithdraw:
        case FaultAction::kRestart:
            log(exchange.no_answer_line().fault(fault.name()));
            if (fault.action == FaultAction::kClose)
                close_connection(connection);
            if (fault.action == FaultAction::kWithdraw)
                withdraw_for(fault.time);
            if (fault.action == FaultAction::kRestart)
                core_.restart_modem();
            return;
    }
    send_answer(connection, exchange, answer.packet, delay, fault.name());
}

bool Port::replay(ConnectionId connection, wire::View packet, const WireLine& asked, Exchange& exchange) {
    ReplayBook* const book = core_.replay();
    if (book == nullptr)
        return false;
    const ReplayBook::Steps* steps = book->next(where_, packet, asked.str());
    if (steps == nullptr && book->strict())
        send_answer(connection, exchange, exchange.unknown(), std::chrono::milliseconds(0));
    if (steps == nullptr)
        return book->strict();
    for (const ReplayBook::Step& step : *steps) {
        if (step.kind == ReplayBook::Step::kAnswer) {
            const wire::Bytes answer = ReplayBook::answer_to(where_, packet, step.packet);
            send_answer(connection, exchange, answer, step.delay, step.fault);
        } else if (step.kind == ReplayBook::Step::kUnanswered) {
            WireLine entry = exchange.no_answer_line();
            log(step.fault.empty() ? entry : entry.fault(step.fault));
        } else {
            after(step.delay, [this, connection, &step] { play(connection, step); });
        }
    }
    return true;
}

void Port::play(ConnectionId connection, const ReplayBook::Step& step) {
    if (step.kind == ReplayBook::Step::kIndication && connections_.count(connection) > 0)
        send(connection, step.packet, unasked_line(connection, step.packet));
    if (step.kind == ReplayBook::Step::kClose)
        close_connection(connection);
    if (step.kind == ReplayBook::Step::kWithdraw)
        withdraw_for(step.away);
    if (step.kind == ReplayBook::Step::kRestart)
        core_.restart_modem(step.away);
}

void Port::send_answer(ConnectionId connection, const Exchange& exchange, const wire::Bytes& packet,
                       std::chrono::milliseconds delay, const std::string& fault) {
    WireLine entry = exchange.answer_line(packet);
    if (!fault.empty())
        entry.fault(fault);
    // Most are due at once, and need no copy that outlives this.
    if (delay.count() == 0)
        return send(connection, packet, entry);
    core_.loop().after(delay, [this, connection, packet, entry] { send(connection, packet, entry); });
}

void Port::after(std::chrono::milliseconds delay, EventLoop::Action action) {
    if (delay.count() == 0)
        return action();
    core_.loop().after(delay, std::move(action));
}

std::vector<ConnectionId> Port::connections() const {
    std::vector<ConnectionId> ids;
    for (const auto& entry : connections_)
        ids.push_back(entry.first);
    return ids;
}

WireLine Port::line(ConnectionId id, Direction direction) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return WireLine(where_, 0, direction);
    unsigned& number = found->second.number;
    const Peer& peer = found->second.peer;
    if (number == 0) {
        number = ++last_number_;
        WireLine entry(where_, number, Direction::kEvent, peer.pid);
        entry.event("connected");
        describe_peer(peer, entry);
        log(entry);
    }
    return WireLine(where_, number, direction, peer.pid);
}

void Port::log(const WireLine& line, wire::View packet) {
    core_.wire_log().add(line, packet);
}

}  // namespace handset

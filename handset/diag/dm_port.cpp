#include "dm_port.h"

#include "core.h"
#include "diag_peripheral.h"
#include "diag_responder.h"
#include "messages.h"

namespace handset {
namespace {

constexpr char kWhere[] = "dm";
constexpr uint8_t kLog = 0x10;

// More late responses than these are not kept; commands wait instead.
constexpr size_t kLateMax = 256;

WireLine message_line(Direction direction, const char* name, wire::View message) {
    WireLine line(kWhere, 0, direction);
    if (const char* meaning = messages::diag_code_name(message))
        line.text("code", meaning);
    return line.bytes(name, message);
}

}  // namespace

DmPort::DmPort(Core& core, const DiagResponder& responder, const std::vector<DiagLog>& logs)
    : core_(core),
      responder_(responder),
      logs_(logs),
      terminal_(core, "dm", [this](wire::View bytes) { received(bytes); }),
      streams_(logs.size()) {
    terminal_.on_change([this](bool open) {
        start_anew();
        core_.state().set("dm", "reader", open ? "yes" : "no");
    });
    core_.on_restart([this] { start_anew(); });
    core_.state().clear("dm");
    core_.state().set("dm", "terminal", terminal_.device().empty() ? "none" : terminal_.device());
    core_.state().set("dm", "reader", "no");
    core_.state().set("dm", "logs of the profile", logs_.size());
}

void DmPort::start_anew() {
    ++session_;
    reader_.forget();
    masks_ = DiagMasks();
    choose_logs();
}

void DmPort::received(wire::View bytes) {
    for (size_t i = 0; i < bytes.size; ++i) {
        const auto frame = reader_.take(bytes.data[i]);
        if (!frame)
            continue;
        if (frame->whole)
            carry_out(frame->bytes);
        else
            core_.wire_log().add(
                WireLine(kWhere, 0, Direction::kToModem).word("malformed").bytes("data", frame->bytes),
                frame->bytes);
    }
}

void DmPort::carry_out(wire::View command) {
    core_.wire_log().add(message_line(Direction::kToModem, "command", command), command);
    // A modem that is away does not hear.
    if (!core_.is_up())
        return;
    const DiagResponse response = responder_.response(masks_, command);
    if (!response.silent && response.timing.delay.count() == 0)
        send_response(*response.bytes);
    if (!response.silent && response.timing.delay.count() > 0) {
        if (++late_ >= kLateMax)
            terminal_.pause();
        core_.loop().after(response.timing.delay, [this, session = session_, bytes = *response.bytes] {
            if (session == session_)
                send_response(bytes);
            if (--late_ < kLateMax)
                terminal_.resume();
        });
    }
    choose_logs();
}

void DmPort::send_response(const wire::Bytes& response) {
    core_.wire_log().add(message_line(Direction::kFromModem, "response", response), response);
    core_.flush();
    terminal_.send(diag_frame(response));
}

// Logs are sent while somebody is there who wants them.
void DmPort::choose_logs() {
    for (size_t i = 0; i < streams_.size(); ++i) {
        Stream& stream = streams_[i];
        const DiagLog& log = logs_[i];
        const bool wanted = terminal_.is_open() && masks_.has_log(log.code);
        if (wanted == stream.wanted)
            continue;
        stream.wanted = wanted;
        core_.loop().cancel(stream.timer);
        stream.timer = 0;
        if (wanted)
            continue_log(i, log.count, std::chrono::milliseconds(0));
    }
}

void DmPort::continue_log(size_t place, uint32_t left, std::chrono::milliseconds delay) {
    streams_[place].timer = core_.loop().after(delay, [this, place, left] {
        const DiagLog& log = logs_[place];
        send_log(log);
        if (left > 1)
            continue_log(place, left - 1, log.every);
    });
}

void DmPort::send_log(const DiagLog& log) {
    const auto length = static_cast<uint16_t>(DiagLog::kHeaderSize + log.bytes.size());
    wire::Writer packet;
    packet.u8(kLog).u8(0).u16(length);
    packet.u16(length).u16(log.code).u64(diag_timestamp()).bytes(log.bytes);
    WireLine entry(kWhere, 0, Direction::kFromModem);
    entry.word("log").number("code", log.code).bytes("data", log.bytes);
    core_.wire_log().add(entry, packet.data());
    core_.flush();
    terminal_.send(diag_frame(packet.data()));
}

}  // namespace handset

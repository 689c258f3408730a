#include "core.h"

#include <utility>

#include "error.h"
#include "hex_text.h"
#include "messages.h"
#include "profile_section.h"
#include "socket_transport.h"

namespace handset {

void read_profile(Section& section, ModemProfile& modem) {
    auto time = static_cast<uint32_t>(modem.restart_time.count());
    section.integer<uint32_t>("restart_ms", time, 0, 600'000);
    modem.restart_time = std::chrono::milliseconds(time);
}

Core::Core(EventLoop& loop, const std::string& folder, const ModemProfile& modem,
           const std::vector<Fault>& faults, std::vector<std::unique_ptr<Transport>> transports)
    : loop_(loop),
      modem_(modem),
      folder_(folder),
      wire_log_(folder_.at("log")),
      faults_(faults),
      state_(folder_),
      control_(loop_, folder_, [this] { flush(); }),
      transports_(std::move(transports)) {
    transports_.push_back(std::make_unique<SocketTransport>(loop_, folder_));
    state_.set("modem", "state", "up");
    state_.set("modem", "restarts", restarts_);
    log_event("boot");
    show_faults();
    control_.add_command("fault", [this](const Control::Words& words) { return control_faults(words); });
    control_.add_command("flush", [this](const Control::Words&) {
        wire_log_.flush_records();
        return std::string();
    });
    control_.add_event("restart", "", [this](const Control::Words&) {
        // No answer is waited for: like every event it has happened when its command ends.
        if (!std::exchange(away_, true))
            go_away(modem_.restart_time);
    });
    control_.add_event("indication", "SERVICE ID TLVS",
                       [this](const Control::Words& words) { indicate(words); });
    control_.add_setting("modem", [this](Section& section) {
        ModemProfile changed = modem_;
        read_profile(section, changed);
        return [this, changed] { modem_ = changed; };
    });
}

const Fault* Core::next_fault(const ExchangeKey& key) {
    const Fault* fault = faults_.next(key);
    if (fault != nullptr)
        show_faults();
    return fault;
}

void Core::show_faults() {
    unsigned number = 0;
    state_.clear("faults");
    for (const FaultBook::Line& line : faults_.lines())
        state_.set("faults", std::to_string(++number), line.fault + ", " + line.left);
}

void Core::indicate(const Control::Words& words) {
    if (words.size() < 2)
        throw Error("event indication takes a service, the indication's number and its TLVs");
    const messages::Service* known = messages::service(words[0]);
    const uint32_t id =
        known != nullptr ? known->id : number_in(words[0], "a service without a name", 1, UINT16_MAX);
    std::string text;
    for (size_t i = 2; i < words.size(); ++i)
        text += words[i] + " ";
    const auto tlvs = parse_hex(text);
    if (!tlvs || tlvs->size() > UINT16_MAX)
        throw Error("the TLVs are bytes in hexadecimal, \"01 02 FF\"");
    const auto number = number_in(words[1], "an indication", 0, UINT16_MAX);
    std::string names;
    for (const Service& service : services_) {
        if (service.id == id)
            return service.indicate(static_cast<uint16_t>(number), *tlvs);
        names += (names.empty() ? "" : ", ") + messages::service_name(service.id);
    }
    throw Error("the handset has no service " + words[0] + "; it has " + names);
}

std::string Core::control_faults(const Control::Words& words) {
    if (words.size() == 2 && words[0] == "add") {
        faults_.add(parse_fault(words[1]));
    } else if (words.size() == 1 && words[0] == "clear") {
        faults_.clear();
    } else if (words.size() == 1 && words[0] == "list") {
        std::string text;
        for (const FaultBook::Line& line : faults_.lines())
            text += line.fault + ", " + line.left + "\n";
        return text;
    } else {
        throw Error("fault takes add JSON, list or clear");
    }
    show_faults();
    return "";
}

void Core::flush() {
    constexpr EventLoop::Milliseconds kRecordsPause(20);
    state_.flush();
    wire_log_.flush();
    if (records_wait_ || !wire_log_.has_records())
        return;
    records_wait_ = true;
    loop_.after(kRecordsPause, [this] {
        records_wait_ = false;
        wire_log_.flush_records();
    });
}

void Core::log_event(const std::string& what) {
    wire_log_.add(WireLine("modem", 0, Direction::kEvent).event(what));
}

std::string Core::property(const std::string& name) const {
    return read_text(folder_.at("properties/" + name)).value_or("");
}

void Core::start() {
    control_.publish();
    publish();
    flush();
}

void Core::stop() {
    for (const FaultBook::Line& line : faults_.lines()) {
        if (!line.met)
            complain("a fault was never met: " + line.fault);
    }
    withdraw();
    state_.set("modem", "state", "off");
    log_event("off");
    flush();
}

void Core::restart_modem(std::optional<std::chrono::milliseconds> away) {
    if (std::exchange(away_, true))
        return;
    // The answer to the request that asked for it is sent when its handler returns.
    loop_.after(EventLoop::Milliseconds(0),
                [this, time = away.value_or(modem_.restart_time)] { go_away(time); });
}

void Core::go_away(std::chrono::milliseconds time) {
    log_event("restart");
    withdraw();
    state_.set("modem", "state", "restarting");
    state_.set("modem", "restarts", ++restarts_);
    for (const auto& action : restart_actions_)
        action();
    loop_.after(time, [this] {
        away_ = false;
        state_.set("modem", "state", "up");
        publish();
        flush();
    });
    flush();
}

void Core::publish() {
    for (Published* port : ports_)
        port->publish();
}

void Core::withdraw() {
    for (Published* port : ports_)
        port->withdraw();
}

}  // namespace handset

#include "core.h"

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
      transports_(std::move(transports)) {
    transports_.push_back(std::make_unique<SocketTransport>(loop_, folder_));
    state_.set("modem", "state", "up");
    state_.set("modem", "restarts", restarts_);
    log_event("boot");
}

void Core::log_event(const std::string& what) {
    wire_log_.add(WireLine("modem", 0, Direction::kEvent).event(what));
}

std::string Core::property(const std::string& name) const {
    return read_text(folder_.at("properties/" + name)).value_or("");
}

void Core::start() {
    publish();
    flush();
}

void Core::stop() {
    withdraw();
    state_.set("modem", "state", "off");
    log_event("off");
    flush();
}

void Core::restart_modem() {
    if (away_)
        return;
    away_ = true;
    // The answer to the request that asked for it is sent when its handler returns.
    loop_.after(EventLoop::Milliseconds(0), [this] { go_away(); });
}

void Core::go_away() {
    log_event("restart");
    withdraw();
    state_.set("modem", "state", "restarting");
    state_.set("modem", "restarts", ++restarts_);
    for (const auto& action : restart_actions_)
        action();
    loop_.after(modem_.restart_time, [this] {
        away_ = false;
        state_.set("modem", "state", "up");
        publish();
        flush();
    });
    flush();
}

void Core::publish() {
    for (Port* port : ports_)
        port->publish();
}

void Core::withdraw() {
    for (Port* port : ports_)
        port->withdraw();
}

}  // namespace handset

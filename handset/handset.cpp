#include "handset.h"

#include "error.h"

namespace handset {

Handset::Handset(EventLoop& loop, const std::string& folder, Profile profile)
    : loop_(loop),
      profile_(std::move(profile)),
      folder_(folder),
      wire_log_(folder_.at("log/wire.log")),
      faults_(profile_.faults),
      state_(folder_),
      files_(folder_, profile_.efs) {
    state_.set("modem", "state", "up");
    state_.set("modem", "restarts", restarts_);
    log_event("boot");
    add_subjects(*this);
    publish();
    wire_log_.flush();
}

Handset::~Handset() {
    withdraw();
    state_.set("modem", "state", "off");
    log_event("off");
}

void Handset::log_event(const std::string& what) {
    wire_log_.add(WireLine("modem", 0, Direction::kEvent).word(what));
}

std::string Handset::property(const std::string& name) const {
    return read_text(folder_.at("properties/" + name)).value_or("");
}

void Handset::add_port(std::unique_ptr<Port> port) {
    ports_.push_back(std::move(port));
}

void Handset::add_service(std::unique_ptr<QmiService> service) {
    add_port(std::make_unique<QmiPort>(*this, std::move(service)));
}

void Handset::restart_modem() {
    if (away_)
        return;
    away_ = true;
    // The answer to the request that asked for it is sent when its handler returns.
    loop_.after(EventLoop::Milliseconds(0), [this] { go_away(); });
}

void Handset::go_away() {
    log_event("restart");
    withdraw();
    state_.set("modem", "state", "restarting");
    state_.set("modem", "restarts", ++restarts_);
    for (const auto& action : restart_actions_)
        action();
    loop_.after(profile_.modem.restart_time, [this] {
        away_ = false;
        state_.set("modem", "state", "up");
        publish();
        wire_log_.flush();
    });
    wire_log_.flush();
}

void Handset::publish() {
    for (const auto& port : ports_)
        port->publish();
}

void Handset::withdraw() {
    for (const auto& port : ports_)
        port->withdraw();
}

}  // namespace handset

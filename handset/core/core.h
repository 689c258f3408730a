// What every subject of a handset works with: the event loop, the folder, the logs, the faults, and the
// modem's going away and coming back. It knows no subject; a subject is given it and puts its own ports in.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "control.h"
#include "endpoint.h"
#include "event_loop.h"
#include "fault.h"
#include "folder.h"
#include "replay.h"
#include "state_board.h"
#include "wire_log.h"

namespace handset {

class Section;

struct ModemProfile {
    /// From the moment the services go away until they are back.
    std::chrono::milliseconds restart_time{1000};
};

void read_profile(Section& section, ModemProfile& modem);

/// What goes away with the modem and comes back with it.
class Published {
public:
    virtual ~Published() = default;
    /// Throws Error when it cannot be.
    virtual void publish() = 0;
    virtual void withdraw() = 0;
};

class Core {
public:
    using Indicate = std::function<void(uint16_t message, const wire::Bytes& tlvs)>;

    /// Takes the folder. Ports are reached by sockets in it and by the further transports. Throws Error when
    /// the folder cannot be used.
    Core(EventLoop& loop, const std::string& folder, const ModemProfile& modem,
         const std::vector<Fault>& faults, std::vector<std::unique_ptr<Transport>> transports);
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    EventLoop& loop() { return loop_; }
    Folder& folder() { return folder_; }
    WireLog& wire_log() { return wire_log_; }
    /// What is replayed, or null; it lives as long as the handset.
    ReplayBook* replay() { return replay_; }
    void set_replay(ReplayBook* book) { replay_ = book; }
    StateBoard& state() { return state_; }
    ConnectionId next_connection() { return ++last_connection_; }

    /// What was logged and shown is in the files: called before anything can be seen from outside.
    void flush();

    Control& control() { return control_; }

    /// The fault that spoils an exchange, or null; asked for once an exchange.
    const Fault* next_fault(const ExchangeKey& key);

    /// A line of the wire log about the modem itself: "restart", "dump".
    void log_event(const std::string& what);

    /// The value of an Android property; empty when it is unset.
    std::string property(const std::string& name) const;

    const std::vector<std::unique_ptr<Transport>>& transports() const { return transports_; }

    /// Every port calls this as it is made. It is published with the others and lives until they are
    /// withdrawn for good.
    void add_port(Published& port) { ports_.push_back(&port); }

    /// Every QMI service calls this as it is made: how a person has it send an indication.
    void add_service(uint16_t id, Indicate indicate) { services_.push_back({id, std::move(indicate)}); }

    /// Called whenever the modem has just gone away, to bring a subject's state to that after power-up.
    void on_restart(std::function<void()> action) { restart_actions_.push_back(std::move(action)); }

    /// Publishes all ports: the modem is up.
    void start();
    /// Withdraws them: the handset is switched off.
    void stop();

    /// Once the request at hand is answered, the modem goes away with all its connections, and comes
    /// back after the given time or the profile's. A modem that is away already stays away as long as
    /// it would have.
    void restart_modem(std::optional<std::chrono::milliseconds> away = {});
    /// False from a request to restart on, until it is done.
    bool is_up() const { return !away_; }
    /// Since the boot.
    unsigned restarts() const { return restarts_; }
    std::chrono::milliseconds restart_time() const { return modem_.restart_time; }

private:
    struct Service {
        uint16_t id;
        Indicate indicate;
    };

    void publish();
    void withdraw();
    void go_away(std::chrono::milliseconds time);
    void show_faults();
    void indicate(const Control::Words& words);
    std::string control_faults(const Control::Words& words);

    EventLoop& loop_;
    ModemProfile modem_;
    Folder folder_;
    WireLog wire_log_;
    FaultBook faults_;
    ReplayBook* replay_ = nullptr;
    StateBoard state_;
    Control control_;
    std::vector<std::unique_ptr<Transport>> transports_;
    std::vector<std::function<void()>> restart_actions_;
    std::vector<Published*> ports_;
    std::vector<Service> services_;
    ConnectionId last_connection_ = 0;
    unsigned restarts_ = 0;
    bool away_ = false;
    bool records_wait_ = false;
};

}  // namespace handset

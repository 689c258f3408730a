// The handset as a whole: what all its subjects share, and the modem's going away and coming back. A subject
// (a service, a terminal, a card) is a file pair of its own and is put in with one line in subjects.cpp.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common_request.h"
#include "event_loop.h"
#include "fault.h"
#include "handset_folder.h"
#include "modem_files.h"
#include "port.h"
#include "profile.h"
#include "qmi_service.h"
#include "state_board.h"
#include "wire_log.h"

namespace handset {

class Handset {
public:
    /// Takes the folder, puts all subjects in, and publishes them. Throws Error when the folder cannot be
    /// used.
    Handset(EventLoop& loop, const std::string& folder, Profile profile);
    ~Handset();
    Handset(const Handset&) = delete;
    Handset& operator=(const Handset&) = delete;

    EventLoop& loop() { return loop_; }
    Folder& folder() { return folder_; }
    const Profile& profile() const { return profile_; }
    WireLog& wire_log() { return wire_log_; }
    FaultBook& faults() { return faults_; }
    StateBoard& state() { return state_; }
    ModemFiles& files() { return files_; }
    CommonRequests& common_requests() { return common_requests_; }
    ConnectionId next_connection() { return ++last_connection_; }

    /// A line of the wire log about the modem itself: "restart", "dump".
    void log_event(const std::string& what);

    /// The value of an Android property; empty when it is unset.
    std::string property(const std::string& name) const;

    /// Puts a port in; a service gets the usual one.
    void add_port(std::unique_ptr<Port> port);
    void add_service(std::unique_ptr<QmiService> service);

    /// Keeps something that lives as long as the handset and has no port.
    void keep(std::shared_ptr<void> subject) { kept_.push_back(std::move(subject)); }

    /// Called whenever the modem has just gone away, to bring a subject's state to that after power-up.
    void on_restart(std::function<void()> action) { restart_actions_.push_back(std::move(action)); }

    /// Once the request at hand is answered, the modem goes away with all its connections, and comes back
    /// after the profile's time. A modem that is away already stays away as long as it would have.
    void restart_modem();
    bool modem_is_away() const { return away_; }

private:
    void publish();
    void withdraw();
    void go_away();

    EventLoop& loop_;
    Profile profile_;
    Folder folder_;
    WireLog wire_log_;
    FaultBook faults_;
    StateBoard state_;
    ModemFiles files_;
    CommonRequests common_requests_;
    std::vector<std::function<void()>> restart_actions_;
    std::vector<std::shared_ptr<void>> kept_;
    std::vector<std::unique_ptr<Port>> ports_;
    ConnectionId last_connection_ = 0;
    unsigned restarts_ = 0;
    bool away_ = false;
};

/// Puts every subject into a handset.
void add_subjects(Handset& handset);

}  // namespace handset

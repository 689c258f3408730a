// What is changed while the handset runs: the socket "control" in its folder, to which `vxk-handset set`,
// `fault` and `event` speak. A request is one packet, words that end with a zero each; the answer is one
// byte, 0 for success, and a text. A subject says what of its profile may change, and what may happen to it,
// as it is made.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "endpoint.h"
#include "profile_section.h"

namespace handset {

class EventLoop;
class Folder;

class Control : private EndpointUser {
public:
    static constexpr char kSocket[] = "control";

    /// `done` is called after each request, before its answer leaves.
    Control(EventLoop& loop, Folder& folder, std::function<void()> done);
    ~Control() override;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    using Words = std::vector<std::string>;
    using Change = std::function<void()>;
    using ReadChange = std::function<Change(Section&)>;
    using Event = std::function<void(const Words& arguments)>;
    using Command = std::function<std::string(const Words& arguments)>;

    /// Reads what `set` says of a section of the profile, and returns what makes it so. All that one command
    /// sets is read before anything of it is made so.
    void add_setting(const std::string& section, ReadChange read) { settings_[section] = std::move(read); }

    /// Something that `event NAME` makes happen; throws Error. `arguments` tells a person what it takes.
    void add_event(const std::string& name, const std::string& arguments, Event event) {
        events_[name] = {arguments, std::move(event)};
    }

    /// Returns what is to be printed; throws Error.
    void add_command(const std::string& name, Command command) { commands_[name] = std::move(command); }

    /// Takes requests from now on. Throws Error.
    void publish() { endpoint_->publish(); }

    /// Carries a request out. Throws Error with one line for a person.
    std::string execute(const Words& words);

private:
    struct NamedEvent {
        std::string arguments;
        Event event;
    };

    std::string set(const Words& assignments);
    std::string happen(const Words& words);

    ConnectionId next_connection() override { return ++last_connection_; }
    void opened(Endpoint&, ConnectionId, Peer) override {}
    void received(ConnectionId connection, wire::View packet) override;
    void received_too_much(ConnectionId, size_t) override {}
    void sent_too_much(ConnectionId, size_t) override {}
    void closed(ConnectionId) override {}

    const std::function<void()> done_;
    std::map<std::string, ReadChange> settings_;
    std::map<std::string, NamedEvent> events_;
    std::map<std::string, Command> commands_;
    std::unique_ptr<Transport> transport_;
    std::unique_ptr<Endpoint> endpoint_;
    ConnectionId last_connection_ = 0;
};

/// Reads a number from a word, between two; throws Error that names it `what`.
uint32_t number_in(const std::string& word, const std::string& what, uint32_t lowest, uint32_t highest);

/// Sends a request to the handset in a folder and returns its answer's text. Throws Error, also with what the
/// handset refuses it for.
std::string ask_control(const std::string& folder, const Control::Words& words);

}  // namespace handset

#include "control.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <charconv>
#include <nlohmann/json.hpp>
#include <utility>

#include "error.h"
#include "socket_transport.h"
#include "unique_fd.h"

namespace handset {
namespace {

using Json = nlohmann::json;

constexpr size_t kPacketMax = 65536;
constexpr uint8_t kDone = 0;
constexpr uint8_t kRefused = 1;

template <typename Map>
std::string choices(const Map& map) {
    std::string names;
    for (const auto& entry : map)
        names += (names.empty() ? "" : ", ") + entry.first;
    return names;
}

// Puts KEY=VALUE into an object of the profile's form: dots part the steps of the key, and a value that is no
// JSON is a text.
void assign(Json& root, const std::string& assignment) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw Error("\"" + assignment + "\" is not KEY=VALUE");
    const std::string text = assignment.substr(equals + 1);
    Json value = Json::parse(text, nullptr, false);
    if (value.is_discarded())
        value = text;
    Json* place = &root;
    for (size_t start = 0; start <= equals;) {
        const size_t end = std::min(assignment.find('.', start), equals);
        if (!place->is_object())
            throw Error("\"" + assignment + "\" is inside of a value that is set too");
        place = &(*place)[assignment.substr(start, end - start)];
        if (place->is_null())
            *place = Json::object();
        start = end + 1;
    }
    *place = std::move(value);
}

}  // namespace

Control::Control(EventLoop& loop, Folder& folder, std::function<void()> done)
    : done_(std::move(done)),
      transport_(std::make_unique<SocketTransport>(loop, folder)),
      endpoint_(transport_->endpoint(*this, {kSocket, 0, kPacketMax})) {
    add_command("set", [this](const Words& words) { return set(words); });
    add_command("event", [this](const Words& words) { return happen(words); });
}

Control::~Control() = default;

std::string Control::set(const Words& assignments) {
    if (assignments.empty())
        throw Error("nothing to set; what can be set is below " + choices(settings_));
    Json json = Json::object();
    for (const std::string& assignment : assignments)
        assign(json, assignment);
    std::vector<Change> changes;
    read_sections(json.dump(-1, ' ', true, Json::error_handler_t::replace), "set",
                  [this, &changes](Section& root) {
                      for (const auto& setting : settings_)
                          root.object(setting.first.c_str(),
                                      [&](Section& section) { changes.push_back(setting.second(section)); });
                  });
    for (const Change& change : changes)
        change();
    return "";
}

std::string Control::happen(const Words& words) {
    const auto found = words.empty() ? events_.end() : events_.find(words[0]);
    if (found == events_.end())
        throw Error(std::string(words.empty() ? "no event is named" : "no event \"" + words[0] + "\"") +
                    "; there are " + choices(events_));
    found->second.event(Words(words.begin() + 1, words.end()));
    return "";
}

std::string Control::execute(const Words& words) {
    const auto found = words.empty() ? commands_.end() : commands_.find(words[0]);
    if (found == commands_.end())
        throw Error("the handset knows " + choices(commands_));
    return found->second(Words(words.begin() + 1, words.end()));
}

void Control::received(ConnectionId connection, wire::View packet) {
    Words words;
    std::string word;
    for (size_t i = 0; i < packet.size; ++i) {
        if (packet.data[i] != 0)
            word += static_cast<char>(packet.data[i]);
        else
            words.push_back(std::exchange(word, {}));
    }
    wire::Writer answer;
    try {
        const std::string text = execute(words);
        answer.u8(kDone).bytes({text.data(), text.size()});
    } catch (const Error& error) {
        answer.u8(kRefused).bytes({error.what(), std::char_traits<char>::length(error.what())});
    }
    done_();
    endpoint_->send(connection, answer.data());
}

uint32_t number_in(const std::string& word, const std::string& what, uint32_t lowest, uint32_t highest) {
    uint32_t number = 0;
    const auto end = std::from_chars(word.data(), word.data() + word.size(), number);
    if (end.ec != std::errc() || end.ptr != word.data() + word.size() || number < lowest || number > highest)
        throw Error(what + " is a number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                    ", not \"" + word + "\"");
    return number;
}

std::string ask_control(const std::string& folder, const Control::Words& words) {
    std::string request;
    for (const std::string& word : words)
        request.append(word).append(1, '\0');
    if (request.size() > kPacketMax)
        throw Error("the words are " + std::to_string(request.size()) + " bytes; at most " +
                    std::to_string(kPacketMax) + " go to a handset at once");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder + "/" + Control::kSocket;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const host::UniqueFd fd(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw system_error("no handset runs in " + folder, errno);
    std::string answer(kPacketMax * 16, '\0');
    ssize_t size = send(fd.get(), request.data(), request.size(), MSG_NOSIGNAL);
    if (size >= 0)
        size = recv(fd.get(), answer.data(), answer.size(), 0);
    if (size <= 0)
        throw size < 0 ? system_error("the handset does not answer", errno)
                       : Error("the handset does not answer");
    answer.resize(static_cast<size_t>(size));
    if (answer[0] != kDone)
        throw Error(answer.substr(1));
    return answer.substr(1);
}

}  // namespace handset

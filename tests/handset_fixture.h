// A handset of a test's own, in a process of its own, and clients that speak bytes to it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <regex>
#include <thread>
#include <vector>

#include "error.h"
#include "hex_text.h"
#include "packet_end.h"
#include "session.h"
#include "test_folder.h"

namespace handset_test {

inline wire::Bytes hex(const std::string& text) {
    return handset::parse_hex(text).value();
}

inline std::string text_of(const wire::Bytes& bytes) {
    std::string text;
    handset::append_hex(text, bytes);
    return text;
}

/// Waits for it, for five seconds.
inline bool eventually(const std::function<bool()>& condition) {
    for (int i = 0; i < 500 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}

/// Boots in the constructor and is ready when that returns; stopped by the destructor.
class RunningHandset {
public:
    explicit RunningHandset(const TestFolder& place, const std::string& profile = "{}")
        : dir_(place.at("h")) {
        place.write("profile.json", profile);
        std::array<int, 2> out{};
        EXPECT_EQ(pipe(out.data()), 0);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(out[1], STDOUT_FILENO);
            close(out[0]);
            setenv("VXK_AT_DEVICE", place.at("smd8").c_str(), 1);
            try {
                _exit(handset::serve({dir_, place.at("profile.json")}));
            } catch (const handset::Error& error) {
                handset::complain(error.what());
                _exit(1);
            }
        }
        close(out[1]);
        char byte = 0;
        while (read(out[0], &byte, 1) == 1 && byte != '\n') {
        }
        EXPECT_EQ(byte, '\n') << "the handset did not boot";
        close(out[0]);
    }
    ~RunningHandset() { stop(SIGTERM); }
    RunningHandset(const RunningHandset&) = delete;
    RunningHandset& operator=(const RunningHandset&) = delete;

    const std::string& dir() const { return dir_; }

    /// Ends it with a signal; returns its wait status.
    int stop(int signal) {
        int status = 0;
        if (pid_ > 0) {
            kill(pid_, signal);
            waitpid(pid_, &status, 0);
        }
        pid_ = 0;
        return status;
    }

private:
    std::string dir_;
    pid_t pid_ = 0;
};

/// One connection to a socket of the handset.
class Client : public PacketEnd {
public:
    Client(const std::string& dir, const std::string& socket_name)
        : PacketEnd(packet_socket(dir + "/" + socket_name, connect)) {}
};

/// Names and the texts that stand for `$name` in a script; a name may stand in the texts of those before it.
using Names = std::vector<std::pair<std::string, std::string>>;

inline std::string with_names(std::string script, const Names& names) {
    for (const auto& [name, text] : names) {
        const std::regex word(std::string("\\$").append(name).append("\\b"));
        script = std::regex_replace(script, word, text);
    }
    return script;
}

/// A client of a QMI service.
class QmiClient : public Client {
public:
    QmiClient(const RunningHandset& handset, int service)
        : Client(handset.dir(), "qmi/" + std::to_string(service)) {}

    /// The body of the answer to a request, or nothing.
    wire::Bytes exchange(uint16_t message, wire::View body) {
        send(wire::encode({wire::kQmiRequest, ++transaction_, message, body}));
        const auto packet = receive().value_or(wire::Bytes());
        const auto answer = wire::decode_qmi(packet);
        if (!answer || answer->flags != wire::kQmiResponse || answer->transaction != transaction_)
            return {};
        return answer->body.copy();
    }

    /// The same of a command to a card, for the UIM service.
    wire::Bytes transmit(uint8_t slot, uint8_t channel, const wire::Bytes& command) {
        wire::Writer body;
        body.tlv(1, wire::Bytes{slot}).tlv(2, with_size(command)).tlv(0x10, wire::Bytes{channel});
        return exchange(59, body.data());
    }

    /// Plays a script; its steps are parted by semicolons and line ends:
    ///   MESSAGE BYTES > ok BYTES    a request, and what stands in the answer behind its good result
    ///   MESSAGE BYTES > no N BYTES  the same behind the error N
    ///   MESSAGE BYTES > BYTES       a request, and the whole answer
    ///   S:C BYTES > BYTES           a command to the card of slot S on channel C, and its answer
    ///   S:C BYTES > no N            a command that the service refuses
    ///   * BYTES > BYTES             a request to the ISD-R on channel 1, in one block, that succeeds
    ///   < MESSAGE BYTES             an indication that comes, and how it begins
    /// The prefix stands before every step.
    void play(const std::string& text, const Names& names = {}, const std::string& prefix = "") {
        const std::string script = with_names(text, names);
        const std::regex separator("\\s*[;\n]\\s*");
        for (std::sregex_token_iterator it(script.begin(), script.end(), separator, -1), end; it != end;
             ++it) {
            if (it->length() != 0)
                play_step(prefix + it->str());
        }
    }

private:
    static wire::Bytes with_size(const wire::Bytes& bytes) {
        return wire::Writer().u16(static_cast<uint16_t>(bytes.size())).bytes(bytes).take();
    }

    void play_step(const std::string& step) {
        static const std::regex exchange_step(R"((?:(\d+)|(\d):(\d+)|\*) ?([^:>]*)> ?(ok|no (\d+)|) ?(.*))");
        static const std::regex indication_step(R"(< (\d+) ?(.*))");
        SCOPED_TRACE(step);
        std::smatch m;
        const auto number = [&m](size_t group) { return static_cast<uint8_t>(std::stoi(m[group])); };
        if (std::regex_match(step, m, indication_step))
            return expect_indication(number(1), hex(m[2]));
        ASSERT_TRUE(std::regex_match(step, m, exchange_step)) << "does not read";
        wire::Bytes request = hex(m[4]);
        wire::Bytes answer = hex(m[7]);
        const bool is_message = m[1].matched;
        wire::Writer body;
        if (m[6].matched)
            body.tlv(2, wire::Bytes{1, 0, number(6), 0});
        else if (!is_message || m[5].length() != 0)
            body.tlv(2, wire::Bytes(4));
        if (is_message) {
            EXPECT_EQ(text_of(exchange(static_cast<uint16_t>(std::stoi(m[1])), request)),
                      text_of(body.bytes(answer).data()));
            return;
        }
        const bool is_es10 = !m[2].matched;
        if (is_es10) {
            const auto size = static_cast<uint8_t>(request.size());
            request = wire::Writer().bytes(wire::Bytes{0x80, 0xE2, 0x91, 0, size}).bytes(request).take();
            answer = wire::Writer().bytes(answer).bytes(wire::Bytes{0x90, 0}).take();
        }
        if (!m[6].matched)
            body.tlv(0x10, with_size(answer));
        EXPECT_EQ(text_of(is_es10 ? transmit(2, 1, request) : transmit(number(2), number(3), request)),
                  text_of(body.data()));
    }

    void expect_indication(uint16_t message, const wire::Bytes& beginning) {
        const auto packet = receive().value_or(wire::Bytes());
        const auto indication = wire::decode_qmi(packet);
        ASSERT_TRUE(indication);
        EXPECT_EQ(indication->flags, wire::kQmiIndication);
        EXPECT_EQ(indication->message, message);
        wire::Bytes body = indication->body.copy();
        body.resize(std::min(body.size(), beginning.size()));
        EXPECT_EQ(text_of(body), text_of(beginning));
    }

    uint16_t transaction_ = 0;
};

/// A client of the extension service.
class ExtensionClient : public QmiClient {
public:
    explicit ExtensionClient(const RunningHandset& handset) : QmiClient(handset, 65508) {}

    /// The payload of an answer whose id is 0.
    std::optional<wire::Bytes> request(uint32_t id, wire::View payload) {
        wire::Writer message;
        message.tlv(1, wire::Writer().u32(id).data());
        message.tlv(2, wire::Writer().u32(static_cast<uint32_t>(payload.size)).data());
        const wire::Bytes body = exchange(2, message.tlv(0x10, payload).data());
        if (wire::find_tlv(body, 1).value_or(wire::View()).copy() != wire::Bytes(4))
            return std::nullopt;
        return wire::find_tlv(body, 0x10).value_or(wire::View()).copy();
    }

    /// The result of a common request with a value.
    int32_t common(uint32_t code, const wire::Bytes& value) {
        wire::Writer payload;
        payload.u32(2).u32(0).u32(code).u32(static_cast<uint32_t>(value.size())).bytes(value);
        const wire::Bytes answer = request(4, payload.data()).value_or(wire::Bytes());
        wire::Reader reader(answer);
        reader.u32();
        return reader.i32();
    }
};

}  // namespace handset_test

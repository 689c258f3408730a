// A handset of a test's own, in a process of its own, and a client that speaks bytes to it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>

#include "error.h"
#include "session.h"
#include "wire.h"

namespace handset_test {

class TestFolder {
public:
    TestFolder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
    ~TestFolder() { std::filesystem::remove_all(path_); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string at(const std::string& name) const { return path_ + "/" + name; }

    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
        std::ofstream(at(name), std::ios::binary) << content;
    }
    std::optional<std::string> read(const std::string& name) const {
        std::ifstream file(at(name), std::ios::binary);
        if (!file)
            return std::nullopt;
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::string path_ = "/tmp/vxk-test.XXXXXX";
};

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
class Client {
public:
    Client(const std::string& dir, const std::string& socket_name) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (dir + "/" + socket_name).copy(address.sun_path, sizeof address.sun_path - 1);
        fd_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        connected_ = connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~Client() { close(fd_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool connected() const { return connected_; }

    void send(const wire::Bytes& packet) const {
        EXPECT_EQ(::send(fd_, packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }

    /// The next packet; nothing when none comes in time, an empty one when the connection is closed.
    std::optional<wire::Bytes> receive(int timeout_ms = 5000) const {
        pollfd waiting{fd_, POLLIN, 0};
        if (poll(&waiting, 1, timeout_ms) != 1)
            return std::nullopt;
        wire::Bytes packet(wire::kQmiPacketMax);
        const ssize_t size = recv(fd_, packet.data(), packet.size(), 0);
        packet.resize(size > 0 ? static_cast<size_t>(size) : 0);
        return packet;
    }

    /// One QMI exchange: the body of the answer, or nothing.
    std::optional<wire::Bytes> exchange(uint16_t message, const wire::Bytes& body, int timeout_ms = 5000) {
        send(wire::encode({wire::kQmiRequest, ++transaction_, message, body}));
        const auto packet = receive(timeout_ms);
        const auto answer = packet ? wire::decode_qmi(*packet) : std::nullopt;
        if (!answer || answer->flags != wire::kQmiResponse || answer->transaction != transaction_)
            return std::nullopt;
        return answer->body.copy();
    }

private:
    int fd_ = -1;
    bool connected_ = false;
    uint16_t transaction_ = 0;
};

}  // namespace handset_test

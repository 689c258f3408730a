// The other side of one socket of the handset's folder, for tests of the Linux library: a temporary
// folder, and a listener in it that plays what the test says.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "packet_end.h"
#include "test_folder.h"

/// An empty folder, named by VXK_HANDSET_DIR while this lives.
class HandsetFolder : public TestFolder {
public:
    HandsetFolder() { setenv("VXK_HANDSET_DIR", at("").c_str(), 1); }
    ~HandsetFolder() { unsetenv("VXK_HANDSET_DIR"); }
};

/// The far end of a connection.
class Peer : public PacketEnd {
public:
    using PacketEnd::PacketEnd;

    /// The next packet; empty when the other side has gone.
    wire::Bytes receive() const {
        const auto packet = PacketEnd::receive();
        EXPECT_TRUE(packet) << "nothing arrived";
        return packet.value_or(wire::Bytes());
    }
};

class Listener {
public:
    explicit Listener(const std::string& path, int backlog = 16) : path_(path) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        fd_ = packet_socket(path, bind);
        EXPECT_EQ(listen(fd_.get(), backlog), 0);
    }
    ~Listener() { unlink(path_.c_str()); }

    std::unique_ptr<Peer> accept() {
        pollfd watched{fd_.get(), POLLIN, 0};
        EXPECT_EQ(poll(&watched, 1, 5000), 1) << "nobody connected";
        return std::make_unique<Peer>(host::UniqueFd(accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC)));
    }

private:
    std::string path_;
    host::UniqueFd fd_;
};

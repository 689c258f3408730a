// The diag library against a handset that the test plays, packet by packet.
#include <gmock/gmock.h>

#include <future>
#include <optional>
#include <thread>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "fake_service.h"

namespace {

using testing::ElementsAre;
using wire::Bytes;

constexpr int kDciLost = 1003;

/// What came to the callbacks, in order.
std::mutex g_mutex;
std::vector<std::string> g_calls;

void note(const std::string& what, const unsigned char* ptr, int len) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_calls.push_back(what + (ptr != nullptr ? "" : " null"));
    for (int i = 0; ptr != nullptr && i < len; ++i)
        g_calls.back() += " " + std::to_string(ptr[i]);
}

std::vector<std::string> calls(size_t awaited) {
    for (int i = 0; i < 5000; ++i) {
        {
            const std::lock_guard<std::mutex> lock(g_mutex);
            if (g_calls.size() >= awaited)
                return g_calls;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return {"nothing came"};
}

int on_response(unsigned char* ptr, int len, void* context) {
    note("response " + std::to_string(*static_cast<int*>(context)), ptr, len);
    return 0;
}
void on_dci(unsigned char* ptr, int len, void* data) {
    note(data != nullptr ? "data" : "dci", ptr, len);
}
void on_log(unsigned char* ptr, int len) {
    note("log", ptr, len);
}
void on_event(unsigned char* ptr, int len) {
    note("event", ptr, len);
}

// A callback that goes on while the session is closed.
std::promise<void> g_entered;
std::promise<void> g_leave;
int hold(unsigned char*, int, void*) {
    g_entered.set_value();
    g_leave.get_future().wait();
    note("held", nullptr, 0);
    return 0;
}

class DiagClient : public testing::Test {
protected:
    void SetUp() override { g_calls.clear(); }
    void TearDown() override { Diag_LSM_DeInit(); }

    void open() {
        auto opened = std::async(std::launch::async, [] { return Diag_LSM_Init(nullptr); });
        peer = listener->accept();
        EXPECT_EQ(peer->receive(), Bytes{1});
        peer->send({0x81, 1, 0, 0, 0});
        ASSERT_TRUE(opened.get());
    }

    HandsetFolder folder;
    std::optional<Listener> listener{folder.at("diag")};
    std::unique_ptr<Peer> peer;
    int zero = 0;
    int two = 2;
    unsigned char command[2] = {0x7c, 5};
    unsigned char room[3] = {};
};

TEST_F(DiagClient, DeliversEventsInOrder) {
    open();
    diag_register_callback(on_response, &zero);
    diag_register_remote_callback(on_response, 2, &two);
    auto listens =
        std::async(std::launch::async, [] { return diag_register_dci_stream_proc(4, on_log, on_event); });
    EXPECT_EQ(peer->receive(), (Bytes{8, 4, 0, 0, 0}));
    peer->send({0x88, 0xe9, 3, 0, 0});
    EXPECT_EQ(listens.get(), 1001);
    // A response that comes before the send's own answer.
    auto sent = std::async(std::launch::async,
                           [&] { return diag_send_dci_async_req(4, command, 2, room, 3, on_dci, nullptr); });
    peer->receive();
    for (const Bytes& event :
         {Bytes{0x41, 1, 2}, Bytes{0x40}, Bytes{0x44, 9}, Bytes{0x40, 1, 9}, Bytes{0x40, 0, 8},
          Bytes{0x40, 2}, Bytes{0x42, 3}, Bytes{0x43, 4, 5}, Bytes{0x41}, Bytes{0x41, 6, 7, 8, 9}})
        peer->send(event);
    EXPECT_THAT(calls(7), ElementsAre("dci 1 2", "response 0 8", "response 2", "log 3", "event 4 5", "dci",
                                      "dci 6 7 8"))
        << "a piece is cut to the packet's room";
    peer->send({0x89, 0xe9, 3, 0, 0});
    EXPECT_EQ(sent.get(), 1001);
}

TEST_F(DiagClient, LosesItsConnection) {
    open();
    diag_register_callback(on_response, &zero);
    auto sent = std::async(std::launch::async, [&] { return diag_callback_send_data(0, command, 2); });
    peer->receive();
    peer->send({0x40, 0, 1});
    peer->send({0x40, 0, 2});
    peer->close();
    EXPECT_EQ(sent.get(), -1);
    EXPECT_THAT(calls(2), ElementsAre("response 0 1", "response 0 2"));
    int client = 4;
    EXPECT_EQ(diag_callback_send_data(0, command, 2), -1);
    Diag_LSM_DeInit();
    EXPECT_EQ(diag_register_dci_signal_data(4, 1), kDciLost);
    EXPECT_EQ(diag_release_dci_client(&client), 1001);
    open();
}

TEST_F(DiagClient, ClosingWaitsForTheCallbackThatRuns) {
    g_entered = {};
    g_leave = {};
    open();
    diag_register_callback(hold, nullptr);
    peer->send({0x40, 0, 1});
    peer->send({0x40, 0, 2});
    g_entered.get_future().wait();
    auto closed = std::async(std::launch::async, [] {
        Diag_LSM_DeInit();
        note("closed", nullptr, 0);
    });
    EXPECT_TRUE(peer->receive().empty());
    g_leave.set_value();
    closed.get();
    EXPECT_THAT(calls(2), ElementsAre("held null", "closed null"));
}

}  // namespace

// The diag roads: what they send, what they take for a response, and that nothing which comes late does harm.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "groups.h"
#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"
#include "platform_test.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Lengths = std::vector<int>;
using testing::HasSubstr;
using testing::Not;

enum Road { kCallback, kDci };

// Bytes that tell their place, so that a mixed or shifted response shows.
Bytes payload(int len, int seed = 1) {
    Bytes bytes(static_cast<size_t>(std::max(len, 0)));
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<size_t>(seed) * 31 + i + i / 256);
    return bytes;
}

void pause_for(int microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

// What the diag library does with a response; a length of -1 stands for a null pointer.
void deliver(Road road, Bytes bytes, int len) {
    bytes.push_back(0);
    uint8_t* const ptr = len < 0 ? nullptr : bytes.data();
    if (road == kDci)
        platform().dci_cb(ptr, len, platform().dci_data);
    else
        platform().diag_cb(ptr, len, platform().diag_context);
}

struct Outcome {
    int result;
    int reply_len;
    Bytes reply;
};

Outcome send(Road road, int time_out = 3000, int capacity = DIAG_RSP_BUF_MAX) {
    uint8_t cmd[] = {0x4b, 0x12};
    Outcome outcome{-1, capacity, Bytes(DIAG_RSP_BUF_MAX)};
    const auto send = road == kDci ? kelvra_diag_cmd_send_with_result_by_dci_mode
                                   : kelvra_diag_cmd_send_with_result_by_callback_mode;
    outcome.result = send(cmd, 2, time_out, outcome.reply.data(), &outcome.reply_len);
    outcome.reply.resize(static_cast<size_t>(std::max(outcome.reply_len, 0)));
    return outcome;
}

int send_without_result(int mode) {
    const uint8_t cmd[] = {0x4b};
    return kelvra_diag_cmd_send_without_result_start_thread(cmd, 1, mode);
}

class DiagTest : public PlatformTest {
protected:
    ~DiagTest() override { wait_for_threads(); }

    template <typename Action>
    static std::string log_of(const Action& action) {
        return mask_lines(printed_by([&] {
            action();
            wait_for_threads();
        }));
    }

    // The modem answers before the send itself returns.
    static void answer_with(const Lengths& lengths) {
        const auto answer = [lengths](Road road, int result) {
            for (const int len : lengths)
                deliver(road, payload(len), len);
            return result;
        };
        platform().diag_send = [answer](int, const Bytes&) { return answer(kCallback, 0); };
        platform().dci_send = [answer](int, const Bytes&) { return answer(kDci, 1001); };
    }
};

TEST_F(DiagTest, RegistersEveryProcessorWithItsOwnContext) {
    platform().remote_mask = 0x8020;
    EXPECT_THAT(log_of([] { kelvra_diag_register_callback([](unsigned char*, int, void*) { return 0; }); }),
                HasSubstr("data_primary = 0, remote_mask = [32800] WDSP\n"));
    EXPECT_EQ(*static_cast<int*>(platform().diag_context), 0);
    std::vector<int> processors;
    for (const auto& remote : platform().remote_cbs) {
        processors.push_back(remote.proc);
        EXPECT_EQ(*static_cast<int*>(remote.context), remote.proc);
    }
    EXPECT_EQ(processors, std::vector<int>({6, 16}));
}

TEST_F(DiagTest, OneCloseEndsTheSessionForAll) {
    kelvra_diag_init_with_result();
    EXPECT_THAT(log_of(kelvra_diag_init_with_result), HasSubstr("done, g_diag_init_status = 1\n"));
    EXPECT_THAT(log_of(kelvra_diag_init_with_result), HasSubstr("done, g_diag_init_status = 2\n"));
    kelvra_diag_deinit_with_result();
    EXPECT_THAT(log_of(kelvra_diag_init_with_result), Not(HasSubstr("init done")));
    kelvra_diag_deinit_with_result();
}

TEST_F(DiagTest, ChecksArguments) {
    int lengths[] = {0, 1};
    uint8_t byte = 0;
    EXPECT_EQ(kelvra_diag_comand_input_check(nullptr, 4), 1);
    for (const int len : {-1, 0, 1})
        EXPECT_EQ(kelvra_diag_comand_input_check(&byte, len), len == 1 ? 0 : 1) << len;
    for (uint8_t* const out : {&byte, static_cast<uint8_t*>(nullptr)})
        for (int* const len : {&lengths[0], &lengths[1], static_cast<int*>(nullptr)})
            EXPECT_EQ(kelvra_diag_comand_output_check(out, len), out == &byte && len == &lengths[1] ? 0 : 1);
}

// Ticks last until the sender is back, or for two seconds.
struct LongTicks {
    LongTicks() {
        platform().usleep = [this](unsigned) {
            for (int i = 0; i < 200 && !back; ++i)
                pause_for(10000);
            ++over;
            return 0;
        };
    }
    std::atomic<bool> back{false};
    std::atomic<int> over{0};
};

TEST_F(DiagTest, AResponseReleasesTheSenderAtOnce) {
    for (const int len : {1, 4095, 8192, 10240}) {
        answer_with({len});
        for (const Road road : {kCallback, kDci}) {
            LongTicks ticks;
            platform().usleeps.clear();
            EXPECT_EQ(send(road).reply, payload(len));
            EXPECT_EQ(ticks.over, 0) << len;
            ticks.back = true;
            wait_for_threads();
            EXPECT_EQ(platform().usleeps.size(), 1U) << "the wait thread goes on waiting for nobody";
        }
    }
    answer_with({20});
    EXPECT_EQ(send(kCallback, 3000, 7).reply, payload(7));
}

TEST_F(DiagTest, CountsTicksToTheTimeOut) {
    const struct {
        Road road;
        int time_out;
        size_t ticks;
    } cases[] = {{kCallback, 0, 30}, {kCallback, -1, 30}, {kCallback, 60001, 30}, {kCallback, 60000, 600},
                 {kCallback, 99, 1}, {kDci, 0, 1},        {kDci, -250, 1},        {kDci, 399, 3}};
    for (const auto& c : cases) {
        platform().usleeps.clear();
        EXPECT_EQ(send(c.road, c.time_out).result, 1);
        wait_for_threads();
        EXPECT_EQ(platform().usleeps, std::vector<unsigned>(c.ticks, 100000)) << c.time_out;
    }
    EXPECT_EQ(platform().logging_modes, std::vector<int>({6, 1, 6, 1, 6, 1, 6, 1, 6, 1}));
}

// A worker's whole way: what it sends, how long it stays, who hears of the response, and that it leaves
// nothing open.
TEST_F(DiagTest, WorkersStayForTheResponseAndCloseTheirRoad) {
    int open = 0;
    int clients = 0;
    platform().lsm_init = [&] { return ++open == 1; };
    platform().lsm_deinit = [&] { return --open == 0; };
    platform().dci_register = [&](int*, uint16_t*, int, void*) { return ++clients, 1001; };
    platform().dci_release = [&](int*) { return --clients; };
    const auto respond = [&open](Road road) {
        EXPECT_EQ(open, 1);
        deliver(road, payload(7), 7);
        if (road == kDci) {
            uint8_t bytes[3] = {};
            platform().dci_logs(bytes, 2);
            platform().dci_events(bytes, 3);
        }
    };
    platform().usleep = [&](unsigned) { return respond(kCallback), 0; };
    platform().sleep = [&](unsigned) { return respond(kDci), 0U; };
    std::string log = log_of([] { EXPECT_EQ(send_without_result(0), 0); });
    EXPECT_THAT(log, HasSubstr("RIL[kelvra_diag_cmd_response_by_callback_no_handle:#]: len = 7\n"));
    EXPECT_EQ(platform().usleeps, std::vector<unsigned>{200000});
    EXPECT_EQ(platform().logging_modes, std::vector<int>({6, 1}));
    log = log_of([] { EXPECT_EQ(send_without_result(5), 0); });
    EXPECT_THAT(log, HasSubstr("RIL[kelvra_diag_cmd_response_by_dci_no_handle:#]: len = 7\n"));
    EXPECT_THAT(log, HasSubstr("by_dci_log_stream_no_handle:#]: len = 2\n"));
    EXPECT_THAT(log, HasSubstr("by_dci_event_stream_no_handle:#]: len = 3\n"));
    EXPECT_EQ(platform().sleeps, std::vector<unsigned>{1});
    EXPECT_EQ(std::make_pair(open, clients), std::make_pair(0, 0));
}

TEST_F(DiagTest, SurvivesFailedAllocations) {
    const struct {
        Road road;
        int fail;  // the n-th block
        const char* complaint;
        int result;
        int reply_len;
    } cases[] = {{kCallback, 2, "Failed to allocate memory for ptr_out\n", 0, 4096},
                 {kDci, 1, "Unable to allocate memory for DCI rsp pkt, errno: 12\n", 1, DIAG_RSP_BUF_MAX},
                 {kDci, 2, "Failed to allocate memory for ptr_out_1\n", 0, 100},
                 {kDci, 3, "Failed to allocate memory for ptr_out_2\n", 0, 4096},
                 {kDci, 4, "Failed to allocate memory for ptr_out_3\n", 0, 4096}};
    answer_with({4096, 100});
    int open = 0;
    platform().lsm_init = [&] { return ++open == 1; };
    platform().lsm_deinit = [&] { return --open == 0; };
    for (const auto& c : cases) {
        fail_malloc(c.fail);
        Outcome outcome{};
        EXPECT_THAT(log_of([&] { outcome = send(c.road); }), HasSubstr(c.complaint));
        EXPECT_EQ(outcome.result, c.result) << c.complaint;
        EXPECT_EQ(outcome.reply_len, c.reply_len) << c.complaint;
    }
    fail_malloc(1);
    EXPECT_EQ(send_without_result(1), 1);
    fail_malloc(2);
    EXPECT_THAT(log_of([] { EXPECT_EQ(send_without_result(1), 0); }), HasSubstr("DCI rsp pkt, errno: 12\n"));
    EXPECT_EQ(open, 0);
}

TEST_F(DiagTest, NeedsNoWaitThreadForAResponse) {
    platform().fail_thread_creation = 11;
    answer_with({3});
    EXPECT_THAT(log_of([] { EXPECT_EQ(send(kCallback).reply, payload(3)); }),
                HasSubstr("created, conf = 11\n"));
    EXPECT_EQ(send_without_result(0), 0);
}

TEST_F(DiagTest, ALateResponseHelpsNobody) {
    for (const Road road : {kCallback, kDci}) {
        answer_with({5});
        EXPECT_EQ(send(road).result, 0);
        deliver(road, payload(9), 9);
        answer_with({});
        const Outcome outcome = send(road);
        EXPECT_EQ(outcome.result, 1);
        EXPECT_EQ(outcome.reply_len, 0);
    }
}

// A response just before the wait thread looks for the last time, the sender perhaps still asleep.
TEST_F(DiagTest, AResponseWithTheLastTickIsInTime) {
    platform().usleep = [](unsigned) {
        deliver(kCallback, payload(1), 1);
        return 0;
    };
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(send(kCallback, 100).result, 0);
}

// Each of the unit's locks keeps apart what must not meet: commands, workers, and pieces of a response.
TEST_F(DiagTest, NothingMeetsWhatItMustNot) {
    g_quiet_mode = true;  // no log, and no lock of a log
    g_adb_log_state = 0;
    std::atomic<int> open{0};
    std::atomic<bool> met{false};
    platform().lsm_init = [&] { return met = met || open++ != 0, true; };
    platform().lsm_deinit = [&] { return open = 0, true; };
    const auto answer = [](Road road, int result) {
        pause_for(100);
        deliver(road, payload(3), 3);
        return result;
    };
    platform().diag_send = [&](int, const Bytes&) { return answer(kCallback, 0); };
    platform().usleep = [](unsigned) { return pause_for(100), 0; };
    const auto twenty = [&met] {
        for (int i = 0; i < 20; ++i)
            met = met || send(kCallback).reply != payload(3);
    };
    std::thread other(twenty);
    twenty();
    other.join();
    wait_for_threads();
    EXPECT_FALSE(met) << "two commands";

    for (int i = 0; i < 20; ++i)
        send_without_result(0);
    wait_for_threads();
    EXPECT_FALSE(met) << "two workers";

    platform().dci_send = [](int, const Bytes&) {
        std::atomic<int> ready{0};
        const auto half = [&ready] {
            ++ready;
            while (ready < 2) {
            }
            deliver(kDci, payload(4096), 4096);
        };
        std::thread second(half);
        half();
        second.join();
        deliver(kDci, payload(1), 1);
        return 1001;
    };
    for (int i = 0; i < 250; ++i)
        ASSERT_EQ(send(kDci).reply_len, 8193) << "two pieces";
    g_quiet_mode = false;
    g_adb_log_state = 2;
}

// The modem answers on a thread of its own, around the time-out, and keeps the library's promise: no callback
// after the close. A command takes that response whole, or none; and none takes that of another.
TEST_F(DiagTest, ResponsesAroundTheTimeOutDisturbNobody) {
    g_quiet_mode = true;
    g_adb_log_state = 0;
    std::thread modem;
    Bytes response;
    int delay = 0;  // in microseconds
    std::atomic<bool> closed{false};
    const auto answer = [&](Road road, int result) {
        modem = std::thread([&, road] {
            pause_for(delay);
            if (!closed)
                deliver(road, response, static_cast<int>(response.size()));
        });
        return result;
    };
    platform().diag_send = [&](int, const Bytes&) { return answer(kCallback, 0); };
    platform().dci_send = [&](int, const Bytes&) { return answer(kDci, 1001); };
    platform().lsm_deinit = [&] { return closed = true, modem.join(), true; };
    platform().usleep = [](unsigned) { return pause_for(100), 0; };
    int in_time = 0;
    for (int i = 0; i < 600; ++i) {
        response = payload(1 + i * 37 % 4095, i);
        delay = i * 53 % 700;
        closed = false;
        const Outcome outcome = send(i % 2 == 0 ? kDci : kCallback, 100 * (1 + i % 4));
        in_time += outcome.result == 0 ? 1 : 0;
        ASSERT_EQ(outcome.reply, outcome.reply_len == 0 ? Bytes() : response) << i;
        ASSERT_TRUE(outcome.result == 1 || outcome.reply_len != 0) << i;
    }
    EXPECT_GT(in_time, 0);
    EXPECT_LT(in_time, 600);
    wait_for_threads();
    g_quiet_mode = false;
    g_adb_log_state = 2;
}

}  // namespace

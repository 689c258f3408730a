// The tool's commands where no handset leads them.
#include <gmock/gmock.h>

#include "extend_double.h"
#include "group5_esim.h"
#include "group9_session.h"
#include "groups.h"
#include "kelvra_cmn_cmd_send.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "modem_api.h"
#include "platform_test.h"

namespace {

using Bytes = std::vector<uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;

class Commands : public PlatformTest {
protected:
    ~Commands() override {
        uim_qmi_client = nullptr;
        IS_EID_SAVE = false;
    }
};

TEST_F(Commands, CmnSendsAValueThatFits) {
    platform().send = [](const QmiRequest&, void* rsp) { return answer_extend(rsp, Bytes(508)), 0; };
    const std::string value(492, 'v');
    const struct {
        const char* v;
        uint32_t l;
        uint32_t sent;
    } cases[] = {
        {value.data(), 491, 491}, {value.data(), 492, 0}, {value.data(), 0xFFFFFFFF, 0}, {nullptr, 4, 0}};
    for (const auto& c : cases) {
        printed_by([&] { EXPECT_EQ(kelvra_cmn_cmd_send(57, c.l, c.v), 0); });
        EXPECT_EQ(request_id_of(platform().requests.back()), 4U);
        Bytes wanted(512);
        wanted[0] = 2;
        wanted[8] = 57;
        put_le(&wanted[12], c.sent);
        std::fill_n(wanted.begin() + 16, c.sent, 'v');
        EXPECT_EQ(payload_of(platform().requests.back()), wanted);
    }
}

TEST_F(Commands, EsimWaitsForTheEidInEveryRound) {
    printed_by([] { run_line(kelvra_test_cmn_do, "5 10 1 1"); });
    EXPECT_EQ(platform().usleeps, std::vector<unsigned>(30, 100000));
    platform().usleeps.clear();
    printed_by([] { run_line(kelvra_test_cmn_do, "5 10 3 1"); });
    EXPECT_EQ(platform().usleeps, std::vector<unsigned>(2, 100000));
}

TEST_F(Commands, EsimLooksForTheStoredEidOncePerRun) {
    const struct {
        int write_error;
        int result;
        size_t requests;
    } calls[] = {{-3, -103, 2}, {0, 0, 4}, {0, 0, 4}};
    const Bytes eid(16, 0x89);
    for (const auto& c : calls) {
        platform().send = [&](const QmiRequest& request, void* response) {
            const bool reads = payload_of(request)[0] == 4;
            Bytes answer(20);
            put_le(&answer[16], reads ? -2 : 0);
            answer_extend(response, answer);
            return reads ? 0 : c.write_error;
        };
        printed_by([&] { EXPECT_EQ(save_eid_to_efs(eid.data()), c.result); });
        EXPECT_EQ(platform().requests.size(), c.requests);
    }
}

// A negative wait is slept as an unsigned number of seconds.
TEST_F(Commands, RestartAndDumpStopAtANegativeWait) {
    for (const char* line : {"11 0", "11 1"}) {
        platform().properties = {{"persist.radio.ssr_wait_s", "-1"},
                                 {"persist.vendor.ssr.restart_level", "odd"}};
        platform().requests.clear();
        platform().sleeps.clear();
        EXPECT_THAT(printed_by([line] { run_line(kelvra_smart_test_do, line); }),
                    HasSubstr("]: wait_s < 0, ssr is stoped\n"));
        EXPECT_THAT(platform().sleeps, ElementsAre(4294967295));
        for (const QmiRequest& request : platform().requests)
            EXPECT_EQ(request.bytes[0], 2) << "only the count of changes is asked for";
        EXPECT_EQ(platform().properties["persist.vendor.ssr.restart_level"],
                  line[3] == '0' ? "ALL_ENABLE" : "ALL_DISABLE");
    }
}

TEST_F(Commands, AtGivesTheShellWhatWasTyped) {
    const std::string longest = "AT$X`%n\"" + std::string(92, 'A');
    printed_by([&] { EXPECT_EQ(run_line(kelvra_test_at_cmd_do, "8 " + longest), 0); });
    EXPECT_THAT(platform().commands, ElementsAre("echo \"" + longest + "\\r\" > /dev/smd8"));
}

// The receive thread cannot print before the command has looked for it twice.
TEST_F(Commands, AtEndsWithItsReceiveThread) {
    platform().sleep = [](unsigned) {
        if (platform().sleeps.size() == 2) {
            funlockfile(stdout);
            wait_for_threads();
        }
        return 0U;
    };
    EXPECT_THAT(printed_by([] {
                    flockfile(stdout);
                    run_line(kelvra_test_at_cmd_do, "8 AT");
                }),
                HasSubstr("The at channel is not opened, g_at_serial_fd 0\n"));
    EXPECT_THAT(platform().sleeps, ElementsAre(1, 1));
}

TEST_F(Commands, AtSendsNothingWithoutItsReceiveThread) {
    platform().fail_thread_creation = EAGAIN;
    EXPECT_EQ(printed_by([] { run_line(kelvra_test_at_cmd_do, "8 AT"); }),
              "At cmd you input: sscanf(1), len (2), AT\n"
              "Will create a thread to receive data from serial\n"
              "Fail to create a thread\n" +
                  printed_by([] { show_help(8); }));
    EXPECT_TRUE(platform().commands.empty());
}

TEST_F(Commands, StatisticsSessionStartsAnew) {
    platform().send = [](const QmiRequest& request, void* response) {
        if (request.message == VS_STATISTICS_V01) {
            auto* answer = static_cast<vs_statistics_resp_msg_v01*>(response);
            answer->entries_valid = 1;
            answer->entry_count = 1;
            answer->entries[0] = {0, 0, 94, 20, {}};
        }
        return 0;
    };
    const auto fetch = [] {
        KolvoValue value;
        int result = -1;
        printed_by([&] { result = kelvra_test_qmi_modem_stats_get(0, 94, &value); });
        return result;
    };
    EXPECT_EQ(kelvra_qmi_modem_stats_api_init(), 0);
    platform().android_log.clear();
    EXPECT_EQ(kelvra_qmi_modem_stats_api_init(), 0) << "the client before is gone";
    EXPECT_EQ(platform().releases, 1);
    EXPECT_THAT(platform().android_log,
                testing::Contains(testing::StartsWith("4 KOLVO modem_api_release: function exit")));
    EXPECT_EQ(fetch() + fetch(), 0);
    EXPECT_EQ(platform().requests.back().bytes[2], 2) << "the next number";
    g_kolvo_req_number = INT32_MAX;
    EXPECT_EXIT(fetch(), testing::KilledBySignal(SIGABRT), "vxk: fatal: .*2147483647");
    EXPECT_EQ(kelvra_qmi_modem_stats_api_deinit(), 0);
    EXPECT_EQ(platform().releases, 2);
}

}  // namespace

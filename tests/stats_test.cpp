// The statistics session: how it starts, and what it counts.
#include <gmock/gmock.h>

#include "group9_session.h"
#include "modem_api.h"
#include "platform_test.h"

namespace {

class Stats : public PlatformTest {
protected:
    Stats() {
        platform().send = [](const QmiRequest& request, void* response) {
            if (request.message == VS_STATISTICS_V01) {
                auto* answer = static_cast<vs_statistics_resp_msg_v01*>(response);
                answer->entries_valid = 1;
                answer->entry_count = 1;
                answer->entries[0] = {0, 0, 94, 20, {}};
            }
            return 0;
        };
    }

    static int fetch() {
        KolvoValue value;
        int result = -1;
        printed_by([&] { result = kelvra_test_qmi_modem_stats_get(0, 94, &value); });
        return result;
    }
};

TEST_F(Stats, SessionStartsAnew) {
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

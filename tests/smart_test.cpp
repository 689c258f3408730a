// Restart and dump with a negative wait, which is slept as an unsigned number of seconds.
#include "groups.h"
#include "platform_test.h"

namespace {

class Smart : public PlatformTest {};

TEST_F(Smart, NegativeWaitStopsTheAction) {
    for (const char* line : {"11 0", "11 1"}) {
        platform().properties = {{"persist.radio.ssr_wait_s", "-1"},
                                 {"persist.vendor.ssr.restart_level", "odd"}};
        platform().requests.clear();
        platform().sleeps.clear();
        const std::string printed = printed_by([line] { run_line(kelvra_smart_test_do, line); });
        EXPECT_EQ(platform().sleeps, std::vector<unsigned>{4294967295});
        EXPECT_NE(printed.find("]: wait_s < 0, ssr is stoped\n"), std::string::npos) << printed;
        for (const QmiRequest& request : platform().requests)
            EXPECT_EQ(request.bytes[0], 2) << "only the count of changes is asked for";
        EXPECT_EQ(platform().properties["persist.vendor.ssr.restart_level"],
                  line[3] == '0' ? "ALL_ENABLE" : "ALL_DISABLE");
    }
}

}  // namespace

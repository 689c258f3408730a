// Card slot and antenna commands: the bytes that travel, and failures of the modem. What they print is in the
// transcripts.
#include "extension_modem.h"
#include "groups.h"
#include "kelvra_log.h"
#include "platform_test.h"

namespace {

class CardRf : public PlatformTest {
protected:
    CardRf() { modem.attach(); }
    ~CardRf() override { g_quiet_mode = false; }

    ExtensionModem modem;
};

// clang-format off
const struct {
    int (*group)(int, char**);
    const char* line;
    std::string events;
} kRequests[] = {
    {kelvra_test_cmn_do, "5 1", "common 020000000000000027\n"},
    {kelvra_test_cmn_do, "5 2 7", "common 0200000000000000370000000400000001\n"},
    {kelvra_test_cmn_do, "5 2 x", "common 02000000000000003700000004\n"},
    {kelvra_test_cmn_do, "5 3 0 2 -5", "common 0200000000000000390000000C000000000000000100000001\n"},
    {kelvra_test_cmn_do, "5 4", "common 020000000000000038\n"},
    {kelvra_test_cmn_do, "5 6 0 1 2 3", "common 02000000000000005000000004\n"},
    {kelvra_test_cmn_do, "5 6 2 -1 5 3",
     "common 0200000000000000500000001000000002000000FFFFFFFF0500000003\n"},
    {kelvra_test_rf_do, "3 0", "common \n"},
    {kelvra_test_rf_do, "3 0 1 -2", "common 00000000000000000200000001000000FEFFFFFF\n"},
    {kelvra_test_rf_do, "3 3 1 4 0x80", "common 0100000000000000010000000400000080\n"},
    {kelvra_test_rf_do, "3 3 0 0 0x80000000001", "common 01000000000000000000000000000000010000000008\n"},
    {kelvra_test_rf_do, "3 3 1 4 010", "common 0100000000000000010000000400000008\n"},
    {kelvra_test_rf_do, "3 3 1 4 none", "common 01000000000000000100000004\n"},
    {kelvra_test_rf_do, "3 3 1 4 99999999999999999999",
     "common 01000000000000000100000004000000FFFFFFFFFFFFFFFF\n"},
    {kelvra_test_rf_do, "3 2",
     std::string("delete /nv/item_files/modem/kelvra/rf_ant_port_config\0\n", 55)},
    {kelvra_test_rf_do, "3 5", std::string("delete /nv/item_files/modem/antenna/ant_tx_config\0\n", 51)},
};
// clang-format on

TEST_F(CardRf, Requests) {
    for (const auto& c : kRequests) {
        modem.events.clear();
        printed_by([&c] { EXPECT_EQ(run_line(c.group, c.line), 0); });
        EXPECT_EQ(modem.events, c.events) << c.line;
        EXPECT_EQ(get_le<uint32_t>(platform().requests.back().bytes.data() + 4), 512U);
    }
}

TEST_F(CardRf, FiftyGpioValuesAtMost) {
    std::string line = "3 0";
    for (int i = 1; i <= 51; ++i)
        line += " " + std::to_string(i);
    const std::string printed = printed_by([&line] { run_line(kelvra_test_rf_do, line); });
    EXPECT_EQ(printed.substr(printed.rfind("kelvra_gpio_test_set")).substr(0, 36),
              "kelvra_gpio_test_set, gpio_v[49]: 50");
    EXPECT_EQ(modem.events.substr(0, 31), "common 000000000000000032000000");
    EXPECT_EQ(modem.events.substr(modem.events.size() - 11), "3100000032\n");
}

TEST_F(CardRf, FailuresAreReported) {
    platform().send = [](const QmiRequest&, void*) { return -3; };
    const struct {
        const char* line;
        int result;
        const char* what;
    } cases[] = {
        {"3 0 1", -3, "COMMON"}, {"3 1", -103, "EFS"},        {"3 2", -103, "EFS"},
        {"3 4", -103, "EFS"},    {"3 3 1 4 1", -3, "COMMON"}, {"3 5", -103, "EFS"},
    };
    for (const auto& c : cases) {
        const std::string printed =
            printed_by([&c] { EXPECT_EQ(run_line(kelvra_test_rf_do, c.line), c.result); });
        const std::string end = std::string("\nkelvra_extend_qmi_send_sync fail, REQUEST_ID_") + c.what +
                                "\n\nnote: Error happen! error_code(" + std::to_string(c.result) + ")\n\n===";
        EXPECT_NE(printed.find(end), std::string::npos) << printed;
    }
}

TEST_F(CardRf, QuietModeSilencesTheCardCommands) {
    g_quiet_mode = true;
    for (const char* line : {"5 1", "5 2 0", "5 3 0 1 1", "5 4", "5 6 0", "5 6 1 1 1 1"})
        EXPECT_EQ(printed_by([line] { run_line(kelvra_test_cmn_do, line); }), "") << line;
    EXPECT_EQ(platform().requests.size(), 6U);
}

}  // namespace

// Where log lines go: both forms, the property gate, quiet mode; the QCRIL logger's levels.
#include "kelvra_log.h"

#include <cstring>
#include <thread>

#include "platform_test.h"
#include "qcril_logger.h"

namespace {

KELVRA_LOG_UNIT("log_test");

class LogTest : public PlatformTest {
protected:
    LogTest() { g_adb_log_state = 2; }
    ~LogTest() override { g_quiet_mode = false; }

    static std::vector<std::string> system_log() { return std::move(platform().system_log); }
};

using Lines = std::vector<std::string>;

void say(int line, const char* word) {
    KELVRA_LOGD_AT(line, "%s 100%%\n", word);
}

void fail() {
    KELVRA_LOGE("%s%s", "aaaa", "bbbb");
}

TEST_F(LogTest, PropertyGate) {
    const struct {
        const char* value;
        bool copies;
    } cases[] = {{"1", true}, {"10", true}, {"", true}, {"0", false}, {"2", false}, {"true", false}};
    for (const auto& c : cases) {
        g_adb_log_state = 2;
        platform().properties["persist.vendor.radio.adb_log_kv"] = c.value;
        EXPECT_EQ(printed_by([] {
                      say(1, "a");
                      say(2, "b");
                  }),
                  "RIL[say:1]: a 100%\n\nRIL[say:2]: b 100%\n\n");
        EXPECT_EQ(system_log(),
                  c.copies ? Lines({"7 rild print is started", "7 SUB[shell][log_test:1] say: a 100%\n",
                                    "7 SUB[shell][log_test:2] say: b 100%\n"})
                           : Lines({"7 rild print is stoped"}))
            << c.value;
    }
}

TEST_F(LogTest, QuietSilencesTheConsoleOfDebugLogsAlone) {
    platform().properties["persist.vendor.radio.adb_log_kv"] = "0";
    g_quiet_mode = true;
    EXPECT_EQ(printed_by([] {
                  say(1, "a");
                  kelvra_printf("b");
                  kelvra_puts("c");
                  qti::ril::logger::LoggerFactory::logger().log(qti::ril::logger::Level::kFatal, "d");
              }),
              "d\n");
    EXPECT_EQ(mask_lines(printed_by(fail)), "RIL[fail:#]: aaaabbbb\n");
    const Lines log = system_log();
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[0], "7 rild print is stoped");
    EXPECT_EQ(log[1].find("3 SUB[shell][log_test:"), 0U);
}

TEST_F(LogTest, LinesOfThreadsDoNotMix) {
    const std::string printed = printed_by([] {
        std::thread other([] {
            for (int i = 0; i < 200; ++i)
                fail();
        });
        for (int i = 0; i < 200; ++i)
            fail();
        other.join();
    });
    std::string expected;
    for (int i = 0; i < 400; ++i)
        expected += "RIL[fail:#]: aaaabbbb\n";
    EXPECT_EQ(mask_lines(printed), expected);
}

TEST_F(LogTest, StatisticsFormatterCutsAt512) {
    char buffer[513];
    buffer[512] = '!';
    EXPECT_EQ(kolvo_log_format_log_msg(buffer, "%0600d", 1), 600);
    EXPECT_EQ(strlen(buffer), 511U);
    EXPECT_EQ(buffer[512], '!');
}

TEST_F(LogTest, QcrilLevels) {
    using namespace qti::ril::logger;
    const auto all_levels = [] {
        for (int level = 0; level < 6; ++level)
            LoggerFactory::logger().log(static_cast<Level>(level), "%s", kLevelNames[level]);
    };
    EXPECT_EQ(printed_by(all_levels), "VERBOSE\nDEBUG\nINFO\nWARN\nERROR\nFATAL\n");
    EXPECT_TRUE(LoggerFactory::set_option("level", "INFO"));
    EXPECT_EQ(printed_by(all_levels), "VERBOSE\nDEBUG\nINFO\n");
    for (const auto& [name, value] : {std::pair("level", "LOUD"), std::pair("volume", "INFO")}) {
        const std::string printed =
            printed_by([&, n = name, v = value] { EXPECT_FALSE(LoggerFactory::set_option(n, v)); });
        EXPECT_NE(printed.find("QCRIL Logger Initialization failure\n"), std::string::npos);
    }
}

}  // namespace

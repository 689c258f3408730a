// The AT command as the shell gets it, and its receive thread.
#include "groups.h"
#include "platform_test.h"

namespace {

class AtMbn : public PlatformTest {};

TEST_F(AtMbn, ShellGetsTheFirstWord) {
    const std::string longest(100, 'A');
    const struct {
        std::string typed;
        std::string sent;
    } cases[] = {{"AT+CFUN? now", "AT+CFUN?"}, {longest, longest}, {" \t ", ""}, {"AT$X`%n\"", "AT$X`%n\""}};
    for (const auto& c : cases) {
        platform().commands.clear();
        printed_by([&] { EXPECT_EQ(run_words(kelvra_test_at_cmd_do, {"8", c.typed}), 0); });
        EXPECT_EQ(platform().commands, std::vector<std::string>{"echo \"" + c.sent + "\\r\" > /dev/smd8"});
    }
}

// The receive thread cannot print before the command has looked for it twice.
TEST_F(AtMbn, CommandEndsWithTheReceiveThread) {
    int looks = 0;
    platform().sleep = [&looks](unsigned seconds) {
        EXPECT_EQ(seconds, 1U);
        if (++looks == 2) {
            funlockfile(stdout);
            wait_for_threads();
        }
        return 0U;
    };
    const std::string printed = printed_by([] {
        flockfile(stdout);
        run_line(kelvra_test_at_cmd_do, "8 AT");
    });
    EXPECT_EQ(looks, 2);
    EXPECT_NE(printed.find("The at channel is not opened, g_at_serial_fd 0\n"), std::string::npos);
}

TEST_F(AtMbn, NothingIsSentWithoutTheReceiveThread) {
    platform().fail_thread_creation = EAGAIN;
    const std::string printed = printed_by([] { run_line(kelvra_test_at_cmd_do, "8 AT"); });
    EXPECT_EQ(printed,
              "At cmd you input: sscanf(1), len (2), AT\n"
              "Will create a thread to receive data from serial\n"
              "Fail to create a thread\n" +
                  printed_by([] { show_help(8); }));
    EXPECT_TRUE(platform().commands.empty());
}

}  // namespace

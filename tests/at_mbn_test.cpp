// The AT command as the shell gets it, and the MBN test's lines.
#include <algorithm>

#include "groups.h"
#include "platform_test.h"

namespace {

class AtMbn : public PlatformTest {};

// Printed lines in order of their text: the receive thread prints when it likes.
std::vector<std::string> sorted_lines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    lines.pop_back();
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST_F(AtMbn, ShellGetsTheFirstWord) {
    const std::string longest(100, 'A');
    const struct {
        std::string typed;
        int words;
        std::string sent;
    } cases[] = {
        {"AT+CFUN?", 1, "AT+CFUN?"},
        {"AT+CFUN? now", 1, "AT+CFUN?"},
        {longest, 1, longest},
        {" \t ", -1, ""},
        {"", -1, ""},
        {"AT$X`%n\"", 1, "AT$X`%n\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        platform().commands.clear();
        int result = -1;
        const std::string printed = printed_by([&] {
            result = run_words(kelvra_test_at_cmd_do, {"8", c.typed});
        });
        const std::string command = "echo \"" + c.sent + "\\r\" > /dev/smd8";
        EXPECT_EQ(platform().commands, std::vector<std::string>{command});
        EXPECT_EQ(result, 0);
        EXPECT_EQ(sorted_lines(printed),
                  sorted_lines("At cmd you input: sscanf(" + std::to_string(c.words) + "), len (" +
                               std::to_string(c.sent.size()) + "), " + c.sent +
                               "\n"
                               "Will create a thread to receive data from serial\n"
                               "The thread to receive data from serial is started\n"
                               "The at channel is not opened, g_at_serial_fd 0\n"
                               "at shell cmd: " +
                               command + "\necho, ret_sys: 0\nSuccess to send at shell cmd\n"));
    }
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

TEST_F(AtMbn, PdcInitialisationFails) {
    const std::string printed = printed_by([] { run_line(kelvra_test_mbn_do, "10 0 3"); });
    EXPECT_EQ(
        mask_lines(printed),
        "RIL[kelvra_test_mbn_pdc_init:#]: function entry ------------->\n"
        "RIL[kelvra_test_mbn_pdc_init:#]: start kelvra pdc init, g_pdc_init_status = -1, force_init = 0\n"
        "RIL[kelvra_test_mbn_pdc_init:#]: pdc init failed\n"
        "RIL[kelvra_test_mbn_pdc_init:#]: function exit <-------------\n"
        "RIL[kelvra_test_mbn_do:#]: pdc init failed, do nothing\n" +
            printed_by([] { show_help(10); }));
}

}  // namespace

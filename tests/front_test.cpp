// What the front end does before any command runs: words as numbers, bytes as text, the help, and the command
// lines that a group refuses.
#include <thread>

#include "groups.h"
#include "hex_dump.h"
#include "kelvra_log.h"
#include "kelvra_parse.h"
#include "platform_test.h"

namespace {

TEST(Parse, NumbersAsTyped) {
    const struct {
        const char* text;
        int value;
    } cases[] = {
        {"0x", 0},
        {"0x1G", 16},
        {"12abc", 12},
        {" 7", 7},
        {"", 0},
        {"0x1-2", 258},
        {"0x7FFFFFFF", 2147483647},
        {"0x80000000", 2147483647},
        {"0x00000000000000000000000000000000000000000000000000", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(kelvra_string_to_int(c.text), c.value) << c.text;
}

TEST(Parse, BytesAsHexWithoutTerminator) {
    const unsigned char bytes[] = {0xAB, 0x01};
    char text[6] = "-----";
    kelvra_byte_to_hex(bytes, 2, text);
    EXPECT_STREQ(text, "ab01-");
    kelvra_byte_to_hex(bytes, 0, text);
    kelvra_byte_to_hex(nullptr, 2, text);
    EXPECT_STREQ(text, "ab01-");
}

class Front : public PlatformTest {
protected:
    ~Front() override { g_quiet_mode = false; }

    static std::string help(int group) {
        return printed_by([group] { show_help(group); });
    }
};

TEST_F(Front, NullWordIsAnnouncedUnlessQuiet) {
    EXPECT_EQ(printed_by([] { EXPECT_EQ(kelvra_string_to_int(nullptr), 0); }), "\ninput is null\n");
    EXPECT_EQ(printed_by([] { EXPECT_EQ(kelvra_hex_string_to_int(nullptr), 0); }), "\ninput is null\n");
    g_quiet_mode = true;
    EXPECT_EQ(printed_by([] { EXPECT_EQ(kelvra_string_to_int(nullptr), 0); }), "");
}

// The sections between the banners add up to the whole; a number that is no group has the banners alone.
TEST_F(Front, EachGroupHasItsSectionOfTheHelp) {
    const std::string banners = help(13);
    EXPECT_EQ(help(-1), banners);
    const size_t head = banners.find('\n', 1) + 1;
    std::string all = banners.substr(0, head);
    for (int group = 1; group <= 11; ++group) {
        const std::string text = help(group);
        EXPECT_EQ(text.compare(head, 2, std::to_string(group) + ":", 0, 2), 0) << text;
        all += text.substr(head, text.size() - banners.size());
    }
    EXPECT_EQ(all + banners.substr(head), help(0));
}

// The command line never leads to another group; the functions look all the same.
TEST_F(Front, AnotherGroupsNumberIsRefused) {
    for (int group = 3; group <= 11; ++group)
        EXPECT_EQ(printed_by([group] { run_line(find_group(group)->run, group == 8 ? "7 a" : "2 0 1"); }),
                  "\nnote: the first parameters should be " + std::to_string(group) +
                      ", Pls refer to the following cmd:\n" + help(group));
    EXPECT_TRUE(platform().requests.empty());
}

// An indication that is printed meanwhile, on another thread, does not tear an answer.
TEST_F(Front, AnAnswerIsOnePiece) {
    const uint8_t bytes[] = {0xAB};
    const std::string printed = printed_by([&] {
        std::thread other([] {
            for (int i = 0; i < 2000; ++i)
                puts("indication");
        });
        for (int i = 0; i < 2000; ++i)
            print_data("data: ", bytes, 1);
        other.join();
    });
    size_t whole = 0;
    const std::string answer = "\ndata len(1)\ndata:  AB\n";
    for (size_t at = printed.find(answer); at != std::string::npos; at = printed.find(answer, at + 1))
        ++whole;
    EXPECT_EQ(whole, 2000U);
}

TEST_F(Front, QuietGroupRefusesWithTheHelpAlone) {
    g_quiet_mode = true;
    for (const char* line : {"5", "4 1", "5 7", "5 2"})
        EXPECT_EQ(printed_by([line] { run_line(kelvra_test_cmn_do, line); }), help(5)) << line;
}

}  // namespace

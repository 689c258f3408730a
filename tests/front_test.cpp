// Words as numbers, and bytes as text.
#include "kelvra_parse.h"
#include "platform_double.h"

namespace {

TEST(Parse, NumbersAsTyped) {
    const struct {
        const char* text;
        int value;
    } cases[] = {
        {"0x", 0},
        {"0X1f", 31},
        {"0x1G", 16},
        {"12abc", 12},
        {"x10", 0},
        {"-5", -5},
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

TEST(ParseDeathTest, FatalNumbers) {
    EXPECT_EXIT(kelvra_string_to_int("0x000000000000000000000000000000000000000000000000000"),
                testing::KilledBySignal(SIGABRT), "vxk: fatal: .*51");
    EXPECT_EXIT(kelvra_string_to_int("0x80000001"), testing::KilledBySignal(SIGABRT), "0x80000001 overflows");
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

}  // namespace

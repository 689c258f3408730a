// Restart, dump, sync and print switches: in which order properties, waits, files and requests follow each
// other, and where an action stops.
#include <array>

#include "extension_modem.h"
#include "groups.h"
#include "platform_test.h"

namespace {

constexpr char kLevel[] = "persist.vendor.ssr.restart_level";
constexpr char kBackup[] = "persist.vendor.ssr.restart_level_bak";
constexpr char kWait[] = "persist.radio.ssr_wait_s";
constexpr char kPrintStats[] = "persist.vendor.radio.print_stats";
constexpr char kCounter[] = "/nv/item_files/modem/kelvra/ssr_update_count";

// Events.
#define RESTART "common 02000000000000001F000000040000000010\n"
#define DUMP "common 02000000000000001F000000040000000020\n"
#define SYNC "common 020000000000000023\n"
#define COUNT_UP                                          \
    "read /nv/item_files/modem/kelvra/ssr_update_count\n" \
    "write /nv/item_files/modem/kelvra/ssr_update_count 4\n"

// The properties that an action reads or sets, by the names above, and its file.
using State = std::array<std::string, 5>;
constexpr const char* kNames[] = {kLevel, kBackup, kWait, kPrintStats};

const std::string kMask1F("\x1f\0\0\0", 4);
const std::string kMask0F("\x0f\0\0\0", 4);
const std::string k1("\1\0\0\0", 4);
const std::string k511("\xff\1\0\0", 4);
const std::string k512("\0\2\0\0", 4);

// clang-format off
const struct {
    const char* line;
    std::string path;  // of the file
    State before;
    std::string events;
    State after;
} kCases[] = {
    // Restart: from an unset level, with no change needed, from an odd level without a wait, and stopped.
    {"11 0", "", {}, "sleep 3 at ALL_ENABLE\n" RESTART "sleep 3 at ALL_ENABLE\n", {"ALL_DISABLE"}},
    {"11 0", "", {"ALL_ENABLE"}, RESTART, {"ALL_ENABLE"}},
    {"11 0", "", {"odd", "", "soon"}, RESTART, {"odd", "", "soon"}},
    {"11 0", "", {"", "", "-1"}, "sleep 4294967295 at ALL_ENABLE\n", {"ALL_ENABLE", "", "-1"}},
    // Dump: the first, the second, one that finds a backup and a count, and one that is stopped.
    {"11 1", kCounter, {"", "", "7"}, COUNT_UP "sleep 7 at ALL_DISABLE\n" DUMP,
     {"ALL_DISABLE", "ALL_ENABLE", "7", "", k1}},
    {"11 1", kCounter, {"ALL_DISABLE", "ALL_ENABLE"}, DUMP, {"ALL_DISABLE", "ALL_ENABLE"}},
    {"11 1", kCounter, {"odd", "ALL_ENABLE", "0", "", k511}, COUNT_UP DUMP,
     {"ALL_DISABLE", "ALL_ENABLE", "0", "", k512}},
    {"11 1", kCounter, {"", "", "-2"}, COUNT_UP "sleep 4294967294 at ALL_DISABLE\n",
     {"ALL_DISABLE", "ALL_ENABLE", "-2", "", k1}},
    {"11 2", "", {}, SYNC, {}},
    {"11 3 1", "", {}, "", {"", "", "", "1"}},
    {"11 3 0", "", {}, "", {"", "", "", "2"}},
    {"11 4 1", "/kolvo/kolvo_print_mask", {"ALL_ENABLE"},
     "write /kolvo/kolvo_print_mask 4\n" SYNC RESTART, {"ALL_ENABLE", "", "", "", kMask1F}},
    {"11 5 1", "/nv/item_files/modem/kelvra/qmi_print_flag", {"ALL_ENABLE"},
     "write /nv/item_files/modem/kelvra/qmi_print_flag 1\n" SYNC RESTART, {"ALL_ENABLE", "", "", "", "\1"}},
    {"11 6 1", "/nv/item_files/modem/kelvra/rf_print_mask", {"ALL_ENABLE"},
     "write /nv/item_files/modem/kelvra/rf_print_mask 4\n" SYNC RESTART, {"ALL_ENABLE", "", "", "", kMask0F}},
    {"11 6 0", "/nv/item_files/modem/kelvra/rf_print_mask", {"ALL_ENABLE", "", "", "", kMask0F},
     "delete /nv/item_files/modem/kelvra/rf_print_mask\n" SYNC RESTART, {"ALL_ENABLE"}},
};
// clang-format on

class Smart : public PlatformTest {
protected:
    Smart() {
        modem.attach();
        platform().sleep = [this](unsigned seconds) {
            modem.events +=
                "sleep " + std::to_string(seconds) + " at " + platform().properties[kLevel] + "\n";
            return 0U;
        };
    }

    static std::string run(const std::string& line) {
        return printed_by([&line] { run_line(kelvra_smart_test_do, line); });
    }

    ExtensionModem modem;
};

TEST_F(Smart, Actions) {
    for (const auto& c : kCases) {
        for (size_t i = 0; i < std::size(kNames); ++i)
            platform().properties[kNames[i]] = c.before[i];
        modem.files.clear();
        if (!c.before[4].empty())
            modem.files[c.path] = c.before[4];
        modem.events.clear();
        run(c.line);
        EXPECT_EQ(modem.events, c.events) << c.line;
        State after{"", "", "", "", modem.files[c.path]};
        for (size_t i = 0; i < std::size(kNames); ++i)
            after[i] = platform().properties[kNames[i]];
        EXPECT_EQ(after, c.after) << c.line;
    }
}

TEST_F(Smart, SwitchStopsWhenTheModemRefuses) {
    modem.refuses = true;
    const std::string on = run("11 6 1");
    EXPECT_EQ(on.substr(on.rfind('\n', on.size() - 2)), "\nkelvra_efs_write failed\n");
    const std::string off = run("11 6 0");
    EXPECT_EQ(off.substr(off.rfind('\n', off.size() - 2)), "\nkelvra_efs_delete failed\n");
    EXPECT_EQ(modem.events.find("common"), std::string::npos);
}

TEST_F(Smart, RefusedCounterDoesNotStopTheDump) {
    modem.refuses = true;
    run("11 1");
    EXPECT_EQ(modem.events, COUNT_UP "sleep 3 at ALL_DISABLE\n" DUMP);
}

TEST_F(Smart, CounterOverflowIsFatal) {
    modem.files[kCounter] = "\xff\xff\xff\xff";
    EXPECT_EXIT(run("11 1"), testing::KilledBySignal(SIGABRT), "vxk: fatal: .*4294967295");
}

}  // namespace

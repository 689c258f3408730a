// What the Linux library keeps by itself: properties and the system log.
#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <sys/syslog.h>

#include <atomic>
#include <cstdarg>
#include <fstream>
#include <sstream>
#include <thread>

#include "android/log.h"
#include "cutils/properties.h"
#include "fake_service.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

std::atomic<int> g_writes{0};

}  // namespace

/// Counts what the library writes; standard output and error are the test's own.
extern "C" ssize_t write(int fd, const void* bytes, size_t size) {
    g_writes += fd > STDERR_FILENO ? 1 : 0;
    return syscall(SYS_write, fd, bytes, size);
}

namespace {

std::string property(const std::string& key, const char* default_value = nullptr) {
    char value[PROPERTY_VALUE_MAX];
    memset(value, 'x', sizeof value);
    const int length = property_get(key.c_str(), value, default_value);
    EXPECT_EQ(strlen(value), static_cast<size_t>(length));
    return value;
}

TEST(Properties, AreFiles) {
    const HandsetFolder folder;
    const std::string longest(91, 'v');
    EXPECT_EQ(property("a.b"), "");
    EXPECT_EQ(property("a.b", "1"), "1");
    EXPECT_EQ(property("a.b", std::string(200, 'd').c_str()), std::string(91, 'd'));
    EXPECT_EQ(property_set("a.b", longest.c_str()), 0);
    EXPECT_EQ(property("a.b", "1"), longest);
    EXPECT_EQ(folder.read("properties/a.b"), longest);
    EXPECT_LT(property_set("a.b", (longest + 'v').c_str()), 0);
    EXPECT_EQ(property("a.b"), longest);
    const std::ifstream before(folder.at("properties/a.b"));
    EXPECT_EQ(property_set("a.b", "2"), 0);
    EXPECT_EQ(property("a.b"), "2");
    EXPECT_EQ((std::stringstream() << before.rdbuf()).str(), longest) << "a reader keeps what it has opened";
    EXPECT_EQ(property_set("a.b", ""), 0);
    EXPECT_EQ(property("a.b", "3"), "3");
    folder.write("properties/by.hand", "on\n");
    EXPECT_EQ(property("by.hand"), "on");
    folder.write("properties/by.hand", longest + longest);
    EXPECT_EQ(property("by.hand"), longest);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.at("properties")), {}), 1);
}

TEST(Properties, LieInTheStateFolderOfAMachineOnTheBus) {
    const HandsetFolder folder;
    setenv("VXK_MODEM", "qrtr", 1);
    setenv("VXK_STATE_DIR", folder.at("new/state").c_str(), 1);
    EXPECT_EQ(property("a.b", "1"), "1");
    EXPECT_EQ(property_set("a.b", "2"), 0);
    EXPECT_EQ(property("a.b"), "2");
    EXPECT_EQ(folder.read("new/state/properties/a.b"), "2");
    setenv("VXK_MODEM", ("folder:" + folder.at("handset")).c_str(), 1);
    std::filesystem::create_directory(folder.at("handset"));
    EXPECT_EQ(property_set("a.b", "3"), 0);
    EXPECT_EQ(folder.read("handset/properties/a.b"), "3");
    for (const char* wrong : {"qrt", "qrtr:", "qrtr:x", "qrtr:4294967296", "folder:", ":"}) {
        setenv("VXK_MODEM", wrong, 1);
        EXPECT_EXIT(property("a.b"), testing::ExitedWithCode(0), std::string("VXK_MODEM is .") + wrong);
    }
    unsetenv("VXK_MODEM");
}

void write_log(int priority, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
void write_log(int priority, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vsyslog(priority, fmt, args);
    va_end(args);
}

/// The lines of the log, without the time: "PID TID P TAG: MESSAGE", where PID and TID must
/// be this process's.
std::vector<std::string> log_lines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    const std::string ids = std::to_string(getpid()) + " " + std::to_string(gettid()) + " ";
    for (std::string line; std::getline(file, line);) {
        const std::string time = line.substr(0, 19);
        EXPECT_THAT(
            time, MatchesRegex("[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9] "));
        EXPECT_EQ(line.substr(19, ids.size()), ids);
        lines.push_back(line.substr(19 + ids.size()));
    }
    return lines;
}

TEST(SystemLog, HasALineAMessage) {
    const std::string tag = program_invocation_short_name;
    const std::string longest(100000, 'm');
    const HandsetFolder folder;
    g_writes = 0;
    write_log(LOG_DEBUG, "rild print is started");
    write_log(LOG_USER | LOG_ERR, "two\nlines %d\n", 7);
    errno = ENOENT;
    write_log(LOG_NOTICE, "%s", "kept");
    EXPECT_EQ(errno, ENOENT);
    write_log(LOG_CRIT, "%s", longest.c_str());
    EXPECT_GT(__android_log_print(ANDROID_LOG_INFO, "KOLVO", "%s", "\n"), 0);
    EXPECT_EQ(__android_log_print(ANDROID_LOG_SILENT, "KOLVO", "unheard"), 0);
    EXPECT_EQ(g_writes, 5) << "one a line, so that lines of two processes never mix";
    // The library looks once a millisecond whether its file is still the right one.
    const auto pass_a_look = [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
    const HandsetFolder other;
    pass_a_look();
    write_log(LOG_WARNING, "to another folder");
    EXPECT_THAT(log_lines(other.at("log/system.log")), ElementsAre("W " + tag + ": to another folder"));
    std::filesystem::remove_all(other.at("log"));
    pass_a_look();
    write_log(LOG_WARNING, "to a new file");
    EXPECT_THAT(log_lines(other.at("log/system.log")), ElementsAre("W " + tag + ": to a new file"));
    EXPECT_THAT(log_lines(folder.at("log/system.log")),
                ElementsAre("D " + tag + ": rild print is started", "E " + tag + ": two lines 7",
                            "I " + tag + ": kept", "F " + tag + ": " + longest, "I KOLVO: "));
}

}  // namespace

// The diag interface of the handset as its clients see it: bytes on its socket.
#include "handset_fixture.h"

#include <chrono>
#include <sstream>
#include <vector>

#include "hex_text.h"
#include "profile.h"

namespace handset_test {
namespace {

using handset::parse_hex;
using wire::Bytes;

constexpr int kShortly = 60;  // ms in which nothing may come

std::string text_of(const Bytes& bytes) {
    std::string text;
    handset::append_hex(text, bytes);
    return text;
}

std::string text_of(const std::optional<Bytes>& packet) {
    return !packet ? "nothing" : packet->empty() ? "closed" : text_of(*packet);
}

// A conversation, one step a line: "> bytes" are sent; "< bytes" must come, "< nothing", "< closed", or
// "< #size beginning" a packet of that size.
void converse(const RunningHandset& handset, const std::vector<std::string>& steps) {
    const Client client(handset.dir(), "diag");
    for (const std::string& step : steps) {
        SCOPED_TRACE(step);
        const std::string rest = step.substr(2);
        if (step[0] == '>') {
            client.send(parse_hex(rest).value());
            continue;
        }
        const auto packet = client.receive(rest == "nothing" ? kShortly : 5000);
        if (rest[0] != '#') {
            ASSERT_EQ(text_of(packet), rest);
            continue;
        }
        const size_t blank = rest.find(' ');
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->size(), std::stoul(rest.substr(1)));
        EXPECT_EQ(text_of(*packet).rfind(rest.substr(blank + 1), 0), 0U) << text_of(*packet);
    }
}

const std::string kOpen = "> 01";
const std::string kOpened = "< 81 01 00 00 00";
const std::string kRegister = "> 05 02 00 00 00 00 00";
const std::string kRegistered = "< 85 E9 03 00 00 01 00 00 00";
const std::string kSent = "< 84 00 00 00 00";
const std::string kDciSent = "< 89 E9 03 00 00";

struct Conversation {
    const char* diag;  // section of the profile
    std::vector<std::string> steps;
};

void hold(const std::vector<Conversation>& conversations) {
    for (const auto& row : conversations) {
        SCOPED_TRACE(row.diag);
        const TestFolder place;
        const RunningHandset handset(place, std::string("{") + row.diag + "}");
        converse(handset, row.steps);
    }
}

TEST(HandsetDiag, AnswersEveryOp) {
    hold({
        {R"("diag": {"remote_mask": 5})",
         {"> 02", "< 82 FF FF FF FF", "> 04 00 00 00 00 7B", "< 84 FF FF FF FF", kRegister,
          "< 85 EB 03 00 00", kOpen, kOpened, kOpen, kOpened, "> 02", "< 82 00 00 00 00 05 00",
          "> 03 06 00 00 00", "< 83 00 00 00 00", "> 03 06 00 00", "< 83 FF FF FF FF", "> 0B",
          "< 8B FF FF FF FF", "> 00", "< 80 FF FF FF FF", "> 04 00 00 00 00", "< 84 FF FF FF FF",
          // Processors 1 and 3 are there.
          "> 04 01 00 00 00 7B 01", kSent, "< 40 01 7B 01", "> 04 02 00 00 00 7B", "< 84 FF FF FF FF",
          "> 04 03 00 00 00 7B", kSent, "< 40 03 7B", "> 04 FF FF FF FF 7B", "< 84 FF FF FF FF",
          "> 07 02 00 00 00", "< 87 EB 03 00 00"}},
        {"",
         {kOpen,
          kOpened,
          kRegister,
          kRegistered,
          kRegister,
          "< 85 E9 03 00 00 02 00 00 00",
          "> 06 01 00 00 00 40 00 00 00",
          "< 86 E9 03 00 00",
          "> 06 03 00 00 00 40 00 00 00",
          "< 86 EB 03 00 00",
          "> 07 00 00 00 00",
          "< 87 E9 03 00 00 02 00",
          "> 08 02 00 00 00",
          "< 88 E9 03 00 00",
          "> 08 00 00 00 00",
          "< 88 EB 03 00 00",
          "> 09 02 00 00 00 7B 05",
          kDciSent,
          "< 41 7B 05",
          "> 0A 02 00 00 00",
          "< 8A E9 03 00 00",
          "> 0A 02 00 00 00",
          "< 8A EB 03 00 00",
          "> 09 02 00 00 00 7B 05",
          "< 89 EB 03 00 00",
          "> 09 01 00 00 00 7B 06",
          kDciSent,
          "< 41 7B 06"}},
        {R"("diag": {"mpss_up": false, "results": {"dci_streams": -5}})",
         {kOpen, kOpened, kRegister, kRegistered, "> 07 00 00 00 00", "< 87 E9 03 00 00 00 00",
          "> 08 01 00 00 00", "< 88 FB FF FF FF"}},
        {R"("diag": {"results": {"open": 0}})",
         {kOpen, "< 81 00 00 00 00", "> 02", "< 82 FF FF FF FF", kOpen, "< 81 00 00 00 00"}},
    });
}

TEST(HandsetDiag, ThePeripheralKnowsTheStandardCommands) {
    // "Mar 14 2024" "09:26:53" "Mar 15 2024" "12:00:00" "vxk.sim ", then eight bytes of numbers
    const std::string version =
        "< 40 00 00 4D 61 72 20 31 34 20 32 30 32 34 30 39 3A 32 36 3A 35 33 4D 61 72 20 31 35 20 32 30 "
        "32 34 31 32 3A 30 30 3A 30 30 76 78 6B 2E 73 69 6D 20 2A 06 A5 00 01 02 01 00";
    hold({{"",
           {kOpen, kOpened, "> 04 00 00 00 00 00", kSent, version, "> 04 00 00 00 00 7C", kSent,
            "< #62 40 00 7C 02 00 00 02 1B 0A 00 A5 0F 00 00 56 58 4B 2E", "> 04 00 00 00 00 4B 12 00", kSent,
            "< 40 00 13 4B 12 00"}}});

    const TestFolder place;
    const RunningHandset handset(place);
    const Client client(handset.dir(), "diag");
    client.send({1});
    client.receive();
    client.send({4, 0, 0, 0, 0, 0x1D});
    client.receive();
    const auto event = client.receive();
    ASSERT_TRUE(event);
    ASSERT_EQ(event->size(), 11U);
    wire::Reader reader({event->data() + 3, 8});
    const uint64_t seconds = (reader.u64() >> 16) / 800 + 315'964'800;
    EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(time(nullptr)), 5);
}

TEST(HandsetDiag, RespondsAsTheProfileSays) {
    const std::string send = "> 04 00 00 00 00 ";
    const std::string dci_send = "> 09 01 00 00 00 ";
    hold({
        {R"("diag": {"responses": [
            {"command": "26 01", "bytes": "AA BB"}, {"command": "26", "size": 0, "processor": 7},
            {"command": "4B", "silent": true}, {"command": "7C", "size": 10241},
            {"command": "7D", "bytes": "01", "delay_ms": 250}, {"bytes": "FE", "before_answer": true}]})",
         {kOpen,
          kOpened,
          send + "26 01 02",
          kSent,
          "< 40 00 AA BB",
          send + "26",
          kSent,
          "< 40 07",
          send + "4B",
          kSent,
          "< nothing",
          send + "7C",
          kSent,
          "< #10243 40 00 01 02 03",
          send + "00",
          "< 40 00 FE",
          kSent,
          send + "7D",
          kSent,
          "< nothing",
          "< 40 00 01"}},
        {R"("diag": {"before_answer": true, "delay_ms": 250, "responses": [
            {"command": "01", "pieces": [4096, 0, 3]}, {"command": "02", "pieces": [2, 1], "bytes": "A1 A2 A3",
             "before_answer": false, "delay_ms": 0, "gap_ms": 250},
            {"command": "03", "size": 4096}, {"command": "04", "size": 8193}, {"command": "05", "size": 0}]})",
         {kOpen, kOpened, kRegister, kRegistered, dci_send + "01", "< nothing", "< #4097 41 01 02", "< 41",
          "< 41 51 52 53", kDciSent, dci_send + "02", kDciSent, "< 41 A1 A2", "< nothing", "< 41 A3",
          dci_send + "03", "< #4097 41 01 02", kDciSent, dci_send + "04", "< #4097 41 01 02",
          "< #4097 41 51 52", "< 41 A1", kDciSent, dci_send + "05", "< 41", kDciSent,
          // A client that is gone hears nothing more.
          dci_send + "7B", "> 0A 01 00 00 00", "< 8A E9 03 00 00", kDciSent, "< nothing"}},
        {R"("diag": {"streams": [{"event": "log", "bytes": "10", "every_ms": 250, "count": 3},
            {"event": "event", "size": 2}, {"event": "0x55", "after": "remote_mask", "bytes": "01"},
            {"event": "log", "after": "dci_register", "bytes": "FF"},
            {"event": "response", "after": 10}]})",
         {kOpen, kOpened, "> 02", "< 82 00 00 00 00 00 00", "< 55 01", kRegister, kRegistered, "< nothing",
          "> 08 01 00 00 00", "< 88 E9 03 00 00", "< 42 10", "< 43 01 02", "< nothing", "< 42 10",
          "> 0A 01 00 00 00", "< 8A E9 03 00 00", "< 40", "< nothing"}},
    });
}

TEST(HandsetDiag, FaultsSpoilEveryOp) {
    hold({
        {R"("faults": [
            {"road": "diag", "message": "remote_mask", "action": "payload", "bytes": "FF"},
            {"road": "diag", "message": 2, "action": "cut", "keep": 0},
            {"road": "diag", "message": "send", "action": "result", "result": -7},
            {"road": "diag", "message": "send", "action": "no_answer", "acts": true},
            {"road": "diag", "message": "dci_register", "action": "cut", "keep": 5},
            {"road": "diag", "message": "dci_register", "action": "late", "ms": 250},
            {"road": "diag", "message": "dci_release", "action": "close"}])",
         {kOpen, kOpened, "> 02", "< 82 00 00 00 00 FF", "> 02", "< 82", "> 04 00 00 00 00 7B",
          "< 84 F9 FF FF FF", "< nothing", "> 04 00 00 00 00 7B", "< 40 00 7B", "< nothing", kRegister,
          "< 85 E9 03 00 00 01", kRegister, "< nothing", "< 85 E9 03 00 00 02 00 00 00", "> 0A 01 00 00 00",
          "< closed"}},
        {R"("faults": [{"service": "extension", "message": 4, "action": "close"},
            {"road": "diag", "hits": 0, "skip": 1, "action": "no_answer"}])",
         {kOpen, kOpened, "> 02", "< nothing", "> 63", "< nothing"}},
    });
}

TEST(HandsetDiag, GoesAwayAndComesBack) {
    const TestFolder place;
    const RunningHandset handset(place, R"({"modem": {"restart_ms": 100}, "faults": [
        {"road": "diag", "message": "send", "action": "withdraw", "ms": 100}]})");
    const auto came_back = [&handset] {
        for (int i = 0; i < 500 && !std::filesystem::exists(handset.dir() + "/diag"); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return Client(handset.dir(), "diag").connected();
    };
    converse(handset, {kOpen, kOpened, "> 04 00 00 00 00 7B", "< closed"});
    EXPECT_FALSE(Client(handset.dir(), "diag").connected());
    EXPECT_TRUE(came_back());

    const Client survivor(handset.dir(), "diag");
    survivor.send({1});
    EXPECT_EQ(text_of(survivor.receive()), kOpened.substr(2));
    // A common request to restart, as the maintenance commands send it.
    const Bytes restart = parse_hex(
                              "01 04 00 04 00 00 00 02 04 00 14 00 00 00 10 14 00 02 00 00 00 00 00 00 00 "
                              "1F 00 00 00 04 00 00 00 00 10 00 00")
                              .value();
    EXPECT_TRUE(Client(handset.dir(), "qmi/65508").exchange(2, restart));
    EXPECT_EQ(text_of(survivor.receive()), "closed");
    EXPECT_TRUE(came_back());
    converse(handset, {"> 02", "< 82 FF FF FF FF", kOpen, kOpened});
}

TEST(HandsetDiag, TheWireLogShowsWhatPassed) {
    const TestFolder place;
    const RunningHandset handset(place,
                                 R"({"diag": {"streams": [{"event": 99, "after": "open", "bytes": "01"}]},
        "faults": [{"road": "diag", "message": "dci_send", "action": "no_answer"}]})");
    converse(handset, {kOpen, kOpened, "< 63 01", kRegister, kRegistered, "> 07 00", "< 87 EB 03 00 00",
                       "> 0B 05", "< 8B FF FF FF FF", "> 04 00 00 00 00 4B", kSent, "< 40 00 13 4B",
                       "> 09 01 00 00 00 7B 01", "< nothing"});
    std::string log;
    std::istringstream file(place.read("h/log/wire.log").value_or(""));
    for (std::string line; std::getline(file, line);) {
        // The end of the connection may be logged by now.
        if (line.find(" diag 1 ") != std::string::npos && line.find("closed") == std::string::npos &&
            line.find("connected pid=") == std::string::npos)
            log += line.substr(line.find(" diag 1 ") + 8) + "\n";
    }
    EXPECT_EQ(log,
              "-> open(1)\n"
              "<- open(1) result=1\n"
              "<- unknown(99) data=[01]\n"
              "-> dci_register(5) peripherals=2 processor=0\n"
              "<- dci_register(5) result=1001 client=1\n"
              "-> dci_support(7) malformed data=[00]\n"
              "<- dci_support(7) result=1003\n"
              "-> unknown(11) data=[05]\n"
              "<- unknown(11) result=-1\n"
              "-> send(4) processor=0 command=[4B]\n"
              "<- send(4) result=0\n"
              "<- response(64) processor=0 code=\"bad_command\" response=[13 4B]\n"
              "-> dci_send(9) client=1 code=\"loop_back\" command=[7B 01]\n"
              "<- none dci_send(9) fault=\"no_answer\"\n");
}

TEST(HandsetDiag, RefusesAProfileWithItsPlace) {
    const struct {
        const char* diag;
        const char* line;
    } rows[] = {
        {R"({"results": {"dci": 1}})",
         "p: /diag/results/dci: unknown key; known here: \"dci_register\", \"dci_release\", \"dci_send\", "
         "\"dci_signal\", \"dci_streams\", \"dci_support\", \"open\", \"remote_mask\", \"send\", "
         "\"switch_logging\""},
        {R"({"logs": [{"bytes": "00"}]})", "p: /diag/logs/0: the key \"code\" is missing"},
        {R"({"logs": [{"code": 4096, "bytes": "00", "record": {}}]})",
         "p: /diag/logs/0/record: the bytes are given already"},
        {R"({"logs": [{"code": 4096, "record": {"version": 5}}]})",
         "p: /diag/logs/0/record/version: no record has this version: 4, 0x30000, 0x30001, 0x30002"},
        {R"({"remote_mask": 65536})",
         "p: /diag/remote_mask: expected a whole number from 0 to 65535, found 65536"},
        {R"({"responses": [{"bytes": "00", "size": 1}]})",
         "p: /diag/responses/0/size: the bytes are given already"},
        {R"({"responses": [{"size": 212959}]})",
         "p: /diag/responses/0/size: expected a whole number from 0 to 212958, found 212959"},
        {R"({"responses": [{"size": 5, "pieces": [4096, 1]}]})",
         "p: /diag/responses/0/pieces: 4097 bytes together, but the response has 5"},
        {R"({"responses": [{"pieces": [212958, 1]}]})",
         "p: /diag/responses/0/pieces: more than 212958 bytes together"},
        {R"({"streams": [{"bytes": "00"}]})", "p: /diag/streams/0: the key \"event\" is missing"},
        {R"({"streams": [{"event": "logs"}]})",
         "p: /diag/streams/0/event: expected a whole number from 0 to 127 or one of \"response\", "
         "\"dci_response\", \"log\", \"event\", found \"logs\""},
        {R"({"streams": [{"event": 128}]})",
         "p: /diag/streams/0/event: expected a whole number from 0 to 127, found 128"},
        {R"({"streams": [{"event": "log", "after": "dci"}]})",
         "p: /diag/streams/0/after: expected a whole number from 1 to 10 or one of \"open\", "
         "\"remote_mask\", \"switch_logging\", \"send\", \"dci_register\", \"dci_signal\", \"dci_support\", "
         "\"dci_streams\", \"dci_send\", \"dci_release\", found \"dci\""},
        {R"({"streams": [{"event": "log", "after": 11}]})",
         "p: /diag/streams/0/after: expected a whole number from 1 to 10, found 11"},
    };
    for (const auto& row : rows) {
        try {
            handset::parse_profile(std::string(R"({"diag": )") + row.diag + "}", "p");
            ADD_FAILURE() << "accepted: " << row.diag;
        } catch (const handset::ProfileError& error) {
            EXPECT_STREQ(error.what(), row.line);
        }
    }
}

}  // namespace
}  // namespace handset_test

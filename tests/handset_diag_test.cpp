// The diag interface of the handset as its clients see it: bytes on its socket.
#include "handset_fixture.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <regex>
#include <sstream>
#include <vector>

#include "hex_text.h"

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

const std::map<std::string, std::string> kExchanges = {
    {"$open", "> 01 < 81 01 00 00 00 "},
    {"$register", "> 05 02 00 00 00 00 00 < 85 E9 03 00 00 01 00 00 00 "},
    {"$sent", "< 84 00 00 00 00 "},
    {"$dci_sent", "< 89 E9 03 00 00 "}};

// A conversation: "> bytes" are sent; "< bytes" must come, "< nothing", "< closed", or "< #size beginning" a
// packet of that size. The exchanges above have names.
void converse(const RunningHandset& handset, std::string text) {
    for (const auto& [name, exchange] : kExchanges) {
        for (size_t at = 0; (at = text.find(name, at)) != std::string::npos;)
            text.replace(at, name.size(), exchange);
    }
    text = std::regex_replace(text, std::regex("\\s+"), " ");
    const Client client(handset.dir(), "diag");
    const std::regex pattern("([<>]) ([^<>]*[^<> ])");
    auto left = std::count(text.begin(), text.end(), '<') + std::count(text.begin(), text.end(), '>');
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it, --left) {
        const std::string step = (*it)[2];
        SCOPED_TRACE(it->str() + " in " + text);
        if ((*it)[1] == ">") {
            client.send(parse_hex(step).value());
            continue;
        }
        const auto packet = client.receive(step == "nothing" ? kShortly : 5000);
        if (step[0] != '#') {
            ASSERT_EQ(text_of(packet), step);
            continue;
        }
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->size(), std::stoul(step.substr(1)));
        EXPECT_EQ(text_of(*packet).rfind(step.substr(step.find(' ') + 1), 0), 0U) << text_of(*packet);
    }
    EXPECT_EQ(left, 0) << "does not read";
}

struct Conversation {
    const char* profile;  // what stands between its braces
    const char* steps;
};

void hold(const std::vector<Conversation>& conversations) {
    for (const auto& row : conversations) {
        SCOPED_TRACE(row.profile);
        const TestFolder place;
        const RunningHandset handset(place, std::string("{") + row.profile + "}");
        converse(handset, row.steps);
    }
}

TEST(HandsetDiag, AnswersEveryOp) {
    hold({
        {R"("diag": {"remote_mask": 5})", R"(
        > 02 < 82 FF FF FF FF > 04 00 00 00 00 7B < 84 FF FF FF FF > 05 02 00 00 00 00 00
        < 85 EB 03 00 00 $open $open > 02 < 82 00 00 00 00 05 00 > 03 06 00 00 00 < 83 00 00 00 00
        > 03 06 00 00 < 83 FF FF FF FF > 0B < 8B FF FF FF FF > 00 < 80 FF FF FF FF > 04 00 00 00 00
        < 84 FF FF FF FF > 04 01 00 00 00 7B 01 $sent < 40 01 7B 01 > 04 02 00 00 00 7B < 84 FF FF FF FF
        > 04 03 00 00 00 7B $sent < 40 03 7B > 04 FF FF FF FF 7B < 84 FF FF FF FF > 07 02 00 00 00
        < 87 EB 03 00 00)"},
        {"", R"(
        $open $register > 05 02 00 00 00 00 00 < 85 E9 03 00 00 02 00 00 00 > 06 01 00 00 00 40 00 00 00
        < 86 E9 03 00 00 > 06 03 00 00 00 40 00 00 00 < 86 EB 03 00 00 > 07 00 00 00 00
        < 87 E9 03 00 00 02 00 > 08 02 00 00 00 < 88 E9 03 00 00 > 08 00 00 00 00 < 88 EB 03 00 00
        > 09 02 00 00 00 7B 05 $dci_sent < 41 7B 05 > 0A 02 00 00 00 < 8A E9 03 00 00 > 0A 02 00 00 00
        < 8A EB 03 00 00 > 09 02 00 00 00 7B 05 < 89 EB 03 00 00 > 09 01 00 00 00 7B 06 $dci_sent
        < 41 7B 06)"},
        {R"("diag": {"mpss_up": false, "results": {"dci_streams": -5}})",
         R"($open $register > 07 00 00 00 00 < 87 E9 03 00 00 00 00 > 08 01 00 00 00 < 88 FB FF FF FF)"},
        {R"("diag": {"results": {"open": 0}})",
         R"(> 01 < 81 00 00 00 00 > 02 < 82 FF FF FF FF > 01 < 81 00 00 00 00)"},
    });
}

TEST(HandsetDiag, ThePeripheralKnowsTheStandardCommands) {
    // The version: "Mar 14 2024" "09:26:53" "Mar 15 2024" "12:00:00" "vxk.sim ", then eight bytes of numbers.
    hold({{"", R"(
        $open > 04 00 00 00 00 00 $sent
        < 40 00 00 4D 61 72 20 31 34 20 32 30 32 34 30 39 3A 32 36 3A 35 33 4D 61 72 20 31 35 20 32 30
        32 34 31 32 3A 30 30 3A 30 30 76 78 6B 2E 73 69 6D 20 2A 06 A5 00 01 02 01 00
        > 04 00 00 00 00 7C $sent
        < #62 40 00 7C 02 00 00 02 1B 0A 00 A5 0F 00 00 56 58 4B 2E > 04 00 00 00 00 4B 12 00 $sent
        < 40 00 13 4B 12 00)"}});

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
    hold({
        {R"("diag": {"responses": [
            {"command": "26 01", "bytes": "AA BB"}, {"command": "26", "size": 0, "processor": 7},
            {"command": "4B", "silent": true}, {"command": "7C", "size": 10241},
            {"command": "7D", "bytes": "01", "delay_ms": 250}, {"bytes": "FE", "before_answer": true}]})",
         R"(
        $open > 04 00 00 00 00 26 01 02 $sent < 40 00 AA BB > 04 00 00 00 00 26 $sent < 40 07
        > 04 00 00 00 00 4B $sent < nothing > 04 00 00 00 00 7C $sent < #10243 40 00 01 02 03
        > 04 00 00 00 00 00 < 40 00 FE $sent > 04 00 00 00 00 7D $sent < nothing < 40 00 01)"},
        {R"("diag": {"before_answer": true, "delay_ms": 250, "responses": [
            {"command": "01", "pieces": [4096, 0, 3]}, {"command": "02", "pieces": [2, 1], "bytes": "A1 A2 A3",
             "before_answer": false, "delay_ms": 0, "gap_ms": 250},
            {"command": "03", "size": 4096}, {"command": "04", "size": 8193}, {"command": "05", "size": 0}]})",
         R"(
        $open $register > 09 01 00 00 00 01 < nothing < #4097 41 01 02 < 41 < 41 51 52 53 $dci_sent
        > 09 01 00 00 00 02 $dci_sent < 41 A1 A2 < nothing < 41 A3 > 09 01 00 00 00 03 < #4097 41 01 02
        $dci_sent > 09 01 00 00 00 04 < #4097 41 01 02 < #4097 41 51 52 < 41 A1 $dci_sent
        > 09 01 00 00 00 05 < 41 $dci_sent > 09 01 00 00 00 7B > 0A 01 00 00 00 < 8A E9 03 00 00
        $dci_sent < nothing)"},
        {R"("diag": {"streams": [{"event": "log", "bytes": "10", "every_ms": 250, "count": 3},
            {"event": "event", "size": 2}, {"event": "0x55", "after": "remote_mask", "bytes": "01"},
            {"event": "log", "after": "dci_register", "bytes": "FF"},
            {"event": "response", "after": 10}]})",
         R"(
        $open > 02 < 82 00 00 00 00 00 00 < 55 01 $register < nothing > 08 01 00 00 00 < 88 E9 03 00 00
        < 42 10 < 43 01 02 < nothing < 42 10 > 0A 01 00 00 00 < 8A E9 03 00 00 < 40 < nothing)"},
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
            {"road": "diag", "message": "dci_register", "action": "late", "ms": 1000},
            {"road": "diag", "message": "dci_release", "action": "close"}])",
         R"(
        $open > 02 < 82 00 00 00 00 FF > 02 < 82 > 04 00 00 00 00 7B < 84 F9 FF FF FF < nothing
        > 04 00 00 00 00 7B < 40 00 7B < nothing > 05 02 00 00 00 00 00 < 85 E9 03 00 00 01
        > 05 02 00 00 00 00 00 < nothing < 85 E9 03 00 00 02 00 00 00 > 0A 01 00 00 00 < closed)"},
        {R"("faults": [{"service": "extension", "message": 4, "action": "close"},
            {"road": "diag", "hits": 0, "skip": 1, "action": "no_answer"}])",
         R"($open > 02 < nothing > 63 < nothing)"},
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
    converse(handset, R"($open > 04 00 00 00 00 7B < closed)");
    EXPECT_FALSE(Client(handset.dir(), "diag").connected());
    EXPECT_TRUE(came_back());

    const Client survivor(handset.dir(), "diag");
    survivor.send({1});
    EXPECT_EQ(text_of(survivor.receive()), "81 01 00 00 00");
    // A common request to restart, as the maintenance commands send it.
    const Bytes restart = parse_hex(
                              "01 04 00 04 00 00 00 02 04 00 14 00 00 00 10 14 00 02 00 00 00 00 00 00 00 "
                              "1F 00 00 00 04 00 00 00 00 10 00 00")
                              .value();
    EXPECT_TRUE(Client(handset.dir(), "qmi/65508").exchange(2, restart));
    EXPECT_EQ(text_of(survivor.receive()), "closed");
    EXPECT_TRUE(came_back());
    converse(handset, R"(> 02 < 82 FF FF FF FF $open)");
}

TEST(HandsetDiag, TheWireLogShowsWhatPassed) {
    const TestFolder place;
    const RunningHandset handset(place,
                                 R"({"diag": {"streams": [{"event": 99, "after": "open", "bytes": "01"}]},
        "faults": [{"road": "diag", "message": "dci_send", "action": "no_answer"}]})");
    converse(handset, R"(
        $open < 63 01 $register > 07 00 < 87 EB 03 00 00 > 0B 05 < 8B FF FF FF FF > 04 00 00 00 00 4B
        $sent < 40 00 13 4B > 09 01 00 00 00 7B 01 < nothing)");
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

}  // namespace
}  // namespace handset_test

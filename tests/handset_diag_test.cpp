// The diag interface of the handset as clients see it that are not the tool: bytes on its socket.
#include "handset_fixture.h"

namespace handset_test {
namespace {

constexpr int kShortly = 60;  // ms in which nothing may come

// A conversation: "> bytes" are sent, "< bytes" must come, "< nothing" for a while. `$open`, `$register`,
// `$sent` and
// `$dci_sent` are usual parts of one.
void converse(const Client& client, const std::string& script) {
    const std::string text =
        with_names(script, {{"open", "> 01 < 81 01 00 00 00"},
                            {"register", "> 05 02 00 00 00 00 00 < 85 E9 03 00 00 01 00 00 00"},
                            {"sent", "< 84 00 00 00 00"},
                            {"dci_sent", "< 89 E9 03 00 00"}});
    const std::regex step("([<>]) ([^<>]*[^<>\\s])");
    for (std::sregex_iterator it(text.begin(), text.end(), step), end; it != end; ++it) {
        SCOPED_TRACE(it->str() + " in " + text);
        const std::string bytes = (*it)[2];
        if ((*it)[1] == ">")
            client.send(hex(bytes));
        else if (bytes == "nothing")
            ASSERT_FALSE(client.receive(kShortly));
        else
            ASSERT_EQ(text_of(client.receive().value_or(wire::Bytes())), text_of(hex(bytes)));
    }
}

TEST(HandsetDiag, KeepsToTheConversation) {
    const struct {
        const char* profile;  // what stands between its braces
        const char* text;
    } conversations[] = {
        // The session: every op of it, before it is open and behind that.
        {R"("diag": {"remote_mask": 5})", R"(
            > 02 < 82 FF FF FF FF > 04 00 00 00 00 7B < 84 FF FF FF FF > 05 02 00 00 00 00 00
            < 85 EB 03 00 00 $open $open > 02 < 82 00 00 00 00 05 00 > 03 06 00 00 00 < 83 00 00 00 00
            > 03 06 00 00 < 83 FF FF FF FF > 0B < 8B FF FF FF FF > 00 < 80 FF FF FF FF > 04 00 00 00 00
            < 84 FF FF FF FF > 04 01 00 00 00 7B 01 $sent < 40 01 7B 01 > 04 02 00 00 00 7B < 84 FF FF FF FF
            > 04 03 00 00 00 7B $sent < 40 03 7B > 04 FF FF FF FF 7B < 84 FF FF FF FF > 07 02 00 00 00
            < 87 EB 03 00 00)"},
        // DCI: two clients of one session.
        {"", R"(
            $open $register > 05 02 00 00 00 00 00 < 85 E9 03 00 00 02 00 00 00 > 06 01 00 00 00 40 00 00 00
            < 86 E9 03 00 00 > 06 03 00 00 00 40 00 00 00 < 86 EB 03 00 00 > 07 00 00 00 00
            < 87 E9 03 00 00 02 00 > 08 02 00 00 00 < 88 E9 03 00 00 > 08 00 00 00 00 < 88 EB 03 00 00
            > 09 02 00 00 00 7B 05 $dci_sent < 41 7B 05 > 0A 02 00 00 00 < 8A E9 03 00 00 > 0A 02 00 00 00
            < 8A EB 03 00 00 > 09 02 00 00 00 7B 05 < 89 EB 03 00 00 > 09 01 00 00 00 7B 06 $dci_sent
            < 41 7B 06)"},
        {R"("diag": {"results": {"open": 0}})",
         "> 01 < 81 00 00 00 00 > 02 < 82 FF FF FF FF > 01 < 81 00 00 00 00"},
        // Responses in their time: late, in pieces, and to a client that has gone meanwhile.
        {R"("diag": {"before_answer": true, "delay_ms": 1000, "responses": [
            {"command": "01", "pieces": [2, 0, 3]}, {"command": "02", "pieces": [2, 1], "bytes": "A1 A2 A3",
             "before_answer": false, "delay_ms": 0, "gap_ms": 1000}, {"command": "05", "size": 0}]})",
         R"(
            $open $register > 09 01 00 00 00 01 < nothing < 41 01 02 < 41 < 41 03 04 05 $dci_sent
            > 09 01 00 00 00 02 $dci_sent < 41 A1 A2 < nothing < 41 A3 > 09 01 00 00 00 05 < 41 $dci_sent
            > 09 01 00 00 00 7B > 0A 01 00 00 00 < 8A E9 03 00 00 $dci_sent < nothing)"},
        // Streams: of a log and an event only a listener hears.
        {R"("diag": {"streams": [{"event": "log", "bytes": "10", "every_ms": 1000, "count": 2},
            {"event": "event", "size": 2}, {"event": "0x55", "after": "remote_mask", "bytes": "01"},
            {"event": "log", "after": "dci_register", "bytes": "FF"}, {"event": "response", "after": 10}]})",
         R"(
            $open > 02 < 82 00 00 00 00 00 00 < 55 01 $register < nothing > 08 01 00 00 00 < 88 E9 03 00 00
            < 42 10 < 43 01 02 < nothing < 42 10 > 0A 01 00 00 00 < 8A E9 03 00 00 < 40 < nothing)"},
    };
    for (const auto& row : conversations) {
        const TestFolder place;
        const RunningHandset handset(place, std::string("{") + row.profile + "}");
        converse(Client(handset.dir(), "diag"), row.text);
    }
}

TEST(HandsetDiag, TellsTheTimeAndLogsWhatIsOdd) {
    const TestFolder place;
    const RunningHandset handset(place);
    const Client client(handset.dir(), "diag");
    converse(client, "$open > 0B 05 < 8B FF FF FF FF > 07 00 < 87 EB 03 00 00 > 04 00 00 00 00 1D $sent");
    const wire::Bytes event = client.receive().value_or(wire::Bytes());
    ASSERT_EQ(event.size(), 11U);
    wire::Reader reader({event.data() + 3, 8});
    const uint64_t seconds = (reader.u64() >> 16) / 800 + 315'964'800;
    EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(time(nullptr)), 5);
    const std::string log = place.read("h/log/wire.log").value_or("");
    EXPECT_NE(log.find("-> unknown(11) data=[05]\n"), std::string::npos);
    EXPECT_NE(log.find("-> dci_support(7) malformed data=[00]\n"), std::string::npos);
}

}  // namespace
}  // namespace handset_test

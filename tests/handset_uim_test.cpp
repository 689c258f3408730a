// The UIM service of the handset, byte by byte, and what of it outlives a restart.
#include <algorithm>
#include <chrono>
#include <regex>
#include <thread>

#include "uim_client.h"

namespace handset_test {
namespace {

using wire::Bytes;

const std::string kIsdR = "A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00 ";
const std::string kOpenIsdR = "01 01 00 02 10 11 00 10 " + kIsdR + "11 01 00 01";
const std::string kReset = "80 E2 91 00 07 BF 34 04 82 02 05 E0 00";

std::string opened(uint8_t channel) {
    return kOk + "10 01 00 " + text_of({channel}) + " 11 02 00 90 00 12 15 00 14 6F 12 84 10 " + kIsdR;
}

class HandsetUimTest : public testing::Test {
protected:
    /// Requests and their answers, "message request > answer" parted by semicolons and line ends; "59:1" is a
    /// command on channel 1. An answer is "ok" or "no" and the error, and what stands behind the result, or
    /// the response to the command.
    static void play(UimClient& client, std::string text) {
        for (const auto& [name, bytes] : {std::pair<const char*, std::string>{"\\$open\\b", kOpenIsdR},
                                          {"\\$reset", kReset},
                                          {"\\$isdr", kIsdR},
                                          {"ok \\$opened1", opened(1)},
                                          {"ok \\$opened2", opened(2)}})
            text = std::regex_replace(text, std::regex(name), bytes);
        const std::regex row("(\\d+)(?::(\\d+))? ?([^>;\n]*)> (ok ?|no (\\d+) ?|)([^;\n]*)");
        auto left = std::count(text.begin(), text.end(), '>');
        for (std::sregex_iterator it(text.begin(), text.end(), row), end; it != end; ++it, --left) {
            const auto& m = *it;
            const auto number = [&m](size_t group) { return static_cast<uint8_t>(std::stoi(m[group])); };
            const bool is_command = m[2].matched;
            const std::string error = m[5].matched ? refused(number(5)) : m[4].length() != 0 ? kOk : "";
            client.expect(number(1), is_command ? apdu(number(2), m[3]) : m[3].str(),
                          is_command && error.empty() ? response(m[6]) : error + m[6].str());
        }
        EXPECT_EQ(left, 0) << "does not read";
    }

    /// One t/l/v common request with a value; the modem's result.
    static int32_t common(const RunningHandset& handset, uint32_t code, const Bytes& value) {
        Client client(handset.dir(), "qmi/65508");
        wire::Writer payload;
        payload.u32(2).u32(0).u32(code).u32(static_cast<uint32_t>(value.size())).bytes(value);
        wire::Writer body;
        body.u8(1).u16(4).u32(4).u8(2).u16(4).u32(static_cast<uint32_t>(payload.size()));
        body.tlv(0x10, payload.data());
        const Bytes answer = client.exchange(2, body.data()).value_or(Bytes());
        wire::Reader reader(wire::find_tlv(answer, 0x10).value_or(wire::View()));
        reader.u32();
        return reader.i32();
    }

    static bool published(const RunningHandset& handset) {
        for (int i = 0; i < 500; ++i) {
            if (Client(handset.dir(), "qmi/11").connected())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    TestFolder place_;
};

// Worked out by hand: what any client of the service reads.
TEST_F(HandsetUimTest, CardStatusOfTwoCardsWithOneApplicationEach) {
    const std::string card =
        "01 00 00 00 00 01 "  // present; UPIN state, retries, UPUK retries; no error; one application
        "02 07 02 00 00 00 "  // USIM, ready; personalisation ready, feature, retries, unblock retries
        "10 A0 00 00 00 87 10 02 FF FF FF FF 89 00 00 01 00 "
        "00 03 03 0A 01 03 0A ";  // PIN1 counts, disabled, 3 and 10 retries; PIN2 not verified, 3 and 10
    const std::string status =
        "00 00 "  // primary GW: slot 1, application 1
        "FF FF "  // no primary 1X
        "00 01 "  // secondary GW: slot 2, application 1
        "FF FF "
        "02 " +
        card + card;
    const std::string size = "51 00 ";  // 8 + 1 + 2 * (6 + 6 + 17 + 7)
    const RunningHandset handset(place_);
    UimClient client(handset);
    client.expect(47, "10 01 00 01", kOk + "10 " + size + status + "15 " + size + status);
    client.expect(47, "", kOk + "10 " + size + status);
    client.expect(47, "10 02 00 01 00", refused(1));
}

TEST_F(HandsetUimTest, ACardStatusTellsAbsenceErrorAndPower) {
    const RunningHandset handset(place_, R"({"euicc": {"profiles": []}, "cards": {"slots": [
        {"present": false}, {}, {"error": 4}]}})");
    UimClient client(handset);
    const std::string head = kOk + "10 1B 00 FF FF FF FF FF FF FF FF 03 00 00 00 00 00 00 ";
    const std::string dead = "02 00 00 00 04 00";
    client.expect(47, "", head + "01 00 00 00 00 00 " + dead);
    client.expect(48, "01 01 00 02", kOk);
    client.expect(48, "01 01 00 01", kOk);
    client.expect(47, "", head + "02 00 00 00 01 00 " + dead);
}

TEST_F(HandsetUimTest, ChannelsAndCommands) {
    const RunningHandset handset(place_);
    UimClient client(handset);
    play(client, R"(
        66 $open > ok $opened1; 66 $open > ok $opened2; 66 01 01 00 02 > ok 10 01 00 03 11 02 00 90 00
        66 $open > no 3 11 02 00 6A 81; 63 01 01 00 02 11 01 00 02 13 01 00 01 > ok 11 02 00 90 00
        63 01 01 00 02 11 01 00 02 13 01 00 01 > no 48; 63 01 01 00 02 11 01 00 00 > no 48
        63 01 01 00 02 11 01 00 04 > no 48; 63 01 01 00 02 > no 17
        66 01 01 00 02 10 05 00 04 A0 00 00 05 > no 16 11 02 00 6A 82
        66 01 01 00 01 10 11 00 10 $isdr > no 16 11 02 00 6A 82
        66 01 01 00 02 10 06 00 05 A0 00 00 05 59 > ok 10 01 00 02 11 02 00 90 00
        59:2 80 E2 91 00 07 BF 34 04 82 02 05 60 00 > BF 34 03 80 01 01 90 00
        59:2 $reset > BF 34 03 80 01 00 90 00; 59:1 $reset > BF 34 03 80 01 01 90 00
        59:1 81 E2 91 00 07 BF 34 04 82 02 05 E0 > BF 34 03 80 01 01 90 00; 59:4 $reset > no 48
        59:255 $reset > no 48; 59:0 $reset > 6D 00; 59:3 $reset > 6D 00
        59:1 00 E2 91 00 07 BF 34 04 82 02 05 E0 00 > 6D 00; 59:1 80 CA 00 5A 00 > 6D 00
        59:1 80 E2 91 00 03 BF 5F 00 00 > 6A 88; 59:1 80 E2 11 00 03 BF 34 04 00 > 90 00
        59:1 80 E2 91 01 04 82 02 05 E0 00 > BF 34 03 80 01 01 90 00
        59:1 90 E2 91 00 07 BF 34 04 82 02 05 E0 00 > 6E 00; 59:0 FF FF FF FF > 6E 00
        59:1 80 E2 91 > 67 00; 59:1 80 E2 91 00 > 67 00; 59:1 80 E2 91 00 08 BF 34 04 82 02 05 E0 > 67 00
        59:1 80 E2 91 00 07 BF 34 04 82 02 05 E0 00 00 > 67 00
        59:1 80 E2 91 00 06 BF 34 04 82 02 05 00 > 67 00; 59:1 > 67 00; 48 01 01 00 02 > ok
        59:1 $reset > no 52; 66 $open > no 52; 101 01 01 00 02 > no 74
        49 01 01 00 02 10 01 00 01 11 04 00 00 00 00 00 > ok; 59:1 $reset > no 48; 66 $open > ok $opened1
        101 01 01 00 02 > ok 10 11 00 10 89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23
        101 01 01 00 01 > no 94)");
}

TEST_F(HandsetUimTest, RefusesWhatIsMissingOrLies) {
    const RunningHandset handset(place_);
    UimClient client(handset);
    play(client, R"(
        48 > no 17; 101 01 00 00 > no 17; 101 01 04 00 02 00 00 00 > no 1; 49 01 01 00 00 > no 48
        66 01 01 00 03 > no 48; 59 01 01 00 02 > no 17; 59 01 01 00 02 02 03 00 02 00 80 > no 1
        59 01 01 00 02 02 03 00 00 00 80 > no 1; 59 01 01 00 02 02 01 00 00 > no 1
        66 01 01 00 02 10 02 00 02 A0 > no 1; 66 01 01 00 02 10 22 00 21 $isdr $isdr 00 > no 1
        66 01 01 00 02 11 02 00 01 00 > no 1; 63 01 01 00 02 11 02 00 01 00 > no 1; 97 01 01 00 02 > no 71
        59 01 01 00 02 02 FF > no 1)");
    client.expect(59, apdu(0, kReset) + " 10 02 00 01 00", refused(1));
}

TEST_F(HandsetUimTest, WiringAndProfilesOutliveEveryRestartAndChannelsNone) {
    const Bytes euicc(8, 0);
    const Bytes card = {1, 0, 0, 0, 0, 0, 0, 0};
    const std::string no_isd_r = refused(16) + "11 02 00 6A 82";
    const std::string nothing = response("BF 34 03 80 01 01 90 00");
    const char profile[] = R"({"modem": {"restart_ms": 20}})";
    {
        RunningHandset handset(place_, profile);
        UimClient client(handset);
        client.expect(66, kOpenIsdR, opened(1));
        client.expect(59, apdu(1, kReset), response("BF 34 03 80 01 00 90 00"));
        EXPECT_EQ(common(handset, 84, {0}), -22);
        EXPECT_EQ(common(handset, 84, {2, 0, 0, 0, 0, 0, 0, 0}), -22);
        EXPECT_EQ(common(handset, 84, euicc), 0);
        client.expect(59, apdu(1, kReset), nothing);
        EXPECT_EQ(common(handset, 84, card), 0);
        client.expect(66, kOpenIsdR, no_isd_r);
        client.expect(101, "01 01 00 02", refused(94));
        client.expect(48, "01 01 00 02", kOk);
        EXPECT_EQ(common(handset, 80, {1, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0}), 0);
        EXPECT_EQ(common(handset, 31, {0, 0x10, 0, 0}), 0);
        EXPECT_TRUE(client.receive()->empty());
        ASSERT_TRUE(published(handset));
        UimClient later(handset);
        later.expect(66, "01 01 00 01", kOk + "10 01 00 01 11 02 00 90 00");
        later.expect(66, kOpenIsdR, no_isd_r);
        EXPECT_EQ(common(handset, 84, euicc), 0);
        later.expect(66, kOpenIsdR, opened(1));
        handset.stop(SIGKILL);
    }
    {
        const RunningHandset handset(place_, profile);
        UimClient client(handset);
        client.expect(66, kOpenIsdR, opened(1));
        client.expect(59, apdu(1, kReset), nothing);
        EXPECT_EQ(common(handset, 84, card), 0);
    }
    const RunningHandset handset(place_, profile);
    UimClient(handset).expect(66, kOpenIsdR, no_isd_r);
}

TEST_F(HandsetUimTest, APulledCardLosesItsChannelsAndTheEuiccDoesNot) {
    const RunningHandset handset(place_);
    UimClient client(handset);
    client.expect(66, kOpenIsdR, opened(1));
    client.expect(66, "01 01 00 01", kOk + "10 01 00 01 11 02 00 90 00");
    for (const uint8_t slot : {uint8_t{0}, uint8_t{1}}) {
        EXPECT_EQ(common(handset, 57, {slot, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}), 0);
        EXPECT_EQ(common(handset, 57, {slot, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}), 0);
    }
    client.expect(63, "01 01 00 01 11 01 00 01", refused(48));
    client.expect(63, "01 01 00 02 11 01 00 01", kOk + "11 02 00 90 00");
}

TEST_F(HandsetUimTest, TheEidComesAtItsTime) {
    using Clock = std::chrono::steady_clock;
    const RunningHandset handset(place_, R"({"euicc": {"eid": "12 34", "eid_ms": 200}})");
    UimClient client(handset);
    const auto start = Clock::now();
    client.expect(49, "01 01 00 02", kOk);
    std::string answer;
    do
        answer = text_of(client.exchange(101, hex("01 01 00 02")).value_or(Bytes()));
    while (answer == normal(refused(74)) && Clock::now() < start + std::chrono::seconds(5));
    EXPECT_EQ(answer, normal(kOk + "10 03 00 02 12 34"));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(200));
}

TEST_F(HandsetUimTest, IndicatesBeforeItAnswers) {
    const RunningHandset handset(place_, R"({"uim": {"indications": [
        {"before": 48}, {"before": 48, "id": 50, "tlvs": "FF"}]}})");
    const UimClient other(handset);
    UimClient client(handset);
    client.send(wire::encode({wire::kQmiRequest, 7, 48, hex("01 01 00 02")}));
    for (const char* packet : {"04 00 00 61 00 0E 00 01 04 00 00 00 00 00 02 04 00 00 00 00 00",
                               "04 00 00 32 00 01 00 FF", "02 07 00 30 00 07 00 02 04 00 00 00 00 00"}) {
        EXPECT_EQ(text_of(client.receive().value_or(Bytes())), normal(packet));
        if (packet[1] == '4') {
            EXPECT_EQ(text_of(other.receive().value_or(Bytes())), normal(packet));
        }
    }
}

}  // namespace
}  // namespace handset_test

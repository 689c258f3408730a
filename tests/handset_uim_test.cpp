// The UIM service of the handset, byte by byte, and what of it outlives a restart.
#include <chrono>
#include <thread>

#include "profile.h"
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
    const std::string done = response("BF 34 03 80 01 00 90 00");
    const std::string nothing = response("BF 34 03 80 01 01 90 00");
    const std::string keep_profiles = "80 E2 91 00 07 BF 34 04 82 02 05 60 00";
    const Step steps[] = {
        {66, kOpenIsdR, opened(1)},
        {66, kOpenIsdR, opened(2)},
        {66, "01 01 00 02", kOk + "10 01 00 03 11 02 00 90 00"},
        {66, kOpenIsdR, refused(3) + "11 02 00 6A 81"},
        {63, "01 01 00 02 11 01 00 02 13 01 00 01", kOk + "11 02 00 90 00"},
        {63, "01 01 00 02 11 01 00 02 13 01 00 01", refused(48)},
        {63, "01 01 00 02 11 01 00 00", refused(48)},
        {63, "01 01 00 02 11 01 00 04", refused(48)},
        {63, "01 01 00 02", refused(17)},
        {66, "01 01 00 02 10 05 00 04 A0 00 00 05", refused(16) + "11 02 00 6A 82"},
        {66, "01 01 00 01 10 11 00 10 " + kIsdR, refused(16) + "11 02 00 6A 82"},
        {66, "01 01 00 02 10 06 00 05 A0 00 00 05 59", kOk + "10 01 00 02 11 02 00 90 00"},

        {59, apdu(2, keep_profiles), nothing},
        {59, apdu(2, kReset), done},
        {59, apdu(1, kReset), nothing},
        {59, apdu(1, "81 E2 91 00 07 BF 34 04 82 02 05 E0"), nothing},
        {59, apdu(4, kReset), refused(48)},
        {59, apdu(255, kReset), refused(48)},
        {59, apdu(0, kReset), response("6D 00")},
        {59, apdu(3, kReset), response("6D 00")},
        {59, apdu(1, "00 E2 91 00 07 BF 34 04 82 02 05 E0 00"), response("6D 00")},
        {59, apdu(1, "80 CA 00 5A 00"), response("6D 00")},
        {59, apdu(1, "80 E2 91 00 03 BF 5F 00 00"), response("6A 88")},
        {59, apdu(1, "80 E2 11 00 03 BF 34 04 00"), response("90 00")},
        {59, apdu(1, "80 E2 91 01 04 82 02 05 E0 00"), nothing},
        {59, apdu(1, "90 E2 91 00 07 BF 34 04 82 02 05 E0 00"), response("6E 00")},
        {59, apdu(0, "FF FF FF FF"), response("6E 00")},
        {59, apdu(1, "80 E2 91"), response("67 00")},
        {59, apdu(1, "80 E2 91 00"), response("67 00")},
        {59, apdu(1, "80 E2 91 00 08 BF 34 04 82 02 05 E0"), response("67 00")},
        {59, apdu(1, "80 E2 91 00 07 BF 34 04 82 02 05 E0 00 00"), response("67 00")},
        {59, apdu(1, "80 E2 91 00 06 BF 34 04 82 02 05 00"), response("67 00")},
        {59, apdu(1, ""), response("67 00")},

        {48, "01 01 00 02", kOk},
        {59, apdu(1, kReset), refused(52)},
        {66, kOpenIsdR, refused(52)},
        {101, "01 01 00 02", refused(74)},
        {49, "01 01 00 02 10 01 00 01 11 04 00 00 00 00 00", kOk},
        {59, apdu(1, kReset), refused(48)},
        {66, kOpenIsdR, opened(1)},
        {101, "01 01 00 02", kOk + "10 11 00 10 89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23"},
        {101, "01 01 00 01", refused(94)},
    };
    const RunningHandset handset(place_);
    UimClient client(handset);
    for (const Step& step : steps)
        client.expect(step.message, step.request, step.answer);
}

TEST_F(HandsetUimTest, RefusesWhatIsMissingOrLies) {
    const Step steps[] = {
        {48, "", refused(17)},
        {101, "01 00 00", refused(17)},
        {101, "01 04 00 02 00 00 00", refused(1)},
        {49, "01 01 00 00", refused(48)},
        {66, "01 01 00 03", refused(48)},
        {59, "01 01 00 02", refused(17)},
        {59, "01 01 00 02 02 03 00 02 00 80", refused(1)},
        {59, "01 01 00 02 02 03 00 00 00 80", refused(1)},
        {59, "01 01 00 02 02 01 00 00", refused(1)},
        {59, apdu(0, kReset) + " 10 02 00 01 00", refused(1)},
        {66, "01 01 00 02 10 02 00 02 A0", refused(1)},
        {66, "01 01 00 02 10 22 00 21 " + kIsdR + kIsdR + "00", refused(1)},
        {66, "01 01 00 02 11 02 00 01 00", refused(1)},
        {63, "01 01 00 02 11 02 00 01 00", refused(1)},
        {97, "01 01 00 02", refused(71)},
        {59, "01 01 00 02 02 FF", refused(1)},
    };
    const RunningHandset handset(place_);
    UimClient client(handset);
    for (const Step& step : steps)
        client.expect(step.message, step.request, step.answer);
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

TEST_F(HandsetUimTest, RefusesAProfileWithItsPlace) {
    const struct {
        const char* text;
        const char* line;
    } rows[] = {
        {R"({"euicc": {"profiles": ["890010123456789012x"]}})",
         "p: /euicc/profiles: \"890010123456789012x\" is not an ICCID of 18 to 20 digits"},
        {R"({"euicc": {"eid": "8"}})",
         "p: /euicc/eid: expected at most 255 bytes as hexadecimal pairs (\"01 02 FF\"), found \"8\""},
        {R"({"uim": {"indications": [{}]}})", "p: /uim/indications/0: the key \"before\" is missing"},
        {R"({"euicc": {"profiles": ["8900101234567890123", {"iccid": "8900101234567890123"}]}})",
         "p: /euicc/profiles: the ICCID \"8900101234567890123\" stands twice"},
        {R"({"euicc": {"profiles": [7]}})", "p: /euicc/profiles/0: expected a text or an object, found 7"},
        {R"({"cards": {"slots": [{"files": {"3F00/2FE2/1": "00"}}]}})",
         "p: /cards/slots/0/files/3F00~12FE2~11: no place for a file (\"3F00/2FE2\", \"3F00/7FFF/6F46\")"},
        {R"({"cards": {"slots": [{"pin": "123"}]}})",
         "p: /cards/slots/0/pin: \"123\" is not a code of 4 to 8 digits"},
        {R"({"cards": {"slots": [{"error": 256}]}})",
         "p: /cards/slots/0/error: expected a whole number from 0 to 255, found 256"},
    };
    for (const auto& row : rows) {
        try {
            handset::parse_profile(row.text, "p");
            ADD_FAILURE() << "accepted: " << row.text;
        } catch (const handset::ProfileError& error) {
            EXPECT_STREQ(error.what(), row.line);
        }
    }
}

}  // namespace
}  // namespace handset_test

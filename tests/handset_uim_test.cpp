// The UIM service of the handset, byte by byte, and what of it outlives a restart.
#include "handset_fixture.h"

namespace handset_test {
namespace {

const Names kNames = {
    {"isdr", "A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00"},
    {"open", "66 01 01 00 02 10 11 00 10 A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00 11 01 00 01"},
    {"opened", "11 02 00 90 00 12 15 00 14 6F 12 84 10 A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00"},
    {"no_isdr", "no 16 11 02 00 6A 82"},
    {"reset", "80 E2 91 00 07 BF 34 04 82 02 05 E0 00"},
    {"deleted", "BF 34 03 80 01 00 90 00"},
    {"nothing", "BF 34 03 80 01 01 90 00"},
};

class HandsetUimTest : public testing::Test {
protected:
    /// Plays a script on a connection of its own.
    static void play(const RunningHandset& handset, const std::string& script) {
        QmiClient(handset, 11).play(script, kNames);
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
        "51 00 "  // 8 + 1 + 2 * (6 + 6 + 17 + 7)
        "00 00 "  // primary GW: slot 1, application 1
        "FF FF "  // no primary 1X
        "00 01 "  // secondary GW: slot 2, application 1
        "FF FF 02 " +
        card + card;
    const RunningHandset handset(place_);
    QmiClient(handset, 11)
        .play("47 10 01 00 01 > ok 10 $status 15 $status; 47 > ok 10 $status", {{"status", status}});
}

TEST_F(HandsetUimTest, CardStatusTellsAbsenceErrorAndPower) {
    const RunningHandset handset(place_, R"({"euicc": {"profiles": []}, "cards": {"slots": [
        {"present": false}, {}, {"error": 4}]}})");
    QmiClient(handset, 11)
        .play(
            R"(47 > ok $head 01 00 00 00 00 00 $dead; 48 01 01 00 02 > ok; 48 01 01 00 01 > ok
           47 > ok $head 02 00 00 00 01 00 $dead)",
            {{"head", "10 1B 00 FF FF FF FF FF FF FF FF 03 00 00 00 00 00 00"},
             {"dead", "02 00 00 00 04 00"}});
}

TEST_F(HandsetUimTest, ChannelsAndCommands) {
    const RunningHandset handset(place_, R"({"euicc": {"eid_ms": 60000}})");
    play(handset, R"(
        $open > ok 10 01 00 01 $opened; $open > ok 10 01 00 02 $opened
        66 01 01 00 02 > ok 10 01 00 03 11 02 00 90 00
        $open > no 3 11 02 00 6A 81; 63 01 01 00 02 11 01 00 02 13 01 00 01 > ok 11 02 00 90 00
        63 01 01 00 02 11 01 00 02 13 01 00 01 > no 48; 63 01 01 00 02 11 01 00 00 > no 48
        63 01 01 00 02 11 01 00 04 > no 48; 63 01 01 00 02 > no 17
        66 01 01 00 02 10 05 00 04 A0 00 00 05 > $no_isdr; 66 01 01 00 01 10 11 00 10 $isdr > $no_isdr
        66 01 01 00 02 10 06 00 05 A0 00 00 05 59 > ok 10 01 00 02 11 02 00 90 00
        2:2 80 E2 91 00 07 BF 34 04 82 02 05 60 00 > $nothing
        2:2 $reset > $deleted; 2:1 $reset > $nothing
        2:1 81 E2 91 00 07 BF 34 04 82 02 05 E0 > $nothing; 2:4 $reset > no 48
        2:255 $reset > no 48; 2:0 $reset > 6D 00; 2:3 $reset > 6D 00
        2:1 00 E2 91 00 07 BF 34 04 82 02 05 E0 00 > 6D 00; 2:1 80 CA 00 5A 00 > 6D 00
        2:1 80 E2 91 00 03 BF 5F 00 00 > 6A 88; 2:1 80 E2 11 00 03 BF 34 04 00 > 90 00
        2:1 80 E2 91 01 04 82 02 05 E0 00 > $nothing
        2:1 90 E2 91 00 07 BF 34 04 82 02 05 E0 00 > 6E 00; 2:0 FF FF FF FF > 6E 00
        2:1 80 E2 91 > 67 00; 2:1 80 E2 91 00 > 67 00; 2:1 80 E2 91 00 08 BF 34 04 82 02 05 E0 > 67 00
        2:1 80 E2 91 00 07 BF 34 04 82 02 05 E0 00 00 > 67 00
        2:1 80 E2 91 00 06 BF 34 04 82 02 05 00 > 67 00; 2:1 > 67 00; 48 01 01 00 02 > ok
        2:1 $reset > no 52; $open > no 52; 101 01 01 00 02 > no 74
        49 01 01 00 02 10 01 00 01 11 04 00 00 00 00 00 > ok; 2:1 $reset > no 48
        $open > ok 10 01 00 01 $opened; 101 01 01 00 02 > no 74)");
}

TEST_F(HandsetUimTest, RefusesWhatIsMissingOrLies) {
    const RunningHandset handset(place_);
    play(handset, R"(
        101 01 01 00 02 > ok 10 11 00 10 89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23; 101 01 01 00 01 > no 94
        47 10 02 00 01 00 > no 1; 48 > no 17; 101 01 00 00 > no 17; 101 01 04 00 02 00 00 00 > no 1
        49 01 01 00 00 > no 48; 66 01 01 00 03 > no 48; 59 01 01 00 02 > no 17
        59 01 01 00 02 02 03 00 02 00 80 > no 1; 59 01 01 00 02 02 03 00 00 00 80 > no 1
        59 01 01 00 02 02 01 00 00 > no 1; 66 01 01 00 02 10 02 00 02 A0 > no 1
        66 01 01 00 02 10 22 00 21 $isdr $isdr 00 > no 1; 66 01 01 00 02 11 02 00 01 00 > no 1
        63 01 01 00 02 11 02 00 01 00 > no 1; 59 01 01 00 02 02 FF > no 1
        59 01 01 00 02 02 06 00 04 00 80 CA 00 5A 10 01 00 00 10 02 00 01 00 > no 1)");
}

TEST_F(HandsetUimTest, WiringAndProfilesOutliveEveryRestartAndChannelsNone) {
    const wire::Bytes euicc(8, 0);
    const wire::Bytes card = {1, 0, 0, 0, 0, 0, 0, 0};
    const char profile[] = R"({"modem": {"restart_ms": 20}})";
    {
        RunningHandset handset(place_, profile);
        QmiClient client(handset, 11);
        client.play("$open > ok 10 01 00 01 $opened; 2:1 $reset > $deleted", kNames);
        EXPECT_EQ(ExtensionClient(handset).common(84, {0}), -22);
        EXPECT_EQ(ExtensionClient(handset).common(84, {2, 0, 0, 0, 0, 0, 0, 0}), -22);
        EXPECT_EQ(ExtensionClient(handset).common(84, euicc), 0);
        client.play("2:1 $reset > $nothing", kNames);
        EXPECT_EQ(ExtensionClient(handset).common(84, card), 0);
        client.play("$open > $no_isdr; 101 01 01 00 02 > no 94; 48 01 01 00 02 > ok", kNames);
        EXPECT_EQ(ExtensionClient(handset).common(80, {1, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0}), 0);
        EXPECT_EQ(ExtensionClient(handset).common(31, {0, 0x10, 0, 0}), 0);
        EXPECT_TRUE(client.receive()->empty());
        ASSERT_TRUE(eventually([&] { return QmiClient(handset, 11).connected(); }));
        play(handset, "66 01 01 00 01 > ok 10 01 00 01 11 02 00 90 00; $open > $no_isdr");
        EXPECT_EQ(ExtensionClient(handset).common(84, euicc), 0);
        handset.stop(SIGKILL);
    }
    {
        const RunningHandset handset(place_, profile);
        play(handset, "$open > ok 10 01 00 01 $opened; 2:1 $reset > $nothing");
        EXPECT_EQ(ExtensionClient(handset).common(84, card), 0);
    }
    play(RunningHandset(place_, profile), "$open > $no_isdr");
}

TEST_F(HandsetUimTest, APulledCardLosesItsChannelsAndTheEuiccDoesNot) {
    const RunningHandset handset(place_);
    play(handset, "$open > ok 10 01 00 01 $opened; 66 01 01 00 01 > ok 10 01 00 01 11 02 00 90 00");
    for (const uint8_t slot : {uint8_t{0}, uint8_t{1}}) {
        for (const uint8_t level : {uint8_t{0}, uint8_t{1}})
            EXPECT_EQ(ExtensionClient(handset).common(57, {slot, 0, 0, 0, 1, 0, 0, 0, level, 0, 0, 0}), 0);
    }
    play(handset, "63 01 01 00 01 11 01 00 01 > no 48; 63 01 01 00 02 11 01 00 01 > ok 11 02 00 90 00");
}

TEST_F(HandsetUimTest, IndicatesToAllBeforeItAnswers) {
    const RunningHandset handset(place_, R"({"uim": {"indications": [{"before": 97}]}})");
    QmiClient other(handset, 11);
    QmiClient client(handset, 11);
    client.send(wire::encode({wire::kQmiRequest, 1, 97, {}}));
    for (QmiClient* each : {&client, &other})
        each->play("< 97 01 04 00 00 00 00 00 02 04 00 00 00 00 00");
    EXPECT_EQ(text_of(client.receive().value_or(wire::Bytes())), "02 01 00 61 00 07 00 02 04 00 01 00 47 00");
}

}  // namespace
}  // namespace handset_test

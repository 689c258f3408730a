// What is in a slot: a card and an eUICC as their commands show them, and what they remember.
#include "handset_fixture.h"

namespace handset_test {
namespace {

class CardTest : public testing::Test {
protected:
    /// A script with the names that all of them know.
    static void play(QmiClient& client, const std::string& script, Names names = {},
                     const std::string& prefix = "") {
        const Names usual = {
            {"open_isd_r", "66 01 01 00 02 10 06 00 05 A0 00 00 05 59 > ok 10 01 00 01 11 02 00 90 00"},
            {"iccid", "98 00 01 01 00 00 00 00 10 F9"},
            {"first", "5A 0A 98 00 01 21 43 65 87 09 21 F0"},
            {"lab", "5A 0A 98 00 01 89 67 45 23 01 89 F9"},
            {"usim", "A0 00 00 00 87 10 02 FF FF FF FF 89 00 00 01 00"},
        };
        names.insert(names.end(), usual.begin(), usual.end());
        client.play(script, names, prefix);
    }

    TestFolder place_;
};

TEST_F(CardTest, SelectsAndReadsFiles) {
    const Names names = {
        {"fcp_mf", "62 1D 82 02 78 21 83 02 3F 00 $fcp_rest"},
        {"fcp_usim", "62 2F 82 02 78 21 83 02 7F FF 84 10 $usim $fcp_rest"},
        {"fcp_rest", "A5 03 80 01 71 8A 01 05 8B 03 2F 06 01 C6 06 90 01 00 83 01 01 90 00"},
        {"dir", "61 18 4F 10 $usim 50 04 55 53 49 4D FF FF FF FF FF FF 90 00"},
        {"spn", "01 76 78 6B FF FF FF FF FF FF FF FF FF FF FF FF FF 90 00"},
    };
    const RunningHandset handset(place_,
                                 R"({"cards": {"slots": [{"files": {"3F00/7F10/6F3A": "01 02 03"}}]}})");
    QmiClient client(handset, 11);
    play(client, R"(
        00 A4 00 04 02 3F 00 00 > $fcp_mf; 00 A4 00 00 00 > $fcp_mf; 80 F2 00 00 00 > $fcp_mf
        80 F2 00 0C > 90 00; 80 F2 03 0C > 6A 86; 00 F2 00 0C > 6E 00; 00 B0 00 00 0A > 69 86
        00 A4 00 04 02 2F E2 > 62 17 82 02 41 21 83 02 2F E2 8A 01 05 8B 03 2F 06 01 80 02 00 0A 88 01 10 90 00
        00 B0 00 00 00 > $iccid 90 00; 00 B0 00 08 02 > 10 F9 90 00; 00 B0 00 08 03 > 6C 02; 00 B0 00 0A 01 > 6B 00
        00 B0 00 00 > 67 00; 00 D6 00 00 01 00 > 69 82; 00 B2 01 04 0A > 69 81; 00 B0 82 00 0A > $iccid 90 00
        00 B0 83 00 0A > 6A 82; 00 A4 00 04 02 6F 07 > 6A 82; 00 A4 00 08 02 3F 00 > 6A 86
        00 A4 07 04 02 3F 00 > 6A 86; 00 A4 00 04 01 3F > 67 00; 00 A4 00 04 00 02 3F 00 > 67 00
        00 A4 01 0C 02 2F 00 > 6A 82; 00 A4 00 0C 02 2F 00 > 90 00; 00 B2 01 04 20 > $dir
        00 B2 00 02 00 > $dir; 00 B2 00 02 00 > 6A 83; 00 B2 01 04 10 > 6C 20; 00 B2 02 04 20 > 6A 83
        00 B2 01 F4 20 > $dir; 00 B2 01 05 20 > 6A 86; 00 B0 00 00 01 > 69 81
        00 A4 04 0C 08 A0 00 00 00 87 10 03 FF > 6A 82; 00 A4 04 0C 04 A0 00 00 00 > 6A 82
        00 A4 04 02 07 A0 00 00 00 87 10 02 > 6A 82; 00 A4 04 04 07 A0 00 00 00 87 10 02 00 > $fcp_usim
        80 F2 00 01 12 > 84 10 $usim 90 00; 00 A4 00 0C 02 6F 07 > 90 00
        00 B0 00 00 09 > 08 09 10 10 00 00 00 00 91 90 00; 00 A4 08 0C 04 7F FF 6F 46 > 90 00
        00 B0 00 00 00 > $spn; 00 A4 03 0C > 90 00; 00 A4 08 0C 04 7F 10 6F 3A > 90 00
        00 B0 00 01 02 > 02 03 90 00; 00 88 00 81 02 01 00 > 98 64; 00 88 00 01 02 01 00 > 6A 86
        00 88 00 81 02 10 00 > 67 00; 00 C0 00 00 10 > 69 85; 00 CA 00 00 00 > 6D 00
        A0 A4 00 00 02 3F 00 > 6E 00; 00 70 00 00 01 > 01 90 00; 00 70 00 03 > 90 00; 00 70 00 03 > 6A 81
        00 70 00 00 01 > 02 90 00; 00 70 00 00 01 > 6A 81; 00 70 80 02 > 90 00; 00 70 80 02 > 68 81
        00 70 80 00 > 6A 86; 00 70 00 04 > 6A 86)",
         names, "1:0 ");
    // A channel of its own is at the MF, and has no application.
    play(client, "1:1 00 A4 00 0C 02 7F FF > 6A 82; 1:1 00 88 00 81 02 01 00 > 69 85");
}

TEST_F(CardTest, CountsTriesOfThePinAndKeepsWhatIsWrittenThroughAKill) {
    const char profile[] = R"({"cards": {"slots": [{"pin_enabled": true, "pin": "24680"}]}})";
    const Names names = {
        {"bad", "00 20 00 01 08 $wrong"},
        {"good", "00 20 00 01 08 32 34 36 38 30 FF FF FF"},
        {"bad_puk", "00 2C 00 01 10 30 30 30 30 30 30 30 30 $wrong"},
        {"puk", "00 2C 00 01 10 31 32 33 34 35 36 37 38 $wrong"},
        {"wrong", "31 32 33 34 FF FF FF FF"},
        {"record", "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 19 1A 1B 1C"},
    };
    // Application and PIN1 as the card status has them: state, then PIN state and tries.
    const auto status = [](QmiClient& client) {
        const std::string body = text_of(client.exchange(47, wire::Bytes()));
        return body.substr(3 * 25, 5) + ", " + body.substr(3 * 49, 8);
    };
    {
        RunningHandset handset(place_, profile);
        QmiClient client(handset, 11);
        EXPECT_EQ(status(client), "02 02, 01 03 0A");
        play(client, R"(
        00 A4 08 0C 04 7F FF 6F 07 > 90 00; 00 B0 00 00 09 > 69 82; 00 20 00 01 > 63 C3; 00 20 00 02 > 6A 86
        00 20 00 01 04 31 32 33 34 > 67 00; $bad > 63 C2)",
             names, "1:0 ");
        handset.stop(SIGKILL);
    }
    {
        RunningHandset handset(place_, profile);
        QmiClient client(handset, 11);
        play(client, R"(
        00 20 00 01 > 63 C2; $good > 90 00; 00 20 00 01 > 90 00; 00 A4 08 0C 04 7F FF 6F 40 > 90 00
        00 DC 01 04 1C $record > 90 00; 00 DC 03 04 1C $record > 6A 83
        00 DC 01 04 01 01 > 67 00; $bad > 63 C2; $bad > 63 C1; $bad > 63 C0; $good > 69 83; $bad_puk > 63 C9)",
             names, "1:0 ");
        EXPECT_EQ(status(client), "02 03, 04 00 09");
        handset.stop(SIGKILL);
    }
    const RunningHandset handset(place_, profile);
    QmiClient client(handset, 11);
    play(client, R"(
        00 20 00 01 > 69 83; 00 2C 00 01 > 63 C9; $puk > 90 00; 00 20 00 01 > 90 00
        00 A4 08 0C 04 7F FF 6F 40 > 90 00; 00 B2 01 04 1C > $record 90 00
        $good > 63 C2; 00 26 00 01 08 $wrong > 90 00)",
         names, "1:0 ");
    EXPECT_EQ(status(client), "02 07, 03 03 0A");
}

TEST_F(CardTest, AnswersTheProfileManagersFunctions) {
    std::string zeros;
    for (int i = 0; i < 64; ++i)
        zeros += "00 ";
    const Names names = {
        {"all",
         "BF 2D 5E A0 5C E3 35 $first 4F 10 A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 11 00 9F 70 01 01 91 "
         "03 76 78 6B "
         "92 09 70 72 6F 66 69 6C 65 20 31 95 01 02 "
         "E3 23 $lab 4F 06 A0 00 00 05 59 01 9F 70 01 00 91 01 70 92 03 6C 61 62 95 01 00"},
        {"enable_lab", "BF 31 11 A0 0C $lab 81 01 00"},
        {"enable_first", "BF 31 11 A0 0C $first 81 01 00"},
        {"notes", "BF 28 2A A0 28 $disabled_note"},
        {"retrieved", "BF 2B 73 A0 71 30 6F $disabled_note 5F 37 40 " + zeros + "30 00 30 00"},
        {"disabled_note",
         "BF 2F 25 80 01 01 81 02 05 20 0C 10 73 6D 64 70 2E 65 78 61 6D 70 6C 65 2E 63 6F 6D $first"},
    };
    {
        RunningHandset handset(place_, R"({"euicc": {"profiles": ["8900101234567890120",
            {"iccid": "8900109876543210989", "aid": "A0 00 00 05 59 01", "class": "test", "name": "lab", "provider": "p"}]}})");
        QmiClient client(handset, 11);
        play(client, R"($open_isd_r
            2:1 00 A4 04 00 05 A0 00 00 05 59 00 > 6F 19 84 10 A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00 E0 05 82 03 02 02 02 90 00)");
        play(client, R"(
        BF 3E 03 5C 01 5A > BF 3E 12 5A 10 89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23
        BF 20 00 > BF 20 09 82 03 02 02 02 A9 00 AA 00; BF 43 00 > BF 43 02 A0 00; BF 2D 00 > $all
        BF 2D 09 A0 03 95 01 00 5C 02 5A 95 > BF 2D 13 A0 11 E3 0F $lab 95 01 00
        BF 2D 05 5C 03 9F 70 92 > BF 2D 1E A0 1C E3 0F 9F 70 01 01 92 09 70 72 6F 66 69 6C 65 20 31 E3 09 9F 70 01 00 92 03 6C 61 62
        BF 2D 05 A0 03 80 01 00 > BF 2D 03 81 01 01
        BF 29 10 5A 0A 98 00 01 21 43 65 87 09 21 F0 90 02 C3 28 > BF 29 03 80 01 7F
        BF 29 10 5A 0A 98 00 01 21 43 65 87 09 21 F1 90 02 41 42 > BF 29 03 80 01 01
        BF 29 10 5A 0A 98 00 01 21 43 65 87 09 21 F0 90 02 41 42 > BF 29 03 80 01 00
        BF 2D 07 5C 01 90 A0 02 95 00 > BF 2D 02 A0 00
        BF 2D 03 5C 01 90 > BF 2D 0A A0 08 E3 04 90 02 41 42 E3 00
        BF 33 0C 5A 0A 98 00 01 21 43 65 87 09 21 F0 > BF 33 03 80 01 02; $enable_first > BF 31 03 80 01 02
        BF 32 0A A0 05 4F 03 A0 00 00 81 01 00 > BF 32 03 80 01 01; $enable_lab > BF 31 03 80 01 00
        BF 32 11 A0 0C $first 81 01 00 > BF 32 03 80 01 02; BF 28 00 > $notes
        BF 28 04 81 02 06 40 > BF 28 02 A0 00; BF 2B 05 A0 03 80 01 01 > $retrieved
        BF 2B 05 A0 03 80 01 07 > BF 2B 02 A0 00
        BF 3C 00 > BF 3C 10 81 0E 64 73 2E 65 78 61 6D 70 6C 65 2E 63 6F 6D
        BF 3F 03 80 01 61 > BF 3F 03 80 01 00; BF 38 04 30 02 80 00 > BF 38 07 A1 05 80 00 02 01 07
        BF 21 07 30 05 80 03 01 02 03 > BF 21 0A A1 08 80 03 01 02 03 02 01 04; BF 41 00 > BF 41 03 81 01 05)",
             names, "* ");
        handset.stop(SIGKILL);
    }
    {
        RunningHandset handset(place_);
        QmiClient client(handset, 11);
        play(client, "$open_isd_r; 2:0 00 B0 82 00 0A > 98 00 01 89 67 45 23 01 89 F9 90 00");
        play(client, R"(
        BF 28 00 > $notes; BF 3C 00 > BF 3C 13 80 01 61 81 0E 64 73 2E 65 78 61 6D 70 6C 65 2E 63 6F 6D
        BF 30 03 80 01 02 > BF 30 03 80 01 01; BF 30 03 80 01 01 > BF 30 03 80 01 00
        BF 28 00 > BF 28 02 A0 00; BF 34 04 82 02 06 80 > BF 34 03 80 01 00
        BF 2D 03 5C 01 95 > BF 2D 07 A0 05 E3 03 95 01 00; BF 34 04 82 02 06 80 > BF 34 03 80 01 01
        BF 34 04 82 02 05 20 > BF 34 03 80 01 00; BF 34 04 82 02 06 40 > BF 34 03 80 01 00
        BF 2D 00 > BF 2D 02 A0 00)",
             names, "* ");
        play(client, "2:0 00 B0 82 00 0A > 6A 82");
        handset.stop(SIGKILL);
    }
    const RunningHandset handset(place_);
    QmiClient client(handset, 11);
    play(client, "$open_isd_r; * BF 2D 00 > BF 2D 02 A0 00");
}

TEST_F(CardTest, RefusesRequestsThatDoNotReadAndChainsThoseThatAreLong) {
    std::string list;
    for (int i = 10; i < 30; ++i)
        list += (list.empty() ? "\"" : ", \"") + std::string("89001012345678901") + std::to_string(i) + "\"";
    const RunningHandset handset(place_, "{\"euicc\": {\"profiles\": [" + list + "]}}");
    QmiClient client(handset, 11);
    play(client, "$open_isd_r");
    play(client, R"(
        80 E2 91 00 05 BF 2D 84 80 00 > 67 00; 80 E2 91 00 08 BF 2D 84 80 00 00 00 00 > 67 00
        80 E2 91 00 02 BF 2D > 67 00; 80 E2 91 00 05 BF 2D 00 BF 2D > 6A 80
        80 E2 91 00 05 BF 31 02 A0 05 > 6A 80; 80 E2 91 00 05 BF 34 02 82 00 > 6A 80
        80 E2 91 00 03 BF 5F 00 > 6A 88; 80 E2 91 00 05 BF 36 82 10 00 > 69 85
        80 E2 00 00 03 BF 2D 00 > 6A 86; 80 E2 91 01 03 BF 2D 00 > 6A 86; 80 E2 91 00 > 67 00
        80 E2 11 00 02 BF 2D > 90 00; 80 E2 91 02 01 00 > 6A 86; 80 E2 11 00 02 BF 2D > 90 00
        80 E2 91 01 01 00 > 61 00; 00 C0 00 01 00 > 6A 86)",
         {}, "2:1 ");
    constexpr size_t kAround = 14;  // the result, three lengths, and the status words
    size_t size = 0;
    wire::Bytes part = {0};
    do {
        part = client.transmit(2, 1, {0, 0xC0, 0, 0, part.back()});
        ASSERT_GE(part.size(), kAround);
        size += part.size() - kAround;
    } while (part[part.size() - 2] == 0x61);
    EXPECT_EQ(part[part.size() - 2], 0x90);
    EXPECT_EQ(size, 9U + 9 * 55 + 11 * 56);
}

TEST_F(CardTest, TellsWhoHasRegistered) {
    const RunningHandset handset(
        place_, R"({"euicc": {"profiles": ["8900101234567890120", "8900101234567890138"]}})");
    QmiClient listener(handset, 11);
    play(listener,
         "46 01 04 00 FF FF FF FF > ok 10 04 00 11 00 00 00; 68 01 02 00 07 00 02 02 00 01 01 > ok");
    QmiClient other(handset, 11);
    play(other, R"($open_isd_r; 48 01 01 00 01 > ok; 70 01 01 00 01 02 04 00 02 00 00 00 > ok
        70 01 01 00 02 02 04 00 02 00 00 00 > no 26; 70 01 01 00 02 02 04 00 01 00 00 00 > no 48
        70 01 01 00 02 02 04 00 03 00 00 00 > ok; $open_isd_r
        * BF 31 11 A0 0C 5A 0A 98 00 01 21 43 65 87 09 31 F8 81 01 FF > BF 31 03 80 01 00
        63 01 01 00 02 11 01 00 01 > no 48)");
    play(listener, R"(
        < 50 10 33 00 00 01 FF FF FF FF FF FF 02 02 00 00 00 01 00 01 00 00 00 00 01 02 07
        < 50 10 33 00; < 72; < 50 10 33 00; < 72
        < 51 10 06 00 01 00 07 00 00 00; < 51 10 06 00 02 00 07 00 00 00; < 50 10 33 00; < 72; 0 > ok)");
    play(other, "49 01 01 00 01 > ok");
    play(listener, "30 > ok 10 0F 00 0D 00 01 00 00 40 13 D4 03 88 D4 00 00 00 20");
}

TEST_F(CardTest, ReadsFilesAsThePhoneDoes) {
    const Names names = {
        {"iccid_of_1", "32 $session 02 05 00 E2 2F 02 00 3F 03 04 00"},
        {"session", "01 02 00 06 00"},
    };
    const RunningHandset handset(place_, R"({"cards": {"slots": [{"pin_enabled": true}]}})");
    QmiClient client(handset, 11);
    play(client, R"(
        $iccid_of_1 00 00 00 00 > ok 10 02 00 90 00 11 0C 00 0A 00 $iccid
        $iccid_of_1 08 00 02 00 > ok 10 02 00 90 00 11 04 00 02 00 10 F9
        $iccid_of_1 08 00 03 00 > no 48 10 02 00 6B 00
        32 $session 02 07 00 07 6F 04 00 3F FF 7F 03 04 00 00 00 00 00 > no 82 10 02 00 69 82
        32 $session 02 05 00 E3 2F 02 00 3F 03 04 00 00 00 00 00 > no 16 10 02 00 6A 82
        32 $session 02 05 00 00 2F 02 00 3F 03 04 00 00 00 00 00 > no 48 10 02 00 69 81
        32 $session 02 05 00 E2 2F 03 00 3F 03 04 00 00 00 00 00 > no 1
        32 $session 02 05 00 E2 2F 02 00 3F > no 17
        32 01 02 00 05 00 02 05 00 E2 2F 02 00 3F 03 04 00 00 00 00 00 > ok 10 02 00 90 00 11 0C 00 0A 00 98 00 01 21 43 65 87 09 21 F0
        32 01 02 00 16 00 02 05 00 E2 2F 02 00 3F 03 04 00 00 00 00 00 > no 48
        33 $session 02 05 00 00 2F 02 00 3F 03 04 00 02 00 20 00 > no 16 10 02 00 6A 83
        33 $session 02 05 00 00 2F 02 00 3F 03 04 00 01 00 1F 00 > no 48 10 02 00 67 00
        36 $session 02 03 00 00 3F 00 > ok 10 02 00 90 00 11 39 00 00 00 00 3F 04 00 00 00 00 00 00 00 04 08 00 01 00 00 04 08 00 04 08 00 1F 00 62 1D 82 02 78 21 83 02 3F 00 A5 03 80 01 71 8A 01 05 8B 03 2F 06 01 C6 06 90 01 80 83 01 01
        48 01 01 00 01 > ok; $iccid_of_1 00 00 00 00 > no 52)",
         names);
}

}  // namespace
}  // namespace handset_test

// The eSIM state command against a scripted modem: what it sends, and what it says of every way an action can
// go.
#include <gmock/gmock.h>

#include <cstring>

#include "group5_esim.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "little_endian.h"
#include "platform_test.h"
#include "user_identity_module_v01.h"

namespace {

using testing::HasSubstr;

using Bytes = std::vector<uint8_t>;

constexpr char kValidEid[] = "89049032001001000000000000000023";
const Bytes kResetAnswer = {0xBF, 0x34, 0x03, 0x80, 0x01, 0x00, 0x90, 0x00};

// An exchange by its message number; those of the extension channel as "84", "efs4" (read) and "efs5"
// (write).
std::string key_of(const QmiRequest& request) {
    if (request.message != 2)
        return std::to_string(request.message);
    const uint8_t* payload = request.bytes.data() + 9;
    return request.bytes[0] == 4 ? std::to_string(get_le<uint32_t>(payload + 8))
                                 : "efs" + std::to_string(payload[0]);
}

Bytes from_hex(const std::string& text) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

// Length, then the bytes as hex digits without the zeros at the end.
std::string described(const QmiRequest& request) {
    std::string text;
    for (const uint8_t byte : request.bytes) {
        char digits[3];
        snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    text.erase(text.find_last_not_of('0') + 1);
    return key_of(request) + ":" + std::to_string(request.bytes.size()) + ":" + text +
           (text.size() % 2 ? "0" : "");
}

struct Modem {
    std::map<std::string, int> transport;     // what the QMI library returns for an exchange
    std::map<std::string, uint32_t> refused;  // the service's result
    Bytes eid = from_hex(kValidEid);
    int rounds_without_eid = 0;
    Bytes cards = {1, 0};
    bool status_valid = true;
    uint8_t card_count = 2;
    bool channel_valid = true;
    Bytes apdu = kResetAnswer;
    bool apdu_valid = true;
    bool eid_file = false;

    int answer(const QmiRequest& request, void* response) {
        const std::string key = key_of(request);
        if (transport.count(key) != 0)
            return transport[key];
        if (request.message == 2)
            answer_extension(key, static_cast<uint8_t*>(response));
        else if (refused.count(key) != 0)
            static_cast<qmi_response_type_v01*>(response)->result = refused[key];
        else
            answer_uim(request.message, response);
        return 0;
    }

    void answer_extension(const std::string& key, uint8_t* response) const {
        uint8_t* payload = response + 9;
        put_le<uint32_t>(response + 4, 200);
        response[8] = 1;
        if (key == "efs4") {
            put_le<uint32_t>(payload + 4, 16);
            put_le<uint32_t>(payload + 8, 16);
            put_le<int32_t>(payload + 16, eid_file ? 0 : -2);
        }
    }

    void answer_uim(unsigned message, void* answer) {
        if (message == 101 && rounds_without_eid-- <= 0) {
            auto& response = *static_cast<uim_get_eid_resp_msg_v01*>(answer);
            response.eid_valid = 1;
            response.eid_len = 16;
            std::copy(eid.begin(), eid.end(), response.eid);
        } else if (message == 47) {
            auto& response = *static_cast<uim_get_card_status_resp_msg_v01*>(answer);
            response.extended_card_status_valid = status_valid ? 1 : 0;
            response.extended_card_status.card_count = card_count;
            for (size_t i = 0; i < cards.size(); ++i)
                response.extended_card_status.cards[i].card_state = cards[i];
        } else if (message == 66) {
            auto& response = *static_cast<uim_logical_channel_resp_msg_v01*>(answer);
            response.channel_id_valid = channel_valid ? 1 : 0;
            response.channel_id = 3;
        } else if (message == 59) {
            auto& response = *static_cast<uim_send_apdu_resp_msg_v01*>(answer);
            response.apdu_valid = apdu_valid ? 1 : 0;
            response.apdu_len = static_cast<uint32_t>(apdu.size());
            std::copy(apdu.begin(), apdu.end(), response.apdu);
        }
    }
};

class Esim : public PlatformTest {
protected:
    Esim() { reset(); }
    ~Esim() override { reset(); }

    static void reset() {
        uim_qmi_client = nullptr;
        SSR_Detected = 0;
        failed_cnt = 0;
        IS_EID_SAVE = false;
        g_quiet_mode = false;
        platform().requests.clear();
        platform().usleeps.clear();
    }

    static std::string run(const char* action, const char* debug, Modem& modem) {
        reset();
        platform().send = [&](const QmiRequest& request, void* response) {
            return modem.answer(request, response);
        };
        const char* argv[] = {"vxk", "5", "10", action, debug};
        std::string text =
            printed_by([&] { EXPECT_EQ(kelvra_cmn_esim_test(5, const_cast<char**>(argv)), 0); });
        platform().send = nullptr;
        return text;
    }
};

TEST_F(Esim, RequestsOfEveryAction) {
    const std::string wiring = "524:04000000000200000102000000000000005400000008";
    const std::string path =
        "282f6e762f6974656d5f66696c65732f6d6f64656d2f75696d2f75696d6472762f6573696d5f656964";
    const std::string read = "524:02000000000200000104010000" + path;
    const std::string write = "524:02000000000200000105010000" + path + std::string(2 * (71 - 40), '0');
    const struct {
        const char* action;
        std::vector<std::string> requests;
    } cases[] = {
        {"1",
         {"48:4:02", "84:" + wiring, "49:12:02000000010101", "101:4:02", "efs4:" + read,
          "efs5:" + write + "100000001000000000000000" + kValidEid}},
        {"2", {"48:4:02", "84:" + wiring + "00000001", "49:12:02000000010001"}},
        {"3", {"101:4:02"}},
        {"4", {"47:2:0101"}},
        {"5",
         {"66:52:020000000100000010000000a0000005591010ffffffff8900000100" + std::string(32, '0') +
              "0100000001",
          "59:1056:020000000d00000080e2910007bf3404820205e0" + std::string(2 * 1012, '0') + "010301",
          "63:56:02" + std::string(2 * 43, '0') + "0103" + std::string(12, '0') + "0101"}},
    };
    for (const auto& c : cases) {
        Modem modem;
        run(c.action, "0", modem);
        std::vector<std::string> sent;
        for (const QmiRequest& request : platform().requests)
            sent.push_back(described(request));
        EXPECT_EQ(sent, c.requests) << c.action;
    }
}

TEST_F(Esim, QuietRunsPrintTheirVerdictAlone) {
    const auto fails = [](const char* key, int error) {
        return [=](Modem& modem) { modem.transport[key] = error; };
    };
    const auto refuses = [](const char* key) { return [=](Modem& modem) { modem.refused[key] = 1; }; };
    const auto eid = [](const std::string& text) {
        return [=](Modem& modem) { modem.eid = from_hex(text); };
    };
    const auto apdu = [](const Bytes& bytes) { return [=](Modem& modem) { modem.apdu = bytes; }; };
    const auto cards = [](uint8_t first, uint8_t second) {
        return [=](Modem& modem) { modem.cards = {first, second}; };
    };
    const std::string found = std::string("eID=") + kValidEid + "\n";
    const std::string failed = "value=FAILED\n";
    const std::string succeeded = "value=SUCCEED\n";
    const struct {
        const char* action;
        std::function<void(Modem&)> script;
        std::string printed;
        std::string said;  // by the same run when it is not quiet
        size_t requests;
    } cases[] = {
        {"0", [](Modem&) {}, failed, "invalid input skip\n", 0},
        {"6", [](Modem&) {}, failed, "invalid input skip\n", 0},

        {"1", [](Modem&) {}, found, "save eid efs result = 0\n", 6},
        {"1", [](Modem& m) { m.eid_file = true; }, found, "EID already exists, set IS_EID_SAVE TRUE\n", 5},
        {"1", [](Modem& m) { m.rounds_without_eid = 29; }, found, "try get eid loop = 29\n", 35},
        {"1", [](Modem& m) { m.rounds_without_eid = 30; }, failed, "get eid timeout\n", 33},
        {"1", eid("00000000000000000000000000000001"), failed, "get eid timeout\n", 33},
        {"1", eid("89049032001001000000000000000024"), "value=FAILED - 89049032001001000000000000000024\n",
         "eid validate failed, result = 2\n\n", 4},
        {"1", eid("8904903200100100000000ABCDEF0067"), "eID=8904903200100100000000abcdef0067\n",
         "eid validate pass\n\n", 6},
        {"1", fails("48", -2), failed, "POWER_DOWN_UIM2 res = -2\n", 1},
        {"1", refuses("48"), found, "POWER_DOWN_UIM2 res = 0\n", 6},
        {"1", fails("84", -2), found, "POWER_UP_UIM2 res = 0\n", 6},
        {"1", fails("49", -2), failed, "POWER_UP_UIM2 res = -2\n", 3},
        {"1", fails("101", -2), failed, "get eid timeout\n", 33},
        {"1", fails("efs4", -3), found, "efs read failed and try save it. error_code : -103\n\n", 6},
        {"1", fails("efs5", -3), found, "save eid efs result = -103\n", 6},

        {"2", [](Modem&) {}, succeeded, "SIM2 Power Up successfully\n", 3},
        {"2", fails("49", -2), failed, "POWER_UP_UIM2 res = -2\n", 3},

        {"3", [](Modem& m) { m.rounds_without_eid = 1; }, found, "try get eid loop = 1\n", 2},
        {"3", [](Modem& m) { m.rounds_without_eid = 2; }, failed, "try get eid loop = 1\n", 2},
        {"3", eid("89049032001001000000000000000024"), "eID=89049032001001000000000000000024\n", "loop = 0\n",
         1},
        {"3", fails("101", -2), failed, "QMI error, try recovery\n", 2},

        {"4", [](Modem&) {}, "PRESENT,ABSENT\n", "card_status, [1, 0]\n", 1},
        {"4", [](Modem& m) { m.card_count = 1; }, "PRESENT,ABSENT\n", "SIM[0] State = 1\n", 1},
        {"4", cards(2, 3), "ERROR,UNKNOWN\n", "SIM[1] State = 3\n", 1},
        {"4", cards(0, 255), "ABSENT,UNKNOWN\n", "card_status, [0, -1]\n", 1},
        {"4", [](Modem& m) { m.card_count = 0; }, "UNKNOWN,UNKNOWN\n", "check response\n", 1},
        {"4", [](Modem& m) { m.status_valid = false; }, "UNKNOWN,UNKNOWN\n", "card_status, [3, 3]\n", 1},
        {"4", refuses("47"), "UNKNOWN,UNKNOWN\n", "map_sim_state ...\n\n", 1},
        {"4", fails("47", -2), "ABSENT,ABSENT\n", "QMI error, try recovery\n", 1},
        {"4", fails("47", -3), "ABSENT,ABSENT\n", "card_status, [0, 0]\n", 1},

        {"5", [](Modem&) {}, succeeded, "kelvra_uim_send_apdu, delete profile successfully.\n", 3},
        {"5", apdu({0xBF, 0x34, 0x03, 0x80, 0x01, 0x01, 0x90, 0x00}), succeeded, "nothing to delete.\n", 3},
        {"5", apdu({0x6D, 0x00}), failed, "apdu=026d00000000000000\n", 2},
        {"5", apdu(Bytes(1024, 0xAA)), failed, "apdu=3faaaaaaaaaaaaaaaa\n", 2},
        {"5", [](Modem& m) { m.apdu_valid = false; }, failed, "apdu rsp check failed.\n", 2},
        {"5", fails("66", -2), failed, "kelvra_uim_open_channel res = -2, channel_id = 0\n", 1},
        {"5", refuses("66"), failed, "kelvra_uim_open_channel failed\n", 1},
        {"5", [](Modem& m) { m.channel_valid = false; }, failed, "res = -1, channel_id = 0\n", 1},
        {"5", fails("59", -3), failed, "kelvra_uim_send_apdu res = -3\n", 2},
        {"5", refuses("59"), failed, "kelvra_uim_send_apdu failed\n", 2},
        {"5", fails("63", -2), succeeded, "kelvra_uim_close_channel res = -2\n", 3},
        {"5", refuses("63"), succeeded, "kelvra_uim_close_channel res = -1\n", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.action) + " " + c.said);
        Modem modem;
        c.script(modem);
        Modem again = modem;
        EXPECT_EQ(run(c.action, "0", modem), c.printed);
        EXPECT_EQ(platform().requests.size(), c.requests);
        const std::string loud = run(c.action, "1", again);
        EXPECT_THAT(loud, HasSubstr(c.said));
        EXPECT_THAT(loud, testing::EndsWith(c.printed));
    }
}

TEST_F(Esim, NoClient) {
    for (const char* action : {"1", "2", "3", "4", "5"}) {
        Modem modem;
        platform().client_init_instance = [](uint32_t, qmi_client_type*) { return -3; };
        EXPECT_EQ(run(action, "0", modem), "value=FAILED\n") << action;
        EXPECT_TRUE(platform().requests.empty());
    }
}

TEST_F(Esim, StoredEidIsLookedForOncePerRun) {
    const Bytes eid = from_hex(kValidEid);
    const struct {
        int write_error;
        int result;
        size_t requests;
    } calls[] = {{-3, -103, 2}, {0, 0, 4}, {0, 0, 4}};
    for (const auto& c : calls) {
        Modem modem;
        if (c.write_error != 0)
            modem.transport["efs5"] = c.write_error;
        platform().send = [&](const QmiRequest& request, void* response) {
            return modem.answer(request, response);
        };
        printed_by([&] { EXPECT_EQ(save_eid_to_efs(eid.data()), c.result); });
        EXPECT_EQ(platform().requests.size(), c.requests);
    }
}

TEST_F(Esim, MissingArgument) {
    const char* argv[] = {"vxk", "5", "10", "1"};
    const std::string text =
        mask_lines(printed_by([&] { EXPECT_EQ(kelvra_cmn_esim_test(4, const_cast<char**>(argv)), -1); }));
    EXPECT_EQ(text, "RIL[kelvra_cmn_esim_test:#]: invalid input\n\n");
}

TEST(EsimDeathTest, ThirdCard) {
    for (const uint8_t count : {uint8_t{3}, uint8_t{255}}) {
        platform().send = [=](const QmiRequest& request, void* response) {
            Modem modem;
            modem.card_count = count;
            return modem.answer(request, response);
        };
        const char* argv[] = {"vxk", "5", "10", "4", "1"};
        EXPECT_EXIT((dup2(2, 1), kelvra_cmn_esim_test(5, const_cast<char**>(argv))),
                    testing::KilledBySignal(SIGABRT), "SIM\\[1\\] State = 0\nvxk: fatal: card 2 ");
    }
    platform().send = nullptr;
}

}  // namespace

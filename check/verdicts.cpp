#include "verdicts.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace check {
namespace {

using Lines = std::vector<const char*>;

const Lines kFileFailed{"kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS"};
const Lines kSettingFailed{"kelvra_extend_qmi_send_sync fail, REQUEST_ID_COMMON"};
const Lines kCardFailed{"kelvra_extend_qmi_send_sync fail", "rsp.result fail"};
const Lines kData1{"data len(*)"};
const Lines kEsimFailed{"value=FAILED*"};
// A command that looks at no result: the channel says whether the request was answered.
const Lines kChannelFailed{"kelvra_extend_qmi_handle_req_cb result:-*"};
const Lines kCountersFailed{"kelvra_common_qmi_req fail*", "qmi response fail*"};
const Lines kSwitched{"success, pls wait 10 seconds "};

const char* const kCut = "a file of more than 365 bytes is read as its first 365";
const char* const kChannelAlone = "whether the modem did it: the result in its answer is not looked at";
const char* const kRestart = "whether the modem restarted: sync and restart are not looked at";

const std::vector<Row> kTable = {
    {"3 0 VALUE...",
     "set GPIO values",
     ", those of the antenna ports (changes)",
     {},
     kSettingFailed,
     kNothing,
     Proof::kConfigured,
     kChannelAlone},
    {"3 1", "read the GPIO values", "", kData1, kFileFailed, kData, Proof::kNone, kCut},
    {"3 2", "remove the GPIO values", " (changes)", {}, kFileFailed, kNothing, Proof::kUnset, ""},
    {"3 3 ANT SYS BANDS",
     "fix the transmit antenna",
     ": `ant` 0 lower, 1 upper; `sys` 0 gsm, 1 wcdma, 2 cdma, 3 tds, 4 lte; `bands` a mask, decimal, `0x` or "
     "octal (changes)",
     {},
     kSettingFailed,
     kNothing,
     Proof::kConfigured,
     kChannelAlone},
    {"3 4", "read the transmit antenna", "", kData1, kFileFailed, kData, Proof::kNone, kCut},
    {"3 5", "release the transmit antenna", " (changes)", {}, kFileFailed, kNothing, Proof::kUnset, ""},
    {"4 1 SUB NV", "read an NV item", ": `nv` 0 to 7232; at most 365 bytes of it", kData1, kFileFailed, kData,
     Proof::kNone, "an item of more than 365 bytes is read as its first 365"},
    {"4 2 SUB NV BYTE...",
     "write an NV item",
     " (changes)",
     {},
     kFileFailed,
     kNothing,
     Proof::kFileHolds,
     ""},
    {"4 3 SUB NV", "delete an NV item", " (changes)", {}, kFileFailed, kNothing, Proof::kFileGone, ""},
    {"4 4 SUB PATH", "read a file", " of the modem's EFS, at most 365 bytes of it", kData1, kFileFailed,
     kData, Proof::kNone, kCut},
    {"4 5 SUB PATH BYTE...", "write a file", " (changes)", {}, kFileFailed, kNothing, Proof::kFileHolds, ""},
    {"4 6 SUB PATH", "delete a file", " (changes)", {}, kFileFailed, kNothing, Proof::kFileGone, ""},
    {"5 0 MODE 0 TIME BYTE...",
     "send a diag command",
     " and wait `time` ms for the response: `mode` 0 callback, 1 DCI",
     {"rsp data len(*)"},
     {"kelvra_diag_cmd_send fail"},
     kData,
     Proof::kNone,
     "whether the response belongs to the command, and whether it says yes: any response counts"},
    {"5 0 MODE TYPE TIME BYTE...",
     "send a diag command and go",
     ": `type` 1 without result; the process ends at once, and the command rarely reaches the modem",
     {"done without rsp data"},
     {"kelvra_diag_cmd_send fail"},
     kNothing,
     Proof::kNone,
     "whether it was sent: the tool ends beside the thread that sends"},
    {"5 1", "ask for the card's state", ": the last byte group of the answer is 0 absent, 1 present", kData1,
     kCardFailed, kCardPresence, Proof::kNone, ""},
    {"5 2 SUB", "ask for a slot's card state", ": the last byte group of the answer is 0 absent, 1 present",
     kData1, kCardFailed, kCardPresence, Proof::kNone, ""},
    {"5 3 SUB MODE VALUE", "set a slot's level", ": `mode` 0 general, 1 sim; `value` 0 low, 1 high", kData1,
     kCardFailed, kCardAnswer, Proof::kNone, ""},
    {"5 4", "ask for the card type", ": 1 single SIM, 2 multi SIM", kData1, kCardFailed, kCardType,
     Proof::kNone, ""},
    {"5 5",
     "read the SAR DSI",
     ": the modem's SAR device state index",
     {"RIL[kelvra_get_sar_dsi:*]: dsi vailid = 1 , dsi value = *"},
     {"SAR DSI: -1", "RIL[kelvra_get_sar_dsi:*]: dsi vailid = 0 , dsi value = *"},
     kDsi,
     Proof::kNone,
     "whether the modem refused and told an index all the same: its result is not looked at"},
    {"5 6 0 ...", "stop the hot-swap test", "", kData1, kCardFailed, kCardAnswer, Proof::kNone, ""},
    {"5 6 OPT PUSH PULL COUNT", "start the hot-swap test",
     ": `opt` 1 start; `push` and `pull` the seconds to wait after each, `count` how often", kData1,
     kCardFailed, kCardAnswer, Proof::kNone, "how the test goes on: it runs in the modem"},
    {"5 10 1 DEBUG ...",
     "switch slot 2 to the eSIM",
     ": `debug` 0 the verdict alone, 1 with the log (changes)",
     {"eID=*"},
     kEsimFailed,
     kEid,
     Proof::kSameEid,
     "whether the slots were switched and the EID stored: neither result is looked at"},
    {"5 10 2 DEBUG ...",
     "switch slot 2 to the card",
     " (changes)",
     {"value=SUCCEED"},
     kEsimFailed,
     kNothing,
     Proof::kNone,
     "whether the slots were switched: the result is not looked at"},
    {"5 10 3 DEBUG ...", "read the EID", "", {"eID=*"}, kEsimFailed, kEid, Proof::kNone, ""},
    {"5 10 4 DEBUG ...",
     "ask for the states of both cards",
     "",
     {"RIL[kelvra_uim_get_card_status:*]: SIM[0] State = *"},
     {"UNKNOWN,UNKNOWN", "value=FAILED", "RIL[kelvra_uim_get_card_status:*]: send msg sync client error = *",
      "RIL[kelvra_uim_get_card_status:*]: init_uim_qmi_client failed"},
     kCardStates,
     Proof::kNone,
     "ABSENT,ABSENT is printed without an answer too, so the form with the log is run, and the log decides"},
    {"5 10 5 DEBUG ...",
     "reset the eUICC's memory",
     ", which deletes its profiles (changes)",
     {"value=SUCCEED"},
     kEsimFailed,
     kNothing,
     Proof::kNone,
     "whether there was anything to delete, without the log"},
    {"6 ID BYTE...",
     "send a raw request",
     ": `id` 0 to 5; shows whether it succeeded",
     {"kv_qmi rsp data(*"},
     {"kelvra_extend_qmi_send_sync fail"},
     kResult,
     Proof::kNone,
     "what the modem answered: the answer's bytes are never shown"},
    {"7 0 PRINT ...",
     "parse the built-in record",
     ", the parser's test of itself: `print` 0 the values alone, 1 every step",
     {"freq_band_ind = *, dl_earfcn = *"},
     {"VERSION_NOT_SUPPORT*", "MODEM_STATS_DATA_UNPK*", "UNPK_SET_BIT, pos(*"},
     kRecord,
     Proof::kNone,
     "anything of the modem: it is not asked"},
    {"7 1 0 ...",
     "check the statistics feature",
     "",
     {"================ SUCCES ==================="},
     {"================= FAIL ====================", "================ CLOSED ===================",
      "kelvra_common_qmi_req fail*", "qmi response fail*"},
     kCounters,
     Proof::kNone,
     ""},
    {"7 1 TYPE ...",
     "read the statistics counters",
     ": `type` 1 all counters",
     {"-------- stats uim info end, cnt(*) --------"},
     kCountersFailed,
     kCounters,
     Proof::kNone,
     ""},
    {"8 TEXT",
     "send an AT command",
     ": at most 100 characters, up to the first blank",
     {"Success to send at shell cmd"},
     {"Fail to send at shell cmd", "Fail to create a thread"},
     kNothing,
     Proof::kNone,
     "what the modem answers: nobody reads it"},
    {"9 OPT SUB ...",
     "read a measurement",
     " that `vxk 9` lists",
     {"ASDIV DATA: *", "ANT INFO: *"},
     {"Fail to get data*", "g_kolvo_data_left(*) is not enough for *", "kolvo qmi is not yet inited",
      "modem_api_set_kolvo_feature_status, start fail, result = *"},
     kMeasurements,
     Proof::kNone,
     "whether the values are fresh"},
    {"10 WORD MASK ...",
     "configure the modem (MBN)",
     ": `word` 0, not looked at; `mask` 1 to 3; says that its service is not there",
     {},
     {"RIL[kelvra_test_mbn_do:*]: pdc init failed, do nothing"},
     kNothing,
     Proof::kNone,
     "it always fails"},
    {"11 0 ...", "restart the modem", "", {}, kChannelFailed, kNothing, Proof::kNone, kChannelAlone},
    {"11 1 ...",
     "take a full dump",
     " by crashing it, and leave it so (changes)",
     {},
     kChannelFailed,
     kNothing,
     Proof::kNone,
     kChannelAlone},
    {"11 2 ...", "sync the NV items", "", {}, kChannelFailed, kNothing, Proof::kNone, kChannelAlone},
    {"11 3 OPT ...",
     "switch the application's print",
     ": `opt` 0 off, 1 on (changes)",
     {"success, need to reboot"},
     {},
     kNothing,
     Proof::kNone,
     "whether the property was set"},
    {"11 4|5|6 OPT ...",
     "switch a print of the modem",
     ": 4 statistics, 5 QMI, 6 RF; `opt` 0 off, 1 on; restarts the modem (changes)",
     kSwitched,
     {"kelvra_efs_write failed", "kelvra_efs_delete failed"},
     kNothing,
     Proof::kSwitched,
     kRestart},
};

// A word of a row: a number, numbers with bars between them, or capitals.
bool word_fits(const std::string& pattern, const std::string& word) {
    if (isdigit(static_cast<unsigned char>(pattern[0])) == 0)
        return true;
    std::istringstream choices(pattern);
    for (std::string choice; getline(choices, choice, '|');)
        if (number_of(word) == number_of(choice))
            return true;
    return false;
}

bool row_fits(const Row& row, const std::vector<std::string>& words) {
    std::istringstream patterns(row.words);
    size_t at = 0;
    for (std::string pattern; patterns >> pattern; ++at) {
        if (pattern == "...")
            return true;
        if (at == words.size() || !word_fits(pattern, words[at]))
            return pattern == "VALUE..." && at == words.size();
        if (pattern.size() > 3 && pattern.compare(pattern.size() - 3, 3, "...") == 0)
            return true;
    }
    return at == words.size();
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '|' ? std::string("\\|") : std::string(1, c);
    return result;
}

std::string code_list(const Lines& lines) {
    std::string result;
    for (const char* line : lines)
        result += (result.empty() ? "`" : ", `") + escaped(line) + "`";
    return result;
}

}  // namespace

const std::vector<Row>& verdict_table() {
    return kTable;
}

const Row* find_row(const std::vector<std::string>& words) {
    for (const Row& row : kTable)
        if (row_fits(row, words))
            return &row;
    return nullptr;
}

const std::vector<const char*>& refusals() {
    static const Lines kRefusals{
        "Not support",
        "note: Too few *",
        "note: need *",
        "note: Cmd error, should be: *",
        "note: The number of inputs *",
        "note: the first parameters *",
        "note: the second parameters*",
        "note: sub_mask(*) is invalid:",
        "note: opt(*) is invalid:",
        "invalid par_i = *",
        "invalid type = *",
        "kelvra_test_qmi_modem_stats_hdl: Unknown opt(*",
        "modem_api_get_stats_parameter, sub(*) is invalid",
        "RIL[kelvra_cmn_esim_test:*]: invalid input*",
        "RIL[kelvra_nv_*]: nv_id is out range(*)",
        "RIL[kelvra_efs_*]: len invalid",
        "RIL[kelvra_diag_comand_input_check:*]: Invalid input parameter, *",
    };
    return kRefusals;
}

std::string proof_words(const Row& row) {
    const std::string words = row.words;
    switch (row.proof) {
        case Proof::kNone:
            return {};
        case Proof::kFileHolds:
        case Proof::kFileGone:
            return words.find("NV") != std::string::npos ? "4 1 SUB NV" : "4 4 SUB PATH";
        case Proof::kConfigured:
            return words[2] == '0' ? "3 1" : "3 4";
        case Proof::kUnset:
            return words[2] == '2' ? "3 1" : "3 4";
        case Proof::kSameEid:
            return "5 10 3 1";
        case Proof::kSwitched:
            return "4 4 0 PATH";
    }
    return {};
}

nlohmann::ordered_json row_json(const Row& row) {
    const std::string proof = proof_words(row);
    return {
        {"words", row.words},
        {"does", row.does},
        {"success", row.success},
        {"failure", row.failure},
        {"values", row.values.names},
        {"verify", proof.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(proof)},
        {"unknown", row.unknown},
    };
}

std::string verdict_table_markdown() {
    std::string text =
        "| `vxk` | what it does | success | failure | values | proof | what it cannot tell "
        "|\n|---|---|---|---|---|---|---|\n";
    for (const Row& row : kTable) {
        const std::string proof = proof_words(row);
        text += "| `" + escaped(row.words) + "` | " + row.does + " | " +
                (row.success.empty() ? "no failure line" : code_list(row.success)) + " | " +
                code_list(row.failure) + " | " + row.values.names + " | " +
                (proof.empty() ? "" : "`" + proof + "`") + " | " + row.unknown + " |\n";
    }
    return text;
}

int number_of(const std::string& word) {
    const long value = strtol(word.c_str(), nullptr, 10);
    return value < INT_MIN ? INT_MIN : value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

}  // namespace check

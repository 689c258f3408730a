// The statistics session and its measurements, and the SAR query, against a scripted modem.
#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <sstream>

#include "group9_session.h"
#include "groups.h"
#include "modem_api.h"
#include "platform_test.h"
#include "sar_v01.h"

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Bytes = std::vector<uint8_t>;

class Stats : public PlatformTest {
protected:
    Stats() {
        g_kolvo_req_number = 0;
        g_kolvo_client_id = -1;
        platform().send = [this](const QmiRequest& request, void* response) {
            if (request.message == VS_FEATURE_V01)
                return feature_error;
            auto* answer = static_cast<vs_statistics_resp_msg_v01*>(response);
            vs_statistics_req_msg_v01 asked{};
            EXPECT_EQ(request.bytes.size(), sizeof asked);
            memcpy(&asked, request.bytes.data(), sizeof asked);
            answer->entries_valid = 1;
            answer->entry_count = 1;
            answer->entries[0].sub = asked.sub;
            answer->entries[0].id = asked.entries[0].id;
            answer->entries[0].value_len = static_cast<uint32_t>(value.size());
            std::copy(value.begin(), value.end(), answer->entries[0].value);
            if (spoil)
                spoil(answer);
            return fetch_error;
        };
    }

    static std::string run(const std::string& line) {
        return printed_by([&] { EXPECT_EQ(run_line(kelvra_test_qmi_modem_stats_do, line), 0); });
    }

    static std::vector<QmiRequest> fetches() {
        std::vector<QmiRequest> found;
        for (const QmiRequest& request : platform().requests)
            if (request.message == VS_STATISTICS_V01)
                found.push_back(request);
        return found;
    }

    int feature_error = 0;
    int fetch_error = 0;
    Bytes value = Bytes(20);
    std::function<void(vs_statistics_resp_msg_v01*)> spoil;
};

TEST_F(Stats, WholeSession) {
    EXPECT_EQ(run("9 7 1"),
              "opt = 7, sub = 1, g_kolvo_client_id = 0\n"
              "Success to get data, number = 1, sub = 1, ret id_num = 1, id = 94, data_len = 20\n"
              "ASDIV DATA: rssi_rx0: 0.00, rssi_rx1: 0.00, rssi_rx2: 0.00, rssi_rx3: 0.00\n");
    EXPECT_THAT(run("9 7 0"), HasSubstr("number = 2, sub = 0"));
    ASSERT_EQ(platform().requests.size(), 4U);
    const QmiRequest& feature = platform().requests[0];
    EXPECT_EQ(feature.bytes, (Bytes{2, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(std::make_pair(feature.response_len, feature.timeout_ms), std::make_pair(8U, 30000U));
    const QmiRequest& fetch = platform().requests[1];
    EXPECT_EQ(std::make_pair(fetch.response_len, fetch.timeout_ms), std::make_pair(7136U, 30000U));
    EXPECT_EQ(Bytes(fetch.bytes.begin(), fetch.bytes.begin() + 20),
              (Bytes{1, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 94, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(platform().requests[3].bytes[2], 2);  // the next number
    EXPECT_EQ(platform().releases, 2);
    EXPECT_EQ(g_kolvo_client_id, -1);

    std::string text;  // 30 bytes as " 00", cut by 89 characters
    for (int i = 0; i < 29; ++i)
        text += " 00";
    EXPECT_THAT(platform().android_log,
                Contains("3 KOLVO modem_api_get_stats_parameter: ids[0] = 94, value_len = 0, "
                         "type = 0, value: " +
                         text + " 0"));
    EXPECT_THAT(platform().android_log, Contains("3 KOLVO modem_api_set_kolvo_feature_status: result 0"));
}

TEST_F(Stats, RefusedAnswers) {
    const struct {
        uint32_t result;
        uint8_t valid;
        uint32_t count, id;
        uint16_t sub;
        uint32_t len;
        const char* problem;
        const char* kept;  // entries, where the line names them
    } cases[] = {
        {1, 1, 1, 112, 0, 20, "data fail, number = 1, ret = 8, sub = 0", ""},
        {0, 0, 1, 112, 0, 20, "data fail, number = 1, ret = 1, sub = 0", ""},
        {0, 1, 0, 112, 0, 20, "data, empty, number = 1, sub = 0", "0"},
        {0, 1, 2, 112, 0, 20, "data, id num error, number = 1, sub = 0", "2"},
        {0, 1, ~0U, 112, 0, 20, "data, id num error, number = 1, sub = 0", "10"},
        {0, 1, 1, ~0U, 0, 20, "data, ret_id(-1) is invalid, number = 1, sub = 0", "1"},
        {0, 1, 1, 112, 1, 20, "data, ret_sub(1) is invalid, number = 1, sub = 0", "1"},
        {0, 1, 1, 112, 0, 0, "data, data_len(0) is invalid, should be in (0, 700], number = 1, sub = 0", "1"},
        {0, 1, 1, 112, 0, 701, "data, data_len(701) is invalid, should be in (0, 700], number = 1, sub = 0",
         "1"},
        {0, 1, 1, 112, 0, ~0U, "data, data_len(-1) is invalid, should be in (0, 700], number = 1, sub = 0",
         "1"},
    };
    for (const auto& c : cases) {
        g_kolvo_req_number = 0;
        spoil = [&](vs_statistics_resp_msg_v01* answer) {
            answer->resp = {c.result, 52};
            answer->entries_valid = c.valid;
            answer->entry_count = c.count;
            answer->entries[0].id = c.id;
            answer->entries[0].sub = c.sub;
            answer->entries[0].value_len = c.len;
        };
        const std::string kept = *c.kept == '\0' ? "" : std::string(", ret id_num = ") + c.kept;
        EXPECT_EQ(run("9 8 0"), "opt = 8, sub = 0, g_kolvo_client_id = 0\nFail to get " +
                                    std::string(c.problem) + kept + ", id = 112\n");
    }
    spoil = [](auto* answer) { *answer = {}; };
    for (const int error :
         {-2, -3}) {  // the service goes away behind the feature request, or does not answer
        fetch_error = error;
        EXPECT_THAT(run("9 8 0"), HasSubstr(error == -2 ? "ret = 1," : "ret = 11,"));
    }
}

TEST_F(Stats, NothingIsFetched) {
    EXPECT_EQ(run("9 0 2"),
              "opt = 0, sub = 2, g_kolvo_client_id = 0\nmodem_api_get_stats_parameter, sub(2) is invalid\n");
    EXPECT_THAT(run("9 0 -1"), HasSubstr("modem_api_get_stats_parameter, sub(-1) is invalid\n"));
    for (const int opt : {-1, 13, 19, 22, 29, 31})
        EXPECT_THAT(
            run("9 " + std::to_string(opt) + " 0"),
            HasSubstr("kelvra_test_qmi_modem_stats_hdl: Unknown opt(" + std::to_string(opt) + "), sub(0)\n"));
    EXPECT_THAT(run("9 7"),
                StartsWith("\nnote: Too few parameters, Pls refer to the following cmd:\n\n====="));
    EXPECT_TRUE(fetches().empty());

    feature_error = -3;
    EXPECT_THAT(run("9 7 0"),
                StartsWith("modem_api_set_kolvo_feature_status, start fail, result = 11\nopt = 7"));
    EXPECT_EQ(fetches().size(), 1U);

    platform().client_init_instance = [](uint32_t, qmi_client_type*) { return -3; };
    platform().sleeps.clear();
    EXPECT_EQ(run("9 7 0"),
              "modem_api_set_kolvo_feature_status, start fail, result = 7\n"
              "opt = 7, sub = 0, g_kolvo_client_id = -1\n"
              "kolvo qmi is not yet inited\n");
    EXPECT_EQ(platform().sleeps.size(), 9U);
    EXPECT_THAT(
        platform().android_log,
        Contains("6 KOLVO modem_api_set_kolvo_feature_status: Unexpected condition, return error 7!"));
}

TEST_F(Stats, RequestNumbersDoNotWrap) {
    g_kolvo_req_number = INT32_MAX;
    EXPECT_EXIT(run_line(kelvra_test_qmi_modem_stats_do, "9 7 0"), testing::KilledBySignal(SIGABRT),
                "vxk: fatal: .*2147483647");
}

// The records as the modem sends them, a field as name:width (f: a float), and the line of each with "#" for
// every printed number.
const struct {
    std::vector<std::pair<int, int>> ids;  // opt, data id
    const char* fields;
    const char* line;
} kMeasurements[] = {
    {{{0, 82}, {1, 103}, {2, 104}, {3, 105}, {4, 106}, {5, 107}, {6, 108}},
     "version:1 version_ssmr:1 earfcn:4 pci:2 is_srv_cell:1 rx_valid:2 rsrp_rx0:f rsrq_rx0:f rssi_rx0:f "
     "snr_rx0:f "
     "rsrp_rx1:f rsrq_rx1:f rssi_rx1:f snr_rx1:f rsrp_rx2:f rsrq_rx2:f rssi_rx2:f snr_rx2:f "
     "rsrp_rx3:f rsrq_rx3:f rssi_rx3:f snr_rx3:f",
     "ASDIV DATA: earfcn: #, pci: #, rx_valid: #, rsrp_rx0: #, rsrq_rx0: #, rssi_rx0: #, snr_rx0: #, "
     "rsrp_rx1: #, "
     "rsrq_rx1: #, rssi_rx1: #, snr_rx1: #, rsrp_rx2: #, rsrq_rx2: #, rssi_rx2: #, snr_rx2: #, rsrp_rx3: #, "
     "rsrq_rx3: #, rssi_rx3: #, snr_rx3: #\n"},
    {{{7, 94}},
     "version:4 rssi0:f rssi1:f rssi2:f rssi3:f",
     "ASDIV DATA: rssi_rx0: #, rssi_rx1: #, rssi_rx2: #, rssi_rx3: #\n"},
    {{{8, 112}},
     "version:4 snr0:f snr1:f snr2:f snr3:f",
     "ASDIV DATA: snr_rx0: #, snr_rx1: #, snr_rx2: #, snr_rx3: #\n"},
    {{{9, 113}},
     "version:4 ant_rx_0_old:1 ant_rx_0_new:1 ant_rx_1_old:1 ant_rx_1_new:1 ant_rx_2_old:1 ant_rx_2_new:1 "
     "ant_rx_3_old:1 ant_rx_3_new:1 ant_tx_0_old:1 ant_tx_0_new:1 ant_tx_1_old:1 ant_tx_1_new:1",
     "ASDIV DATA: ant_rx_0_old = #, ant_rx_0_new = #, ant_rx_1_old = #, ant_rx_1_new = #, ant_rx_2_old = #, "
     "ant_rx_2_new = #, ant_rx_3_old = #, ant_rx_3_new = #, ant_tx_0_old = #, ant_tx_0_new = #, ant_tx_1_old "
     "= #, "
     "ant_tx_1_new = #\n"},
    {{{10, 135}, {11, 6}, {12, 7}},
     "version:4 rsrp_rx0:f rsrp_rx1:f rsrp_rx2:f rsrp_rx3:f rsrq:f",
     "ASDIV DATA: rsrp_rx0: #, rsrp_rx1: #, rsrp_rx2: #, rsrp_rx3: #, rsrq: #\n"},
    {{{20, 110}}, "version:1 rx_agc_0:f rx_agc_1:f", "ASDIV DATA: rx_agc_0: #, rx_agc_1: #\n"},
    {{{21, 111}}, "version:1 rx_prx:f rx_drx:f", "ASDIV DATA: rx_prx: #, rx_drx: #\n"},
    {{{30, 100}},
     "version:1 ant_number:1 ant_switch_path:2 sig_path:2 old_config:1 new_config:1",
     "ANT INFO: ant_num: #, ant_path: #, sig_path: #, old_config: #, new_config: #\n"},
};

std::string hex(int number) {
    std::ostringstream text;
    text << "0x" << std::hex << number;
    return text.str();
}

void append(Bytes* bytes, uint64_t number, size_t width) {
    for (size_t i = 0; i < width; ++i)
        bytes->push_back(static_cast<uint8_t>(number >> 8 * i));
}

void append(Bytes* bytes, float number) {
    uint32_t bits;
    memcpy(&bits, &number, sizeof bits);
    append(bytes, bits, 4);
}

// A value with another number in each field.
struct Packed {
    Bytes bytes;
    std::vector<std::pair<std::string, size_t>> ends;  // of each field, by name
    std::string line;

    Packed(const std::string& fields, std::string printed) : line(std::move(printed)) {
        std::istringstream words(fields);
        int n = 200;
        for (std::string field; words >> field;) {
            const char kind = field.back();
            field.resize(field.size() - 2);
            std::string number = std::to_string(++n);
            if (kind == 'f') {
                append(&bytes, static_cast<float>(-n) - 0.25F);
                number.insert(0, "-").append(".25");
            } else {
                append(&bytes, static_cast<uint64_t>(n), static_cast<size_t>(kind - '0'));
            }
            ends.emplace_back(field, bytes.size());
            if (field != "version" && field != "version_ssmr" && field != "is_srv_cell")
                line.replace(line.find('#'), 1, number);
        }
    }
};

// Every value whole, with bytes behind it, and cut at each byte.
TEST_F(Stats, EveryMeasurementAtEveryLength) {
    for (const auto& m : kMeasurements)
        for (const auto& [opt, id] : m.ids) {
            const Packed packed(m.fields, m.line);
            const std::string command = "9 " + std::to_string(opt) + " 1";
            value = packed.bytes;
            EXPECT_THAT(run(command), EndsWith("id = " + std::to_string(id) + ", data_len = " +
                                               std::to_string(value.size()) + "\n" + packed.line));
            EXPECT_EQ(fetches().back().bytes[0], opt == 30 ? 0 : 1);
            value.resize(value.size() + 7, 0xEE);
            EXPECT_THAT(run(command), EndsWith(packed.line));

            size_t field = 0;
            for (size_t length = 1; length < packed.bytes.size(); ++length) {
                if (packed.ends[field].second <= length)
                    ++field;
                value = packed.bytes;
                value.resize(length);
                const size_t left = length - (field == 0 ? 0 : packed.ends[field - 1].second);
                EXPECT_THAT(run(command),
                            EndsWith(", data_len = " + std::to_string(length) + "\ng_kolvo_data_left(" +
                                     std::to_string(left) + ") is not enough for " +
                                     packed.ends[field].first + ", id(" + hex(id) + ")\n"));
            }
        }
}

TEST_F(Stats, NumbersAtTheirEdges) {
    value.clear();
    append(&value, 1, 4);
    append(&value, std::numeric_limits<float>::quiet_NaN());
    append(&value, -std::numeric_limits<float>::infinity());
    append(&value, std::numeric_limits<float>::max());
    append(&value, -0.0F);
    EXPECT_THAT(run("9 8 0"),
                HasSubstr("snr_rx0: nan, snr_rx1: -inf, snr_rx2: 340282346638528859811704183484516925440."
                          "00, snr_rx3: -0.00\n"));
    value.assign(75, 0xFF);
    EXPECT_THAT(run("9 0 0"),
                HasSubstr("ASDIV DATA: earfcn: -1, pci: 65535, rx_valid: 65535, rsrp_rx0: -nan, "));
}

TEST_F(Stats, SarDsi) {
    const struct {
        int init_error;
        int send_error;
        uint8_t valid;
        uint32_t dsi;
        const char* printed;
    } cases[] = {
        {0, 0, 1, 7, "RIL[kelvra_get_sar_dsi:#]: dsi vailid = 1 , dsi value = 7\n@SAR DSI: 7\n"},
        {0, 0, 0, 0x80000000,
         "RIL[kelvra_get_sar_dsi:#]: dsi vailid = 0 , dsi value = -2147483648\n@SAR DSI: -2147483648\n"},
        {-3, 0, 1, 7,
         "RIL[kelvra_get_sar_dsi:#]: qmi_client_init_instance failed, qmi_client_error = -3\n@SAR DSI: -1\n"},
        {0, -2, 1, 7,
         "RIL[kelvra_get_sar_dsi:#]: qmi_client_send_msg_sync failed, qmi_client_error = -2\n@SAR DSI: -1\n"},
    };
    for (const auto& c : cases) {
        platform().requests.clear();
        platform().client_init_instance = [&](uint32_t, qmi_client_type*) { return c.init_error; };
        platform().send = [&](const QmiRequest& request, void* response) {
            EXPECT_EQ(std::make_tuple(request.message, request.response_len, request.timeout_ms),
                      std::make_tuple(2U, 40U, 30000U));
            EXPECT_TRUE(request.bytes.empty());
            auto* rsp = static_cast<sar_get_dsi_resp_msg_v01*>(response);
            rsp->resp = {1, 3};  // not looked at
            rsp->dsi_valid = c.valid;
            rsp->dsi = c.dsi;
            return c.send_error;
        };
        std::string expected =
            std::string("RIL[kelvra_get_sar_dsi:#]: function entry ------------->\n") + c.printed;
        expected.replace(expected.find('@'), 1, "RIL[kelvra_get_sar_dsi:#]: function exit <-------------\n");
        EXPECT_EQ(mask_lines(printed_by([] { run_line(kelvra_test_cmn_do, "5 5"); })), expected);
    }
    EXPECT_EQ(platform().releases, 0);
}

}  // namespace

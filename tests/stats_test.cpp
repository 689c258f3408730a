// The statistics session, and every measurement of every length.
#include <gmock/gmock.h>

#include <cstring>
#include <sstream>

#include "group9_session.h"
#include "groups.h"
#include "modem_api.h"
#include "platform_test.h"

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;

using Bytes = std::vector<uint8_t>;

class Stats : public PlatformTest {
protected:
    Stats() {
        g_kolvo_req_number = 0;
        g_kolvo_client_id = -1;
        platform().send = [this](const QmiRequest& request, void* response) {
            if (request.message == VS_FEATURE_V01)
                return 0;
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
            return 0;
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

    Bytes value = Bytes(20);
};

TEST_F(Stats, SessionStartsAnew) {
    platform().properties["persist.kolvo.mem_trace"] = "1";
    EXPECT_EQ(kelvra_qmi_modem_stats_api_init(), 0);
    EXPECT_EQ(kelvra_qmi_modem_stats_api_init(), 0) << "the client before is gone";
    EXPECT_EQ(platform().releases, 1);
    EXPECT_THAT(platform().android_log, Contains(StartsWith("4 KOLVO modem_api_release: function exit")));
    EXPECT_EQ(g_kolvo_client_id, 0);
    KolvoValue fetched;
    printed_by([&] {
        EXPECT_EQ(kelvra_test_qmi_modem_stats_get(1, 94, &fetched), 0);
        EXPECT_EQ(kelvra_test_qmi_modem_stats_get(1, 94, &fetched), 0);
    });
    EXPECT_EQ(platform().requests.back().bytes[2], 2) << "the next number";
    EXPECT_EQ(kelvra_qmi_modem_stats_api_deinit(), 0);
    EXPECT_EQ(platform().releases, 2);
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

}  // namespace

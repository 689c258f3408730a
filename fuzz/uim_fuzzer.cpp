// The requests to the UIM service and the commands that are made of them, several in one process, so that a
// client that was lost is recovered: `u8 call, u8 argument` and the modem's records for each.
#include <cstring>

#include "finding.h"
#include "group5_esim.h"
#include "kelvra_uim_requests.h"
#include "modem.h"

namespace {

void set_power(Input& input, uint8_t argument) {
    const KelvraUimPowerRequest request = {argument & 1U, argument, input.u8()};
    kelvra_uim_request_uicc_power_ex(&request);
}

void get_eid(Input&, uint8_t argument) {
    uint8_t eid[kEidLen];
    kelvra_uim_request_eid(&argument, eid);
}

void get_card_status(Input&, uint8_t) {
    int8_t states[kCardSlots];
    kelvra_uim_get_card_status(states);
}

void open_channel(Input&, uint8_t argument) {
    uint8_t channel = 0;
    kelvra_uim_open_channel(argument, &channel);
}

void send_apdu(Input& input, uint8_t argument) {
    KelvraUimApdu apdu = {argument, input.u8(), 0, {}};
    const std::vector<uint8_t> bytes = input.short_block();
    apdu.length = static_cast<uint8_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), apdu.bytes);
    KelvraUimApduResponse response = {};
    kelvra_uim_send_apdu(&apdu, &response);
    require(response.length <= kApduResponseMax, "an APDU response is cut to what is kept");
}

void close_channel(Input& input, uint8_t argument) {
    kelvra_uim_close_channel(argument, input.u8());
}

void test_esim(Input&, uint8_t argument) {
    std::string words[] = {"vxk", "5", "1", std::to_string(argument % 7), std::to_string(argument & 1)};
    char* argv[std::size(words) + 1] = {};
    for (size_t i = 0; i < std::size(words); ++i)
        argv[i] = words[i].data();
    kelvra_cmn_esim_test(std::size(words), argv);
}

constexpr void (*kCalls[])(Input&, uint8_t argument) = {
    set_power, get_eid, get_card_status, open_channel, send_apdu, close_channel, test_esim,
};

constexpr int kCallsMax = 8;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    run_tool(input, [&] {
        for (int i = 0; i < kCallsMax && !input.empty(); ++i) {
            const auto call = kCalls[input.u8() % std::size(kCalls)];
            call(input, input.u8());
        }
    });
    return 0;
}

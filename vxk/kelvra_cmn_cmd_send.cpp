#include "kelvra_cmn_cmd_send.h"

#include "fatal.h"
#include "hex_dump.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_log.h"
#include "little_endian.h"

namespace {

constexpr uint32_t kValueMax = 491;
constexpr int kDumpMax = 500;
constexpr int kFailed = -3;

int fail(int result) {
    kelvra_puts("kelvra_extend_qmi_send_sync fail");
    return result;
}

}  // namespace

int kelvra_cmn_cmd_send(int t, uint32_t l, const char* v) {
    kelvra_printf("kelvra_cmn_cmd_send, t: %d, l: %d\n", t, l);
    const uint32_t value_len = v == nullptr || l > kValueMax ? 0 : l;
    uint8_t rsp[kCommonResponseMax];
    uint32_t arrived = 0;
    const int result = kelvra_common_value_exchange(static_cast<uint32_t>(t), value_len, v, rsp, &arrived);
    const int rsp_result = get_le<int>(rsp + kCommonResultOffset);
    kelvra_printf("result = %d, rsp.result = %d\n", result, rsp_result);
    if (result != 0)
        return fail(result);
    if (arrived < kCommonEchoOffset)
        return fail(kFailed);
    if (rsp_result != 0) {
        kelvra_puts("rsp.result fail");
        return result;
    }
    if (arrived < kCommonValueOffset)
        return fail(kFailed);

    // The echo word and the length word itself are dumped with the value.
    constexpr int kExtra = 8;
    const int length = get_le<int>(rsp + kCommonLengthOffset);
    if (length > kDumpMax - kExtra)
        vxk_fatal("response dump of %lld bytes, at most %d are printed", length + 8LL, kDumpMax);
    if (length >= -kExtra && length < 0)
        vxk_fatal("response length word %d", length);
    const int dumped = length + kExtra;
    if (dumped > 0 && kCommonEchoOffset + static_cast<uint32_t>(dumped) > arrived)
        return fail(kFailed);
    kelvra_printf("\ndata len(%d)\ndata:", dumped);
    print_hex_line(rsp + kCommonEchoOffset, dumped > 0 ? static_cast<size_t>(dumped) : 0);
    return 0;
}

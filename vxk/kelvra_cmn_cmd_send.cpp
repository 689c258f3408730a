#include "kelvra_cmn_cmd_send.h"

#include "fatal.h"
#include "hex_dump.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_log.h"

namespace {

constexpr uint32_t kValueMax = 491;
constexpr int kDumpMax = 500;
// The echo word and the length word itself are dumped with the value.
constexpr int kExtra = CommonResponse::kValueAt - CommonResponse::kEchoAt;

// A length that makes no sense at all, wherever the bytes end.
bool has_senseless_length(const CommonResponse& rsp) {
    const int length = rsp.length_word();
    return rsp.result() == 0 && (length > kDumpMax - kExtra || (length >= -kExtra && length < 0));
}

// Below the senseless lengths nothing is dumped, and nothing need be there.
bool is_readable(const CommonResponse& rsp) {
    return rsp.is_whole() || (rsp.result() == 0 && rsp.length_word() < -kExtra);
}

}  // namespace

int kelvra_cmn_cmd_send(int t, uint32_t l, const char* v) {
    kelvra_printf("kelvra_cmn_cmd_send, t: %d, l: %d\n", t, l);
    const uint32_t value_len = v == nullptr || l > kValueMax ? 0 : l;
    CommonResponse rsp;
    int result = kelvra_common_value_exchange(static_cast<uint32_t>(t), value_len, v, &rsp);
    const bool senseless = has_senseless_length(rsp);
    if (result == kExtendOk && !senseless && !is_readable(rsp))
        result = kChannelFailed;
    kelvra_printf("result = %d, rsp.result = %d\n", result, rsp.result());
    if (result != 0) {
        kelvra_puts("kelvra_extend_qmi_send_sync fail");
        return result;
    }
    if (rsp.result() != 0) {
        kelvra_puts("rsp.result fail");
        return result;
    }
    const int length = rsp.length_word();
    if (senseless && length > 0)
        vxk_fatal("response dump of %lld bytes, at most %d are printed", length + 0LL + kExtra, kDumpMax);
    if (senseless)
        vxk_fatal("response length word %d", length);
    print_data("data:", rsp.bytes + CommonResponse::kEchoAt, length + kExtra);
    return 0;
}

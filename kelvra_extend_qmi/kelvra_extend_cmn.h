// The extension channel: one generic request and response of a vendor QMI service, by which NV items,
// files and maintenance commands reach the modem. The connection is made at the first exchange and kept
// for the process.
#pragma once

#include <cstdint>

#include "qmi_client.h"

/// The most payload bytes of one exchange.
constexpr uint32_t kExtendPayloadMax = 512;

/// Request ids with a meaning of their own.
constexpr uint32_t REQUEST_ID_NV_EFS = 2;
constexpr uint32_t REQUEST_ID_COMMON = 4;

/// What a common request takes for its response, in bytes.
constexpr uint32_t kCommonResponseMax = 508;

/// The response to a common request, which is not to be trusted: its bytes, zero behind what arrived, and how
/// to read them.
///   0 u32   4 i32 result, 0 success   8 u32 echo word   12 i32 bytes of the value   16 value
struct CommonResponse {
    static constexpr uint32_t kResultAt = 4;
    static constexpr uint32_t kEchoAt = 8;
    static constexpr uint32_t kLengthAt = 12;
    static constexpr uint32_t kValueAt = 16;

    uint8_t bytes[kCommonResponseMax] = {};
    uint32_t arrived = 0;

    /// The modem's result; 0 when it did not arrive.
    int32_t result() const;
    /// The length word as it came; 0 when it did not arrive.
    int32_t length_word() const;
    /// Whether a result arrived and, where it is 0, a value of the length that the header tells, at least
    /// `needed` bytes.
    bool is_whole(uint32_t needed = 0) const;

    /// The value and its length, of a response that is whole.
    const uint8_t* value() const { return bytes + kValueAt; }
    uint32_t value_len() const { return static_cast<uint32_t>(length_word()); }
};

/// The most bytes of a value in the type-length-value form.
constexpr uint32_t kCommonValueMax = kExtendPayloadMax - 16;

/// The channel's results.
constexpr int kExtendOk = 0;
constexpr int kExtendBadArgument = -1;
constexpr int kExtendNoClient = -2;
constexpr int kExtendFailed = -3;

/// One exchange. Sends data_len bytes (at most 512); *rsp_len is the capacity of rsp_buf (at most 512) and
/// becomes the number of bytes copied there: a longer response is cut. The first call waits, without limit,
/// for the service to be published. Returns one of the results above. Any thread; exchanges are serialised.
int kelvra_extend_qmi_send_sync(uint32_t request_id, const uint8_t* data, int data_len, void* rsp_buf,
                                uint32_t* rsp_len);

/// Prints what the service indicates; on the QMI library's thread.
void kelvra_extend_qmi_ind_cb(qmi_client_type handle, unsigned int msg_id, void* buf, unsigned int buf_len,
                              void* cb_data);

/// A common request that is only a code. Returns the channel's result.
int kelvra_common_qmi_req(uint32_t type, CommonResponse* rsp);

/// A common request with a value: code t, l bytes at v (null only when l is 0), at most kCommonValueMax.
/// Returns the channel's result.
int kelvra_send_common_qmi_msg(uint32_t t, uint32_t l, const void* v, CommonResponse* rsp);

/// The exchange of kelvra_send_common_qmi_msg without its log lines; v and rsp are not null.
int kelvra_common_value_exchange(uint32_t t, uint32_t l, const void* v, CommonResponse* rsp);

/// The tool's codes for the channel's results.
constexpr int kChannelBadArgument = -101;
constexpr int kChannelNoClient = -102;
constexpr int kChannelFailed = -103;

/// The tool's code for a channel result: one of the codes above for a failure; every other
/// value is unchanged.
int kelvra_qmi_result_map(int result);

// The extension channel: one generic request and response of a vendor QMI service, by which NV items, files
// and maintenance commands reach the modem. The connection is made at the first exchange and kept for the
// process.
#pragma once

#include <cstdint>

#include "qmi_client.h"

/// The most payload bytes of one exchange.
constexpr uint32_t kExtendPayloadMax = 512;

/// Request ids with a meaning of their own.
constexpr uint32_t REQUEST_ID_NV_EFS = 2;
constexpr uint32_t REQUEST_ID_COMMON = 4;

/// What a common request takes for its response, in bytes; its first 16 are the header.
constexpr uint32_t kCommonResponseMax = 508;

/// Where a common response keeps what.
constexpr uint32_t kCommonResultOffset = 4;   // u32, 0 success
constexpr uint32_t kCommonEchoOffset = 8;     // u32
constexpr uint32_t kCommonLengthOffset = 12;  // u32, bytes of the value
constexpr uint32_t kCommonValueOffset = 16;

/// The most bytes of a value in the type-length-value form.
constexpr uint32_t kCommonValueMax = kExtendPayloadMax - 16;

/// One exchange. Sends data_len bytes (at most 512); *rsp_len is the capacity of rsp_buf (at most 512) and
/// becomes the number of bytes copied there: a longer response is cut. The first call waits, without limit,
/// for the service to be published. Returns 0, -1 for bad arguments, -2 when no client could be made, -3 when
/// the exchange failed. Any thread; exchanges are serialised.
int kelvra_extend_qmi_send_sync(uint32_t request_id, const uint8_t* data, int data_len, void* rsp_buf,
                                uint32_t* rsp_len);

/// Prints what the service indicates; on the QMI library's thread.
void kelvra_extend_qmi_ind_cb(qmi_client_type handle, unsigned int msg_id, void* buf, unsigned int buf_len,
                              void* cb_data);

/// A common request that is only a code. `rsp` holds kCommonResponseMax bytes: its header is zeroed first,
/// what lies behind a shorter response stays as it was. *arrived, where given, becomes the number of bytes
/// that arrived, on success. Returns the channel's result, -1 for a null rsp.
int kelvra_common_qmi_req(uint32_t type, void* rsp, uint32_t* arrived = nullptr);

/// A common request with a value: code t, l bytes at v (null only when l is 0), at most kCommonValueMax.
/// `rsp` holds kCommonResponseMax bytes, zeroed first. Returns the channel's result, -1 for bad arguments.
int kelvra_send_common_qmi_msg(uint32_t t, uint32_t l, const void* v, void* rsp);

/// The exchange of kelvra_send_common_qmi_msg without its log lines and checks; the arguments are good. Adds
/// *rsp_len, the number of bytes that arrived.
int kelvra_common_value_exchange(uint32_t t, uint32_t l, const void* v, void* rsp, uint32_t* rsp_len);

/// The tool's codes for the channel's results.
constexpr int kChannelBadArgument = -101;
constexpr int kChannelNoClient = -102;
constexpr int kChannelFailed = -103;

/// The tool's code for a channel result: the codes above for -1, -2 and -3; every other value is unchanged.
int kelvra_qmi_result_map(int result);

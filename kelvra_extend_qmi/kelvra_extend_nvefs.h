// NV items and EFS files of the modem, over the extension channel. sub_id is the subscription, 0 or 1 (of an
// NV item: any other value counts as 1). A file travels in chunks, one transfer at a time. Any thread.
// Results are 0 for success, the mapped channel codes -101 to -103, the codes below, or the modem's own
// non-zero result.
#pragma once

#include <cstdint>

constexpr int kEfsSubInvalid = -104;
constexpr int kEfsPathNull = -105;
constexpr int kEfsPathLenInvalid = -106;
constexpr int kEfsBufNull = -107;
constexpr int kEfsBufLenInvalid = -108;
constexpr int kNvIdOutOfRange = -109;

/// The longest path, in characters without a terminating zero.
constexpr int kEfsPathMax = 71;
/// A file that is read or written in one operation is shorter than this.
constexpr uint32_t kEfsFileLimit = 102410;
/// The highest NV item number, and the longest item that is written.
constexpr int kNvIdMax = 7232;
constexpr uint32_t kNvItemMax = 365;

/// Reads a file into `buf`. *buf_len is its capacity and becomes the number of bytes read, also on a failure;
/// a longer file is cut to the capacity, with result 0. `path` has path_len characters and needs no
/// terminating zero.
int kelvra_efs_read(int sub_id, const char* path, int path_len, uint8_t* buf, uint32_t* buf_len);

/// Replaces a file with buf_len bytes, fewer than kEfsFileLimit. The modem shows the new file once its last
/// byte has arrived. Nothing is sent for 0 bytes.
int kelvra_efs_write(int sub_id, const char* path, int path_len, const uint8_t* buf, uint32_t buf_len);

int kelvra_efs_delete(int sub_id, const char* path, int path_len);

/// Reads an item into `buf`; *buf_len as in kelvra_efs_read. An empty item is an error.
int kelvra_nv_read(int sub_id, int nv_id, uint8_t* buf, uint32_t* buf_len);

/// Writes an item of at most kNvItemMax bytes.
int kelvra_nv_write_ex(int sub_id, int nv_id, const uint8_t* buf, uint32_t buf_len);

int kelvra_nv_delete(int sub_id, int nv_id);

#include "kelvra_extend_nvefs.h"

#include <algorithm>
#include <cstring>

#include "kelvra_extend_cmn.h"
#include "kelvra_log.h"
#include "little_endian.h"
#include "lock.h"

namespace {

KELVRA_LOG_UNIT("kelvra_extend_nvefs");

enum Command : uint8_t {
    kNvRead = 1,
    kNvWrite = 2,
    kNvDelete = 3,
    kEfsRead = 4,
    kEfsWrite = 5,
    kEfsDelete = 6
};

// Payload of a request, always sent whole; what an operation does not use is zero.
struct Request {
    uint8_t command;
    uint8_t sub_id;
    uint8_t nv_id[2];
    uint8_t path_len;
    uint8_t path[kEfsPathMax];
    uint8_t data_len_all[4];
    uint8_t data_len_cur[4];
    uint8_t offset[4];  // bytes sent, or received, before this exchange
    uint8_t data[424];
};
static_assert(sizeof(Request) == kExtendPayloadMax && offsetof(Request, path) == 5 &&
                  offsetof(Request, data_len_all) == 76 && offsetof(Request, data_len_cur) == 80 &&
                  offsetof(Request, offset) == 84 && offsetof(Request, data) == 88,
              "layout");

// Payload of a response; what did not arrive is zero.
struct Response {
    uint8_t reserved[4];
    uint8_t data_len_all[4];
    uint8_t data_len_cur[4];
    uint8_t reserved_2[4];
    uint8_t result[4];
    uint8_t data[492];
};
static_assert(sizeof(Response) == kExtendPayloadMax && offsetof(Response, data_len_all) == 4 &&
                  offsetof(Response, data_len_cur) == 8 && offsetof(Response, result) == 16 &&
                  offsetof(Response, data) == 20,
              "layout");

constexpr uint32_t kResponseHeader = offsetof(Response, data);
constexpr uint32_t kWriteChunk = 414;
constexpr int kExchangesMax = 298;

static_assert(kNvItemMax <= sizeof(Request::data) && kWriteChunk <= sizeof(Request::data), "layout");
static_assert((kEfsFileLimit - 1 + kWriteChunk - 1) / kWriteChunk <= kExchangesMax,
              "the longest file is written in few enough exchanges");

// Held across a whole transfer, so that the chunks of two threads never interleave.
pthread_mutex_t g_efs_mutex = PTHREAD_MUTEX_INITIALIZER;

int response_fail(const char* function, int code) {
    KELVRA_LOGD_AS(function, "qmi response fail");
    return code;
}

// One exchange in the name of `function`. On success *data_len is the number of data bytes that arrived.
int exchange(const char* function, const Request& request, Response* response, uint32_t* data_len) {
    *response = {};
    uint32_t arrived = sizeof *response;
    const int result = kelvra_qmi_result_map(kelvra_extend_qmi_send_sync(
        REQUEST_ID_NV_EFS, reinterpret_cast<const uint8_t*>(&request), sizeof request, response, &arrived));
    const int rsp_result = get_le<int>(response->result);
    bool success = rsp_result == 0;
    if (request.command == kEfsWrite) {
        KELVRA_LOGD_AS(function, "result = %d, rsp.result[>=0 is instance id] = %d", result, rsp_result);
        success = rsp_result >= 0;
    } else {
        KELVRA_LOGD_AS(function, "result = %d, rsp.result = %d", result, rsp_result);
    }
    if (result != 0) {
        KELVRA_LOGD_AS(function, "kelvra_extend_qmi_send_sync fail%s",
                       request.command == kEfsRead ? ", ABORT" : "");
        return result;
    }
    if (arrived < kResponseHeader)
        return response_fail(function, kChannelFailed);
    if (!success)
        return response_fail(function, rsp_result);
    *data_len = arrived - kResponseHeader;
    return 0;
}

// An exchange that brings no data.
int exchange(const char* function, const Request& request) {
    Response response;
    uint32_t data_len = 0;
    return exchange(function, request, &response, &data_len);
}

int refuse(const char* function, const char* why, int code) {
    KELVRA_LOGD_AS(function, "%s", why);
    return code;
}

// What all file operations check first.
int check_path(const char* function, int sub_id, const char* path, int path_len) {
    if (sub_id < 0 || sub_id > 1)
        return refuse(function, "sub invalid", kEfsSubInvalid);
    if (path == nullptr)
        return refuse(function, "efs_path is null", kEfsPathNull);
    if (path_len < 1 || path_len > kEfsPathMax)
        return refuse(function, "len invalid", kEfsPathLenInvalid);
    return 0;
}

int check_read_buffer(const char* function, const uint8_t* buf, const uint32_t* buf_len) {
    if (buf == nullptr)
        return refuse(function, "buf is null", kEfsBufNull);
    if (buf_len == nullptr)
        return refuse(function, "p_buf_len is null", kEfsBufLenInvalid);
    if (*buf_len == 0)
        return refuse(function, "buf_len is invalid", kEfsBufLenInvalid);
    return 0;
}

int check_nv_id(const char* function, int nv_id) {
    if (nv_id >= 0 && nv_id <= kNvIdMax)
        return 0;
    KELVRA_LOGD_AS(function, "nv_id is out range(%d)", kNvIdMax);
    return kNvIdOutOfRange;
}

Request file_request(const char* function, Command command, int sub_id, const char* path, int path_len) {
    KELVRA_LOGD_AS(function, "path_value: %.*s", path_len, path);
    Request request{};
    request.command = command;
    request.sub_id = static_cast<uint8_t>(sub_id);
    request.path_len = static_cast<uint8_t>(path_len);
    memcpy(request.path, path, static_cast<size_t>(path_len));
    return request;
}

Request item_request(Command command, int sub_id, int nv_id) {
    Request request{};
    request.command = command;
    request.sub_id = sub_id != 0 ? 1 : 0;
    put_le(request.nv_id, static_cast<uint16_t>(nv_id));
    return request;
}

// Fetches chunks until the file, the caller's buffer or a limit ends it. *buf_len counts the bytes in `buf`.
int read_chunks(Request request, uint8_t* buf, uint32_t capacity, uint32_t* buf_len) {
    constexpr char kFunction[] = "kelvra_efs_read";
    for (int read_count = 0; read_count < kExchangesMax; ++read_count) {
        const uint32_t data_len_recv = *buf_len;
        put_le(request.offset, data_len_recv);
        Response response;
        uint32_t data_len = 0;
        const int result = exchange(kFunction, request, &response, &data_len);
        if (result != 0)
            return result;
        const auto data_len_all = get_le<uint32_t>(response.data_len_all);
        const auto data_len_cur = get_le<uint32_t>(response.data_len_cur);
        if (data_len_cur > data_len)
            return response_fail(kFunction, kChannelFailed);
        KELVRA_LOGD_AS(
            kFunction,
            "data_len_all = %d, data_len_send = %d, data_len_recv = %d, read_count = %d, data_len_cur = %d",
            data_len_all, 0, data_len_recv, read_count, data_len_cur);

        const uint32_t copied = std::min(data_len_cur, capacity - data_len_recv);
        memcpy(buf + data_len_recv, response.data, copied);
        *buf_len = data_len_recv + copied;
        if (*buf_len == capacity) {
            KELVRA_LOGD_AS(kFunction, "%s",
                           capacity <= data_len_cur ? "errro, abort, buf_len <= req.data_len_cur"
                                                    : "abort, buf_len <= data_len_recv");
            return 0;
        }
        if (data_len_all <= *buf_len || *buf_len >= kEfsFileLimit)
            return 0;
        if (data_len_cur == 0)
            return refuse(kFunction, "abort, data_len_send <= 0", kEfsBufLenInvalid);
    }
    return 0;
}

}  // namespace

int kelvra_efs_read(int sub_id, const char* path, int path_len, uint8_t* buf, uint32_t* buf_len) {
    KELVRA_LOGD("kelvra_efs_read, sub_id %d, path_len: %d", sub_id, path_len);
    if (const int refused = check_path(__func__, sub_id, path, path_len))
        return refused;
    if (const int refused = check_read_buffer(__func__, buf, buf_len))
        return refused;
    const Lock lock(g_efs_mutex);
    const Request request = file_request(__func__, kEfsRead, sub_id, path, path_len);
    const uint32_t capacity = *buf_len;
    *buf_len = 0;
    return read_chunks(request, buf, capacity, buf_len);
}

int kelvra_efs_write(int sub_id, const char* path, int path_len, const uint8_t* buf, uint32_t buf_len) {
    KELVRA_LOGD("kelvra_efs_write, sub_id %d, path_len: %d, buf_len: %d", sub_id, path_len, buf_len);
    if (const int refused = check_path(__func__, sub_id, path, path_len))
        return refused;
    if (buf == nullptr)
        return refuse(__func__, "buf is null", kEfsBufNull);
    if (buf_len >= kEfsFileLimit)
        return refuse(__func__, "buf_len is invalid", kEfsBufLenInvalid);

    const Lock lock(g_efs_mutex);
    Request request = file_request(__func__, kEfsWrite, sub_id, path, path_len);
    put_le(request.data_len_all, buf_len);
    int send_count = 0;
    for (uint32_t data_len_send = 0; data_len_send < buf_len; data_len_send += kWriteChunk) {
        const uint32_t left = buf_len - data_len_send;
        const uint32_t send_num = std::min(left, kWriteChunk);
        memcpy(request.data, buf + data_len_send, send_num);
        memset(request.data + send_num, 0, sizeof request.data - send_num);
        put_le(request.data_len_cur, send_num);
        put_le(request.offset, data_len_send);
        KELVRA_LOGD("send_num(%d)", send_num);
        KELVRA_LOGD("left_num(%d)", left);
        KELVRA_LOGD(
            "data_len_all = %d, data_len_send = %d, data_len_recv = %d, send_count = %d, data_len_cur = %d",
            buf_len, data_len_send, 0, send_count++, send_num);
        if (const int result = exchange(__func__, request))
            return result;
    }
    return 0;
}

int kelvra_efs_delete(int sub_id, const char* path, int path_len) {
    KELVRA_LOGD("kelvra_efs_delete, sub_id %d, path_len: %d", sub_id, path_len);
    if (const int refused = check_path(__func__, sub_id, path, path_len))
        return refused;
    const Lock lock(g_efs_mutex);
    return exchange(__func__, file_request(__func__, kEfsDelete, sub_id, path, path_len));
}

int kelvra_nv_read(int sub_id, int nv_id, uint8_t* buf, uint32_t* buf_len) {
    KELVRA_LOGD("kelvra_nv_read, sub_id %d, nv_id: %d", sub_id, nv_id);
    if (const int refused = check_read_buffer(__func__, buf, buf_len))
        return refused;
    KELVRA_LOGD("buf_len: %d", *buf_len);
    if (const int refused = check_nv_id(__func__, nv_id))
        return refused;
    const uint32_t capacity = *buf_len;
    *buf_len = 0;
    Response response;
    uint32_t data_len = 0;
    if (const int result = exchange(__func__, item_request(kNvRead, sub_id, nv_id), &response, &data_len))
        return result;
    const auto data_len_all = get_le<uint32_t>(response.data_len_all);
    KELVRA_LOGD("rsp.data_len_all = %d", data_len_all);
    if (data_len_all == 0)
        return refuse(__func__, "rsp.data_len_all is invalid", kEfsBufLenInvalid);
    const uint32_t copied = std::min(data_len_all, capacity);
    if (copied > data_len)
        return response_fail(__func__, kChannelFailed);
    memcpy(buf, response.data, copied);
    *buf_len = copied;
    return 0;
}

int kelvra_nv_write_ex(int sub_id, int nv_id, const uint8_t* buf, uint32_t buf_len) {
    KELVRA_LOGD("kelvra_nv_write_ex, sub_id %d, nv_id: %d", sub_id, nv_id);
    KELVRA_LOGD("buf_len: %d", buf_len);
    if (const int refused = check_nv_id(__func__, nv_id))
        return refused;
    if (buf == nullptr)
        return refuse(__func__, "buf is null", kEfsBufNull);
    if (buf_len > kNvItemMax)
        return refuse(__func__, "buf_len is invalid", kEfsBufLenInvalid);
    Request request = item_request(kNvWrite, sub_id, nv_id);
    put_le(request.data_len_all, buf_len);
    memcpy(request.data, buf, buf_len);
    return exchange(__func__, request);
}

int kelvra_nv_delete(int sub_id, int nv_id) {
    KELVRA_LOGD("kelvra_nv_delete, sub_id %d, nv_id: %d", sub_id, nv_id);
    if (const int refused = check_nv_id(__func__, nv_id))
        return refused;
    return exchange(__func__, item_request(kNvDelete, sub_id, nv_id));
}

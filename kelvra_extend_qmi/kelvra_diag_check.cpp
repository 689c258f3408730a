#include <cstring>

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

// "XX ", in four bytes so that one store writes it.
struct HexByte {
    char text[4];
};

struct HexTable {
    HexByte bytes[256];
};

constexpr HexTable make_hex_table() {
    constexpr char kDigits[] = "0123456789ABCDEF";
    HexTable table{};
    for (unsigned i = 0; i < 256; ++i)
        table.bytes[i] = {{kDigits[i >> 4], kDigits[i & 0x0f], ' ', '\0'}};
    return table;
}

constexpr HexTable kHex = make_hex_table();

// The store of the last byte ends one beyond its blank.
constexpr size_t kHexTextSize = 3 * DIAG_CMD_MAX + 1;

void format_hex(const uint8_t* data, size_t len, char (&text)[kHexTextSize]) {
    char* out = text;
    for (size_t i = 0; i < len; ++i, out += 3)
        memcpy(out, kHex.bytes[data[i]].text, sizeof(HexByte));
    out[-1] = '\0';
}

const char* processor_name(int processor) {
    switch (processor) {
        case 0:
            return "MSM";
        case 1:
            return "MDM";
        case 2:
            return "MDM_2";
        default:
            return "Unknown";
    }
}

}  // namespace

void kelvra_print_data_with_hex(const uint8_t* data, int len) {
    KELVRA_LOG_SCOPE();
    if (data == nullptr) {
        KELVRA_LOGD("print_data_with_hex, data is null");
        return;
    }
    if (len < 1 || len > DIAG_CMD_MAX) {
        KELVRA_LOGD("print_data_with_hex, invalid data len(%d)", len);
        return;
    }
    char text[kHexTextSize];
    format_hex(data, static_cast<size_t>(len), text);
    KELVRA_LOGD("data hex show, len(%d), data: %s", len, text);
}

int kelvra_diag_comand_input_check(const uint8_t* data, int data_len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("diag_comand, data_len = %d", data_len);
    if (data == nullptr) {
        KELVRA_LOGD("data is null");
        return 1;
    }
    if (data_len < 1 || data_len > DIAG_CMD_MAX) {
        KELVRA_LOGD("Invalid input parameter, data_len = %d", data_len);
        return 1;
    }
    kelvra_print_data_with_hex(data, data_len);
    return 0;
}

int kelvra_diag_comand_output_check(const uint8_t* reply_buf, const int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    if (reply_buf == nullptr) {
        KELVRA_LOGD("reply_buf is null");
        return 1;
    }
    if (p_reply_len == nullptr) {
        KELVRA_LOGD("p_reply_len is null");
        return 1;
    }
    KELVRA_LOGD("reply_len = %d", *p_reply_len);
    if (*p_reply_len < 1) {
        KELVRA_LOGD("Invalid output parameter, reply_len = %d", *p_reply_len);
        return 1;
    }
    return 0;
}

int kelvra_diag_cmd_response_check(const uint8_t* ptr, int len, const void* context_data) {
    KELVRA_LOG_SCOPE();
    int processor = -1;
    if (context_data == nullptr)
        KELVRA_LOGD("context_data is null");
    else
        processor = *static_cast<const int*>(context_data);
    const char* const name = processor_name(processor);
    diag_set_channel_name(name);
    KELVRA_LOGD("================ response from %d[%s], len = %d ========================", processor, name,
                len);
    if (ptr == nullptr) {
        KELVRA_LOGD("ptr is null");
        return 1;
    }
    if (len < 1 || len > DIAG_RSP_BUF_MAX) {
        KELVRA_LOGD("Invalid parameter, len = %d", len);
        return 1;
    }
    kelvra_print_data_with_hex(ptr, len);
    return 0;
}

// The extension channel, file transfer and the counters of the statistics feature, by the calls below: one
// call of the input's choice, with arguments and buffer sizes from the input, then the modem's records.
#include "finding.h"
#include "group7_debug_info.h"
#include "kelvra_cmn_cmd_send.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_nvefs.h"
#include "modem.h"

namespace {

struct Path {
    explicit Path(Input& input) : text(input.short_block()), length(static_cast<int>(text.size())) {}
    const char* data() const { return reinterpret_cast<const char*>(text.data()); }

    std::vector<uint8_t> text;
    int length;
};

// A buffer of the size that the tool is told.
struct Buffer {
    explicit Buffer(Input& input) : bytes(input.u16()), length(static_cast<uint32_t>(bytes.size())) {}

    std::vector<uint8_t> bytes;
    uint32_t length;
};

struct Arguments {
    explicit Arguments(Input& input)
        : sub(input.u8() % 4 - 1), number(input.i32()), path(input), data(input.block()), buffer(input) {}

    int sub;
    int number;
    Path path;
    std::vector<uint8_t> data;
    Buffer buffer;

    uint32_t data_len() const { return static_cast<uint32_t>(data.size()); }
};

void check(const CommonResponse& response) {
    require(response.arrived <= kCommonResponseMax, "no more than fits is told");
    require(!response.is_whole() || response.result() != 0 || response.value_len() <= kCommonValueMax,
            "a whole value lies in the response");
}

void ask_by_code(Arguments& a) {
    CommonResponse response;
    kelvra_common_qmi_req(static_cast<uint32_t>(a.number), &response);
    check(response);
}

void ask_by_value(Arguments& a) {
    CommonResponse response;
    kelvra_send_common_qmi_msg(static_cast<uint32_t>(a.number), a.data_len(), a.data.data(), &response);
    check(response);
}

// The seeds know the calls by their places.
constexpr void (*kCalls[])(Arguments&) = {
    [](Arguments& a) {
        kelvra_extend_qmi_send_sync(static_cast<uint32_t>(a.number), a.data.data(),
                                    static_cast<int>(a.data.size()), a.buffer.bytes.data(), &a.buffer.length);
    },
    [](Arguments& a) {
        kelvra_efs_read(a.sub, a.path.data(), a.path.length, a.buffer.bytes.data(), &a.buffer.length);
    },
    [](Arguments& a) { kelvra_efs_write(a.sub, a.path.data(), a.path.length, a.data.data(), a.data_len()); },
    [](Arguments& a) { kelvra_efs_delete(a.sub, a.path.data(), a.path.length); },
    [](Arguments& a) { kelvra_nv_read(a.sub, a.number, a.buffer.bytes.data(), &a.buffer.length); },
    [](Arguments& a) { kelvra_nv_write_ex(a.sub, a.number, a.data.data(), a.data_len()); },
    [](Arguments& a) { kelvra_nv_delete(a.sub, a.number); },
    ask_by_code,
    ask_by_value,
    [](Arguments& a) {
        kelvra_cmn_cmd_send(a.number, a.data_len(), reinterpret_cast<const char*>(a.data.data()));
    },
    [](Arguments& a) { kelvra_test_modem_stats_get_debug_info_do(a.sub); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const auto call = kCalls[input.u8() % std::size(kCalls)];
    Arguments arguments(input);
    run_tool(input, [&] {
        call(arguments);
        require(arguments.buffer.length <= arguments.buffer.bytes.size(), "no more than fits is told");
    });
    return 0;
}

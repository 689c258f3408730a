// The statistics record: `u8 mode` (1: traced), then the record. With 2 in the mode the record is not parsed
// but walked through by steps such as a reader is made of, which stand in the record itself.
#include "finding.h"
#include "group7_stats.h"
#include "group7_unpack.h"
#include "modem.h"

namespace {

void take_step(Input& input) {
    constexpr uint32_t kSizes[] = {1, 2, 4, 8};
    const uint8_t choice = input.u8();
    const uint32_t size = kSizes[choice >> 4 & 3];
    bool done = true;
    switch (choice % 6) {
        case 0:
            done = unpk_i("field", size);
            break;
        case 1:
            base_with_bit(input.i32());
            break;
        case 2:
            done = unpk_set_bit(input.i32());
            break;
        case 3: {
            const int32_t bit = input.i32();
            print_cnt(bit, input.i32(), "field");
            break;
        }
        case 4: {
            const UnpkSpan span = {input.u64(), input.u64()};
            const int32_t low = static_cast<int16_t>(input.u16());
            done = unpk_mid(span, low, static_cast<int16_t>(input.u16()), "field", size);
            require(!done || size == 8 || g_unpk_value >> 8 * size == 0, "a field is no wider than its size");
            break;
        }
        default: {
            const int32_t bit = input.i32();
            done = unpk_at("field", bit, input.u8(), size);
        }
    }
    static_cast<void>(done);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int kStepsMax = 32;
    Input input(data, size);
    const uint8_t mode = input.u8();
    std::vector<uint8_t> record = Input(input).rest();
    record.resize(kUnpkBufferMin);
    Input no_answers(nullptr, 0);
    run_tool(no_answers, [&] {
        g_unpk_print = mode & 1;
        if ((mode & 2) == 0)
            return kelvra_test_modem_stats_parsing_process_do(record.data());
        unpk_start(record.data());
        for (int i = 0; i < kStepsMax && !input.empty(); ++i)
            take_step(input);
    });
    return 0;
}

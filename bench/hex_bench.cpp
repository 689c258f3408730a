// The hex printer of diag data against the conversion that it is built around: what a line costs beyond its
// digits, with the copies to the system log off.
#include <cstdint>
#include <vector>

#include "benches.h"
#include "kelvra_diag_send.h"
#include "kelvra_log.h"

namespace bench {
namespace {

std::vector<uint8_t> some_bytes(size_t count) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * 37);
    return bytes;
}

void convert(const std::vector<uint8_t>& bytes, char* out) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (const uint8_t byte : bytes) {
        *out++ = kDigits[byte >> 4];
        *out++ = kDigits[byte & 0x0f];
        *out++ = ' ';
    }
    out[-1] = '\0';
}

constexpr size_t kPart = DIAG_CMD_MAX / 4;

/// Its parts are kilobytes.
Side printer_side(size_t size) {
    const auto print = [bytes = some_bytes(size)] {
        kelvra_print_data_with_hex(bytes.data(), static_cast<int>(bytes.size()));
    };
    return {"hex printer, " + std::to_string(size) + " bytes", print, static_cast<double>(size) / kPart};
}

}  // namespace

void compare_hex_printer(Table& table) {
    const int state = g_adb_log_state.exchange(0);
    const auto convert_all = [bytes = some_bytes(DIAG_CMD_MAX)] {
        static char text[3 * DIAG_CMD_MAX];
        convert(bytes, text);
        keep(text);
    };
    const Side whole = printer_side(DIAG_CMD_MAX);
    table.compare(whole, {"table-driven conversion", convert_all, whole.parts}, 3);
    table.compare(whole, printer_side(kPart), kGrowthLimit);
    g_adb_log_state = state;
}

}  // namespace bench

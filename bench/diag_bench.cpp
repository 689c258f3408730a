// The hex printer against the conversion that it is built around: what a line of 4,096 bytes costs beyond its
// digits. Standard output is the device that swallows everything, as when a script throws the log away; the
// results go to standard error.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <iostream>
#include <vector>

#include "kelvra_diag_send.h"
#include "kelvra_log.h"

namespace {

char g_text[3 * DIAG_CMD_MAX + 1];

std::vector<uint8_t> some_bytes(int64_t count) {
    std::vector<uint8_t> bytes(static_cast<size_t>(count));
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * 37);
    return bytes;
}

void plain_conversion(benchmark::State& state) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const std::vector<uint8_t> bytes = some_bytes(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        char* out = g_text;
        for (const uint8_t byte : bytes) {
            *out++ = kDigits[byte >> 4];
            *out++ = kDigits[byte & 0x0f];
            *out++ = ' ';
        }
        out[-1] = '\0';
        benchmark::DoNotOptimize(g_text);
        benchmark::ClobberMemory();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(plain_conversion)->RangeMultiplier(4)->Range(256, DIAG_CMD_MAX)->Complexity(benchmark::oN);

void print_data_with_hex(benchmark::State& state) {
    const std::vector<uint8_t> bytes = some_bytes(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        kelvra_print_data_with_hex(bytes.data(), static_cast<int>(bytes.size()));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(print_data_with_hex)->RangeMultiplier(4)->Range(256, DIAG_CMD_MAX)->Complexity(benchmark::oN);

}  // namespace

int main(int argc, char** argv) {
    if (freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    g_adb_log_state = 0;
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    benchmark::Initialize(&argc, argv);
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    reporter.SetOutputStream(&std::cerr);
    reporter.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

// The record parser against the code that one would write by hand for a single layout: unaligned loads,
// shifts and masks. Both print their summary to the device that swallows everything; the results go to
// standard error, and the program fails when the parser costs more than three times the other.
#include <benchmark/benchmark.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>

#include "kelvra_modem_stats_record.h"
#include "kelvra_unpack.h"

namespace {

constexpr double kMaxRatio = 3;

// A record of version 4, each byte another one.
std::array<uint8_t, kUnpkBufferMin> make_record() {
    std::array<uint8_t, kUnpkBufferMin> record{};
    record[0] = 4;
    for (size_t i = 4; i < 48; ++i)
        record[i] = static_cast<uint8_t>(i * 37);
    return record;
}

template <typename T>
T load(const uint8_t* bytes) {
    T value;
    memcpy(&value, bytes, sizeof value);
    return value;
}

uint64_t field(const uint8_t* record, unsigned bit, unsigned width) {
    const auto word = load<uint64_t>(record + 4 + bit / 8) >> bit % 8;
    return width == 64 ? word : word & ((uint64_t{1} << width) - 1);
}

int number(uint64_t value) {
    return static_cast<int>(value);
}

void by_hand(benchmark::State& state) {
    auto buffer = make_record();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(buffer);
        const uint8_t* r = buffer.data();
        printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %" PRIu64 ", pci %d\n",
               number(load<uint32_t>(r)), number(field(r, 176, 16)), number(field(r, 192, 8)),
               number(field(r, 200, 16)), number(field(r, 224, 32)), field(r, 112, 64),
               number(field(r, 0, 16)));
        printf(
            "freq_band_ind = %d, dl_earfcn = %d, dl_bw %d, ul_earfcn %d, ul_bw %d, allow_access %d, scs %d\n",
            number(field(r, 256, 16)), number(field(r, 16, 32)), number(field(r, 80, 16)),
            number(field(r, 48, 32)), number(field(r, 96, 16)), number(field(r, 216, 8)), 0);
    }
}
BENCHMARK(by_hand);

void record_parser(benchmark::State& state) {
    auto buffer = make_record();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(buffer);
        unpk_start(buffer.data());
        if (!modem_stats_parse_xxxx_diag_xxxx())
            state.SkipWithError("the record does not parse");
    }
}
BENCHMARK(record_parser);

class Reporter : public benchmark::ConsoleReporter {
public:
    Reporter() : ConsoleReporter(OO_Tabular) {
        SetOutputStream(&std::cerr);
        SetErrorStream(&std::cerr);
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            times_[run.benchmark_name()] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    double ratio() { return times_["record_parser"] / times_["by_hand"]; }

private:
    std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
    if (freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    benchmark::Initialize(&argc, argv);
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double ratio = reporter.ratio();
    std::cerr << "record_parser / by_hand: " << ratio << " (at most " << kMaxRatio << ")\n";
    return ratio <= kMaxRatio ? 0 : 1;
}

// The readers of what was recorded: `u8 how`, then with bit 0 a trace, else the records of a wire log, which
// are printed as lines, as a capture file and as a trace. A trace is read, or refused with its file's and its
// line's name, and played from: what it has been asked it knows.
#include <cstdio>
#include <fstream>

#include "error.h"
#include "ground.h"
#include "input.h"
#include "show.h"
#include "trace_file.h"

namespace {

void write_file(const std::string& path, const std::vector<uint8_t>& content) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

void print_log(const Ground& ground, const std::string& trace) {
    handset::LogChoice choice;
    choice.pcap = ground.at("log.pcapng");
    handset::show_records(ground.path(), choice, false);
    for (const bool json : {false, true}) {
        require(freopen(trace.c_str(), "w", stdout) != nullptr, "the trace can be written");
        choice = {};
        choice.json = json;
        handset::show_records(ground.path(), choice, false);
    }
}

void play(const std::vector<handset::TraceEvent>& trace, bool fast) {
    handset::ReplayBook book(trace, fast, true);
    for (const handset::TraceEvent& event : trace) {
        book.opened(event.where);
        if (event.kind != handset::TraceEvent::kRequest || event.packet.size() < wire::kQmiHeaderSize)
            continue;
        const auto* const steps = book.next(event.where, event.packet, "line");
        require(steps != nullptr, "a trace knows its requests");
        for (const auto& step : *steps)
            handset::ReplayBook::answer_to(event.where, event.packet, step.packet);
    }
    require(book.unknown().empty(), "and has not missed any");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Ground ground;
    static const std::string trace = ground.at("trace");
    std::filesystem::create_directory(ground.at("log"));
    Input input(data, size);
    const uint8_t how = input.u8();
    const bool is_trace = (how & 1) != 0;
    write_file(is_trace ? trace : ground.at("log/wire.raw"), input.rest());
    try {
        if (!is_trace)
            print_log(ground, trace);
        play(handset::read_recording(trace).trace, (how & 2) != 0);
    } catch (const handset::Error& error) {
        require(is_trace, "what the log prints is a trace");
        require(std::string(error.what()).rfind(trace + ':', 0) == 0,
                "a refusal names the file and its line");
    }
    return 0;
}

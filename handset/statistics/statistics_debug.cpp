#include "statistics_debug.h"

#include <cstring>
#include <iterator>
#include <memory>

#include "common_request.h"
#include "core.h"
#include "profile_section.h"
#include "records.h"

namespace handset {
namespace {

// Common requests in the direct form, without a value.
constexpr uint32_t kDebugInfo = 20;         // u8 version, the counters
constexpr uint32_t kNotSupportedLogs = 27;  // u16 count, u16 log id each

constexpr size_t kPayloadMax = 496;
constexpr size_t kLogsMax = (kPayloadMax - 2) / 2;

// The counters' values, in their order.
constexpr uint64_t kDefaults[] = {1,    0,    1284, 3,   262144, 73728, 2,   62,  31,   7,     1,  17, 2,
                                  5203, 5201, 23,   3,   91377,  91370, 640, 639, 5210, 91401, 12, 8,  14,
                                  27,   41,   6,    5,   73,     71,    1,   2,   301,  300,   44, 43, 2210,
                                  2209, 98,   97,   640, 638,    512,   511, 128, 127,  1,     2,  9,  8};

uint64_t highest(const messages::DebugCounter& counter) {
    return UINT64_MAX >> (64 - 8 * counter.size);
}

wire::Bytes encode_counters(const DebugProfile& debug) {
    if (debug.raw)
        return *debug.raw;
    wire::Writer writer;
    writer.u8(debug.version);
    size_t index = 0;
    for (const messages::DebugCounter& counter : messages::debug_counters()) {
        if (debug.version >= counter.since)
            writer.number(debug.counters[index], counter.size);
        ++index;
    }
    return writer.take();
}

wire::Bytes encode_logs(const DebugProfile& debug) {
    wire::Writer writer;
    writer.u16(debug.log_num.value_or(static_cast<uint16_t>(debug.not_supported_logs.size())));
    for (const uint64_t id : debug.not_supported_logs)
        writer.u16(static_cast<uint16_t>(id));
    return writer.take();
}

}  // namespace

DebugProfile::DebugProfile() : counters(std::begin(kDefaults), std::end(kDefaults)) {}

void read_profile(Section& section, DebugProfile& debug) {
    section.integer("version", debug.version);
    for (const char* block : {"main", "diag", "cm", "uim"}) {
        section.object(block, [&](Section& fields) {
            size_t index = 0;
            for (const messages::DebugCounter& counter : messages::debug_counters()) {
                if (strcmp(counter.block, block) == 0)
                    fields.integer<uint64_t>(counter.name, debug.counters[index], 0, highest(counter));
                ++index;
            }
        });
    }
    section.integers("not_supported_logs", debug.not_supported_logs, kLogsMax, UINT16_MAX);
    section.integer("log_num", debug.log_num);
    if (!section.has("raw"))
        return;
    for (const char* part : {"version", "main", "diag", "cm", "uim"}) {
        if (section.has(part))
            section.fail("raw", std::string("\"") + part + "\" is given already");
    }
    section.bytes("raw", debug.raw.emplace(), kPayloadMax);
}

StatisticsDebug::StatisticsDebug(Core& core, CommonRequests& requests, const DebugProfile& profile) {
    const auto debug = std::make_shared<DebugProfile>(profile);
    const auto show = [&core, debug] {
        core.state().set("debug", "version", debug->version);
        core.state().set("debug", "feature", debug->counters.front() != 0 ? "on" : "off");
        core.state().set("debug", "not supported logs", debug->not_supported_logs.size());
    };
    show();
    core.control().add_setting("debug", [debug, show](Section& section) {
        DebugProfile changed = *debug;
        read_profile(section, changed);
        return [debug, show, changed] {
            *debug = changed;
            show();
        };
    });
    requests.add(CommonForm::kDirect, kDebugInfo, [debug](const CommonRequest&) {
        return CommonAnswer{kModemOk, encode_counters(*debug)};
    });
    requests.add(CommonForm::kDirect, kNotSupportedLogs, [debug](const CommonRequest&) {
        return CommonAnswer{kModemOk, encode_logs(*debug)};
    });
}

}  // namespace handset

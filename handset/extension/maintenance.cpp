#include "maintenance.h"

#include <memory>
#include <string>

#include "common_request.h"
#include "core.h"
#include "error.h"
#include "kept_state.h"

namespace handset {
namespace {

constexpr uint32_t kReset = 31;  // u32 kind
constexpr uint32_t kNvSync = 35;
constexpr uint32_t kResetForRestart = 0x1000;
constexpr uint32_t kResetForDump = 0x2000;

// What is counted in the folder, over all its handsets.
class Counters {
public:
    explicit Counters(Core& core) : core_(core), kept_(core.folder(), "maintenance") {
        for (const Counter& counter : kCounters) {
            if (const uint64_t count = kept_.number(counter.key, 0))
                core_.state().set("maintenance", counter.shown, count);
        }
    }

    uint64_t dump() { return count_up(kCounters[0]); }
    void reboot() { count_up(kCounters[1]); }
    void nv_sync() { count_up(kCounters[2]); }

private:
    struct Counter {
        const char* key;
        const char* shown;
    };
    static constexpr Counter kCounters[] = {
        {"dumps", "full dumps"}, {"reboots", "reboots"}, {"nv_syncs", "nv syncs"}};

    uint64_t count_up(const Counter& counter) {
        const uint64_t count = kept_.count_up(counter.key);
        core_.state().set("maintenance", counter.shown, count);
        return count;
    }

    Core& core_;
    KeptState kept_;
};

void write_dump(Core& core, Counters& counters) {
    const uint64_t number = counters.dump();
    const std::string name = "dump/" + std::to_string(number);
    const int error =
        core.folder().replace(core.folder().at(name), "full dump " + std::to_string(number) + " after " +
                                                          std::to_string(core.restarts()) +
                                                          " restarts since the handset was started\n");
    if (error != 0)
        complain(system_error("cannot write " + name, error).what());
    core.log_event("dump");
}

CommonAnswer reset(Core& core, Counters& counters, const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint32_t kind = reader.u32();
    if (kind != kResetForRestart && kind != kResetForDump)
        return {kModemMalformed, {}};
    // A crash takes the whole handset down, for a dump, when the modem may not restart alone.
    if (kind == kResetForDump && core.property("persist.vendor.ssr.restart_level") == "ALL_DISABLE") {
        write_dump(core, counters);
        counters.reboot();
        core.log_event("reboot");
    }
    core.restart_modem();
    return {};
}

}  // namespace

Maintenance::Maintenance(Core& core, CommonRequests& requests) {
    const auto counters = std::make_shared<Counters>(core);
    requests.add(CommonForm::kTlv, kReset,
                 [&core, counters](const CommonRequest& request) { return reset(core, *counters, request); });
    requests.add(CommonForm::kTlv, kNvSync, [counters](const CommonRequest&) {
        counters->nv_sync();
        return CommonAnswer();
    });
}

}  // namespace handset

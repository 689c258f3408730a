#include "maintenance.h"

#include <memory>
#include <string>

#include "common_request.h"
#include "core.h"
#include "error.h"
#include "kept_state.h"
#include "modem_files.h"

namespace handset {
namespace {

constexpr uint32_t kReset = 31;  // u32 kind
constexpr uint32_t kNvSync = 35;
constexpr uint32_t kResetForRestart = 0x1000;
constexpr uint32_t kResetForDump = 0x2000;

// The antenna configurations are kept as the numbers that were sent, little-endian:
//   rf_ant_port_config  u32 count, then each value as u32
//   ant_tx_config       u32 v_ant, u32 v_sys, u64 v_band_list
constexpr char kGpioFile[] = "/nv/item_files/modem/kelvra/rf_ant_port_config";
constexpr char kTxFile[] = "/nv/item_files/modem/antenna/ant_tx_config";
constexpr uint32_t kGpioValuesMax = 50;

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

CommonAnswer keep_in_file(ModemFiles& files, const std::string& path, wire::View content) {
    const ModemFileName file = files.efs_name(0, path);
    if (file.result != kModemOk)
        return {file.result, {}};
    return {files.write(file.name, content), {}};
}

CommonAnswer set_gpio(ModemFiles& files, const CommonRequest& request) {
    wire::Reader reader(request.value);
    reader.u32();
    const uint32_t count = reader.u32();
    const wire::View values = reader.bytes(size_t{4} * std::min(count, kGpioValuesMax));
    if (!reader.ok() || count > kGpioValuesMax)
        return {kModemMalformed, {}};
    wire::Writer content;
    content.u32(count).bytes(values);
    return keep_in_file(files, kGpioFile, content.data());
}

CommonAnswer set_tx_antenna(ModemFiles& files, const CommonRequest& request) {
    wire::Reader reader(request.value);
    reader.u32();
    const wire::View content = reader.bytes(16);
    if (!reader.ok())
        return {kModemMalformed, {}};
    return keep_in_file(files, kTxFile, content);
}

}  // namespace

Maintenance::Maintenance(Core& core, CommonRequests& requests, ModemFiles& files) {
    const auto counters = std::make_shared<Counters>(core);
    requests.add(CommonForm::kTlv, kReset,
                 [&core, counters](const CommonRequest& request) { return reset(core, *counters, request); });
    requests.add(CommonForm::kTlv, kNvSync, [counters](const CommonRequest&) {
        counters->nv_sync();
        return CommonAnswer();
    });
    requests.add(CommonForm::kGpio, 0,
                 [&files](const CommonRequest& request) { return set_gpio(files, request); });
    requests.add(CommonForm::kTxAntenna, 1,
                 [&files](const CommonRequest& request) { return set_tx_antenna(files, request); });
}

}  // namespace handset

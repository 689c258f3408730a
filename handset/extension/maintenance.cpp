#include "maintenance.h"

#include <cstdlib>
#include <string>

#include "common_request.h"
#include "core.h"
#include "error.h"
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

// Counts on where an earlier handset in this folder has stopped.
uint64_t count_up(Core& core, const std::string& what) {
    const std::string last = core.state().get("maintenance", what).value_or("0");
    const uint64_t count = strtoull(last.c_str(), nullptr, 10) + 1;
    core.state().set("maintenance", what, count);
    return count;
}

void write_dump(Core& core) {
    const uint64_t number = count_up(core, "full dumps");
    const std::string name = "dump/" + std::to_string(number);
    const int error = core.folder().replace(core.folder().at(name),
                                            "full dump " + std::to_string(number) + " after " +
                                                core.state().get("modem", "restarts").value_or("0") +
                                                " restarts since the handset was started\n");
    if (error != 0)
        complain(system_error("cannot write " + name, error).what());
    core.log_event("dump");
}

CommonAnswer reset(Core& core, const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint32_t kind = reader.u32();
    if (kind != kResetForRestart && kind != kResetForDump)
        return {kModemMalformed, {}};
    // A crash takes the whole handset down, for a dump, when the modem may not restart alone.
    if (kind == kResetForDump && core.property("persist.vendor.ssr.restart_level") == "ALL_DISABLE") {
        write_dump(core);
        count_up(core, "reboots");
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

void add_maintenance(Core& core, CommonRequests& requests, ModemFiles& files) {
    requests.add(CommonForm::kTlv, kReset,
                 [&core](const CommonRequest& request) { return reset(core, request); });
    requests.add(CommonForm::kTlv, kNvSync, [&core](const CommonRequest&) {
        count_up(core, "nv syncs");
        return CommonAnswer();
    });
    requests.add(CommonForm::kGpio, 0,
                 [&files](const CommonRequest& request) { return set_gpio(files, request); });
    requests.add(CommonForm::kTxAntenna, 1,
                 [&files](const CommonRequest& request) { return set_tx_antenna(files, request); });
}

}  // namespace handset

#include "maintenance.h"

#include <cstdlib>
#include <string>

#include "error.h"
#include "handset.h"

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
uint64_t count_up(Handset& handset, const std::string& what) {
    const std::string last = handset.state().get("maintenance", what).value_or("0");
    const uint64_t count = strtoull(last.c_str(), nullptr, 10) + 1;
    handset.state().set("maintenance", what, count);
    return count;
}

void write_dump(Handset& handset) {
    const uint64_t number = count_up(handset, "full dumps");
    const std::string name = "dump/" + std::to_string(number);
    const int error = handset.folder().replace(handset.folder().at(name),
                                               "full dump " + std::to_string(number) + " after " +
                                                   handset.state().get("modem", "restarts").value_or("0") +
                                                   " restarts since the handset was started\n");
    if (error != 0)
        complain(system_error("cannot write " + name, error).what());
    handset.log_event("dump");
}

CommonAnswer reset(Handset& handset, const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint32_t kind = reader.u32();
    if (kind != kResetForRestart && kind != kResetForDump)
        return {kModemMalformed, {}};
    // A crash takes the whole handset down, for a dump, when the modem may not restart alone.
    if (kind == kResetForDump && handset.property("persist.vendor.ssr.restart_level") == "ALL_DISABLE") {
        write_dump(handset);
        count_up(handset, "reboots");
        handset.log_event("reboot");
    }
    handset.restart_modem();
    return {};
}

CommonAnswer keep_in_file(Handset& handset, const std::string& path, wire::View content) {
    const ModemFileName file = handset.files().efs_name(0, path);
    if (file.result != kModemOk)
        return {file.result, {}};
    return {handset.files().write(file.name, content), {}};
}

CommonAnswer set_gpio(Handset& handset, const CommonRequest& request) {
    wire::Reader reader(request.value);
    reader.u32();
    const uint32_t count = reader.u32();
    const wire::View values = reader.bytes(size_t{4} * std::min(count, kGpioValuesMax));
    if (!reader.ok() || count > kGpioValuesMax)
        return {kModemMalformed, {}};
    wire::Writer content;
    content.u32(count).bytes(values);
    return keep_in_file(handset, kGpioFile, content.data());
}

CommonAnswer set_tx_antenna(Handset& handset, const CommonRequest& request) {
    wire::Reader reader(request.value);
    reader.u32();
    const wire::View content = reader.bytes(16);
    if (!reader.ok())
        return {kModemMalformed, {}};
    return keep_in_file(handset, kTxFile, content);
}

}  // namespace

void add_maintenance(Handset& handset) {
    CommonRequests& requests = handset.common_requests();
    requests.add(CommonForm::kTlv, kReset,
                 [&handset](const CommonRequest& request) { return reset(handset, request); });
    requests.add(CommonForm::kTlv, kNvSync, [&handset](const CommonRequest&) {
        count_up(handset, "nv syncs");
        return CommonAnswer();
    });
    requests.add(CommonForm::kGpio, 0,
                 [&handset](const CommonRequest& request) { return set_gpio(handset, request); });
    requests.add(CommonForm::kTxAntenna, 1,
                 [&handset](const CommonRequest& request) { return set_tx_antenna(handset, request); });
}

}  // namespace handset

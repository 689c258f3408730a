#include "antenna.h"

#include <algorithm>
#include <string>

#include "common_request.h"
#include "modem_files.h"

namespace handset {
namespace {

// The antenna configurations are kept as the numbers that were sent, little-endian:
//   rf_ant_port_config  u32 count, then each value as u32
//   ant_tx_config       u32 v_ant, u32 v_sys, u64 v_band_list
constexpr char kGpioFile[] = "/nv/item_files/modem/kelvra/rf_ant_port_config";
constexpr char kTxFile[] = "/nv/item_files/modem/antenna/ant_tx_config";
constexpr uint32_t kGpioValuesMax = 50;

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

Antenna::Antenna(CommonRequests& requests, ModemFiles& files) {
    requests.add(CommonForm::kGpio, 0,
                 [&files](const CommonRequest& request) { return set_gpio(files, request); });
    requests.add(CommonForm::kTxAntenna, 1,
                 [&files](const CommonRequest& request) { return set_tx_antenna(files, request); });
}

}  // namespace handset

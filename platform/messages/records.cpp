#include "records.h"

#include <iterator>

namespace messages {
namespace {

using F = RecordField;

constexpr F kLteFields[] = {
    {"version", F::kU8},     {"version_ssmr", F::kU8}, {"earfcn", F::kU32},   {"pci", F::kU16},
    {"is_srv_cell", F::kU8}, {"rx_valid", F::kU16},    {"rsrp_rx0", F::kF32}, {"rsrq_rx0", F::kF32},
    {"rssi_rx0", F::kF32},   {"snr_rx0", F::kF32},     {"rsrp_rx1", F::kF32}, {"rsrq_rx1", F::kF32},
    {"rssi_rx1", F::kF32},   {"snr_rx1", F::kF32},     {"rsrp_rx2", F::kF32}, {"rsrq_rx2", F::kF32},
    {"rssi_rx2", F::kF32},   {"snr_rx2", F::kF32},     {"rsrp_rx3", F::kF32}, {"rsrq_rx3", F::kF32},
    {"rssi_rx3", F::kF32},   {"snr_rx3", F::kF32},
};

constexpr F kNrRssiFields[] = {
    {"version", F::kU32}, {"rssi0", F::kF32}, {"rssi1", F::kF32}, {"rssi2", F::kF32}, {"rssi3", F::kF32},
};

constexpr F kNrSnrFields[] = {
    {"version", F::kU32}, {"snr0", F::kF32}, {"snr1", F::kF32}, {"snr2", F::kF32}, {"snr3", F::kF32},
};

constexpr F kNrRsrpFields[] = {
    {"version", F::kU32},  {"rsrp_rx0", F::kF32}, {"rsrp_rx1", F::kF32},
    {"rsrp_rx2", F::kF32}, {"rsrp_rx3", F::kF32}, {"rsrq", F::kF32},
};

constexpr F kNrAntDiversityFields[] = {
    {"version", F::kU32},     {"ant_rx_0_old", F::kU8}, {"ant_rx_0_new", F::kU8}, {"ant_rx_1_old", F::kU8},
    {"ant_rx_1_new", F::kU8}, {"ant_rx_2_old", F::kU8}, {"ant_rx_2_new", F::kU8}, {"ant_rx_3_old", F::kU8},
    {"ant_rx_3_new", F::kU8}, {"ant_tx_0_old", F::kU8}, {"ant_tx_0_new", F::kU8}, {"ant_tx_1_old", F::kU8},
    {"ant_tx_1_new", F::kU8},
};

constexpr F kWcdmaFields[] = {
    {"version", F::kU8},
    {"rx_agc_0", F::kF32},
    {"rx_agc_1", F::kF32},
};

constexpr F kGsmFields[] = {
    {"version", F::kU8},
    {"rx_prx", F::kF32},
    {"rx_drx", F::kF32},
};

constexpr F kAntInfoFields[] = {
    {"version", F::kU8},   {"ant_number", F::kU8}, {"ant_switch_path", F::kU16},
    {"sig_path", F::kU16}, {"old_config", F::kU8}, {"new_config", F::kU8},
};

constexpr DebugCounter kCounters[] = {
    {"main", "g_modem_stats_feature_enable_status", 1, 0},
    {"main", "g_unpk_version_not_support_num", 8, 0},
    {"main", "g_modem_stats_cmd_ok_count", 8, 0},
    {"main", "g_modem_stats_cmd_fail_count", 8, 0},
    {"main", "kolvo_system_heapi_mem_max_num", 8, 2},
    {"main", "kolvo_system_heapi_mem_cur_num", 8, 2},
    {"main", "modem_statsi_cmd_q_count", 4, 2},
    {"main", "modem_statsi_cmd_free_q_count", 4, 2},
    {"main", "g_kolvo_log_mask", 4, 4},
    {"main", "g_kolvo_log_stats_mask", 4, 4},
    {"diag", "init_state", 1, 0},
    {"diag", "listener_event_num", 4, 0},
    {"diag", "listener_event_state", 1, 0},
    {"diag", "listener_event_call_num", 4, 0},
    {"diag", "listener_event_parse_num", 4, 0},
    {"diag", "listener_log_num", 4, 0},
    {"diag", "listener_log_state", 1, 0},
    {"diag", "listener_log_call_num", 8, 0},
    {"diag", "listener_log_parse_num", 8, 0},
    {"diag", "poll_update_call_num", 4, 0},
    {"diag", "poll_update_parse_num", 4, 0},
    {"diag", "listener_event_callback_num", 8, 1},
    {"diag", "listener_log_callback_num", 8, 1},
    {"diag", "lte_cell_id_invalid_num", 4, 1},
    {"diag", "nr5g_cell_id_invalid_num", 4, 1},
    {"diag", "event_duration_ms_max", 4, 2},
    {"diag", "log_duration_ms_max", 4, 2},
    {"diag", "do_duration_ms_max", 4, 2},
    {"diag", "debug_call_num", 4, 2},
    {"diag", "debug_parse_num", 4, 2},
    {"diag", "cust_event_call_num", 4, 3},
    {"diag", "cust_event_parse_num", 4, 3},
    {"cm", "init_state", 1, 0},
    {"cm", "listener_state", 1, 0},
    {"cm", "listener_call_event_call_num", 4, 0},
    {"cm", "listener_call_event_parse_num", 4, 0},
    {"cm", "listener_subs_event_call_num", 4, 0},
    {"cm", "listener_subs_event_parse_num", 4, 0},
    {"cm", "listener_ss_event_call_num", 4, 0},
    {"cm", "listener_ss_event_parse_num", 4, 0},
    {"cm", "listener_stats_event_call_num", 4, 0},
    {"cm", "listener_stats_event_parse_num", 4, 0},
    {"cm", "poll_update_rf_call_num", 4, 0},
    {"cm", "poll_update_rf_parse_num", 4, 0},
    {"cm", "poll_update_lte_call_num", 4, 0},
    {"cm", "poll_update_lte_parse_num", 4, 0},
    {"cm", "poll_update_nr5g_call_num", 4, 0},
    {"cm", "poll_update_nr5g_parse_num", 4, 0},
    {"uim", "init_state", 1, 0},
    {"uim", "listener_state", 1, 0},
    {"uim", "listener_event_call_num", 4, 0},
    {"uim", "listener_event_parse_num", 4, 0},
};

}  // namespace

const RecordLayout kLteRecord{kLteFields, kLteFields + std::size(kLteFields)};
const RecordLayout kNrRssiRecord{kNrRssiFields, kNrRssiFields + std::size(kNrRssiFields)};
const RecordLayout kNrSnrRecord{kNrSnrFields, kNrSnrFields + std::size(kNrSnrFields)};
const RecordLayout kNrRsrpRecord{kNrRsrpFields, kNrRsrpFields + std::size(kNrRsrpFields)};
const RecordLayout kNrAntDiversityRecord{kNrAntDiversityFields,
                                         kNrAntDiversityFields + std::size(kNrAntDiversityFields)};
const RecordLayout kWcdmaRecord{kWcdmaFields, kWcdmaFields + std::size(kWcdmaFields)};
const RecordLayout kGsmRecord{kGsmFields, kGsmFields + std::size(kGsmFields)};
const RecordLayout kAntInfoRecord{kAntInfoFields, kAntInfoFields + std::size(kAntInfoFields)};

namespace {

constexpr Record kRecords[] = {
    {82, &kLteRecord, 0},              // 4G, primary carrier
    {103, &kLteRecord, 1},             // 4G, secondary carriers 1 to 6
    {104, &kLteRecord, 2},             //
    {105, &kLteRecord, 3},             //
    {106, &kLteRecord, 4},             //
    {107, &kLteRecord, 5},             //
    {108, &kLteRecord, 6},             //
    {94, &kNrRssiRecord, 0},           // 5G, primary carrier
    {112, &kNrSnrRecord, 0},           //
    {113, &kNrAntDiversityRecord, 0},  //
    {135, &kNrRsrpRecord, 0},          //
    {6, &kNrRsrpRecord, 1},            // 5G, secondary carriers 1 and 2
    {7, &kNrRsrpRecord, 2},            //
    {110, &kWcdmaRecord, 0},           //
    {111, &kGsmRecord, 0},             //
    {100, &kAntInfoRecord, 0},         //
};

}  // namespace

Rows<Record> records() {
    return {kRecords, kRecords + std::size(kRecords)};
}

const Record* record(uint32_t id) {
    for (const Record& row : kRecords) {
        if (row.id == id)
            return &row;
    }
    return nullptr;
}

Rows<DebugCounter> debug_counters() {
    return {kCounters, kCounters + std::size(kCounters)};
}

}  // namespace messages

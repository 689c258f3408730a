The parser of statistics records, and what the statistics feature says of itself.

  $ . "$TESTDIR/setup.sh"

The built-in record, which needs no modem, without and with the trace of every step.

  $ vxk 7 0 0
  length = 48, print_flag = 0
  version = 196609, mcc = 29440, mnc_num 128, mnc 704, tac 497189504, cgi 2028284490176, pci 51666
  freq_band_ind = 64, dl_earfcn = 27450241, dl_bw 1280, ul_earfcn 24836608, ul_bw 1280, allow_access 128, scs 0
  $ vxk 7 0 1 | head -11; vxk 7 0 1 | wc -l
  length = 48, print_flag = 1
      UNPK_I, name: version, val: 196609(0x010003), val_size: 4, unpk_cnt: 4, data_base: 0, base_bit: 0
  BASE_WITH_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(0), bit(32), id(0x0)
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(31), bit(250), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 31, low: 3, high: 18, param: 250, name: mcc
      UNPK_I, name: mcc_tmp1, val: 721138937611013120(0x00CC01020B00020A), val_size: 8, unpk_cnt: 39, data_base: 4, base_bit: 32
      UNPK_I, name: mcc_tmp2, val: 16807562(0x8A760001), val_size: 8, unpk_cnt: 47, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 9403656771257529088, new_val: 29440, bit_num: 126, name: mcc, id(0x0)
  UNPK_LOW, old_val: 9403656771257529088, new_val: 29440, bit_num: 16, mask_max(0xffff), old_size(2), name: mcc, id(0x0)
  UNPK_MID, old_val: 9403656771257529088, new_val: 29440, low: 3, high: 18, name: mcc, id(0x0)
      UNPK_AT, name: mcc, val: 29440(0x0073), low: 3, high: 18, bit_start: 250, bit_num: 16
  101

The verdict: the feature runs, is switched off, or meets diag logs that it does not know.

  $ boot
  $ past_channel 7 1 0
  Get the debug info of modem_stats, mask = 0x0
  RIL[kelvra_common_qmi_req:#]: function entry ------------->
  RIL[kelvra_common_qmi_req:#]: function exit <-------------
  UNPK[size:1], version = 4
  UNPK[size:1], modem_stats_feature_enable_status = 1
  UNPK[size:8], version_not_support_num = 0
  UNPK[size:8], modem_stats_cmd_ok_count = 1284
  UNPK[size:8], modem_stats_cmd_fail_count = 3
  ===========================================
  ================ SUCCES ===================
  
  $ boot '{"debug": {"version": 0, "main": {"g_modem_stats_feature_enable_status": 0, "g_unpk_version_not_support_num": 4}}}'
  $ answer 7 1 0 | tail -1
  ================ CLOSED ===================
  $ vxk-handset log | grep -o 'code=[0-9]*'
  code=20
  $ boot '{"debug": {"version": 3, "main": {"g_unpk_version_not_support_num": "0xFFFFFFFFFFFFFFFF"},
  >        "not_supported_logs": ["0xB0C0", "0x1A", 65535]}}'
  $ answer 7 1 0 | folded
  Get the debug info of modem_stats, mask = 0x0 | UNPK[size:1], version = 3 | UNPK[size:1], modem_stats_feature_enable_status = 1 | UNPK[size:8], version_not_support_num = 18446744073709551615 | UNPK[size:8], modem_stats_cmd_ok_count = 1284 | UNPK[size:8], modem_stats_cmd_fail_count = 3 | UNPK[size:2], log_num = 3 | =========================================== | ================= FAIL ==================== | =========================================== | Diag logs to be upgraded[num:3]: | log_id[0]: 0xB0C0 | log_id[1]: 0x001A | log_id[2]: 0xFFFF
  $ vxk-handset log | grep -o 'code=[0-9]*'
  code=20
  code=27
  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}}}'
  $ answer 7 1 0 | tail -n +7 | folded
  UNPK[size:2], log_num = 0 | =========================================== | ================= FAIL ==================== | =========================================== | Diag logs to be upgraded[num:0]:

Of a list that is not as long as it says there are the logs that came.

  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}, "log_num": 65535, "not_supported_logs": [1, 2]}}'
  $ answer 7 1 0 | tail -n +7 | folded
  UNPK[size:2], log_num = 65535 | =========================================== | ================= FAIL ==================== | =========================================== | Diag logs to be upgraded[num:65535]: | log_id[0]: 0x0001 | log_id[1]: 0x0002
  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}, "log_num": 1, "not_supported_logs": [1, 2, 3]}}'
  $ answer 7 1 0 | tail -2
  Diag logs to be upgraded[num:1]:
  log_id[0]: 0x0001

All counters of version 4, a block a line; what earlier ones lack, with the place where each block ends. Later ones have no more.

  $ blocks() { boot "{\"debug\": {\"version\": $1}}"; answer 7 1 1 > v$1; sed -E 's/UNPK\[size:([0-9])\], /\1 /' v$1; }
  $ blocks 4 > v; awk '{ printf "%s%s", $0, /end/ ? "\n" : "; " }' v
  Get the debug info of modem_stats, mask = 0x1; 1 version = 4; -------- stats main info start --------; 1 g_modem_stats_feature_enable_status = 1; 8 g_unpk_version_not_support_num = 0; 8 g_modem_stats_cmd_ok_count = 1284; 8 g_modem_stats_cmd_fail_count = 3; 8 kolvo_system_heapi_mem_max_num = 262144; 8 kolvo_system_heapi_mem_cur_num = 73728; 4 modem_statsi_cmd_q_count = 2; 4 modem_statsi_cmd_free_q_count = 62; 4 g_kolvo_log_mask = 31; 4 g_kolvo_log_stats_mask = 7; -------- stats main info end, cnt(58) --------
  -------- stats diag info start --------; 1 init_state = 1; 4 listener_event_num = 17; 1 listener_event_state = 2; 4 listener_event_call_num = 5203; 4 listener_event_parse_num = 5201; 4 listener_log_num = 23; 1 listener_log_state = 3; 8 listener_log_call_num = 91377; 8 listener_log_parse_num = 91370; 4 poll_update_call_num = 640; 4 poll_update_parse_num = 639; 8 listener_event_callback_num = 5210; 8 listener_log_callback_num = 91401; 4 lte_cell_id_invalid_num = 12; 4 nr5g_cell_id_invalid_num = 8; 4 event_duration_ms_max = 14; 4 log_duration_ms_max = 27; 4 do_duration_ms_max = 41; 4 debug_call_num = 6; 4 debug_parse_num = 5; 4 cust_event_call_num = 73; 4 cust_event_parse_num = 71; -------- stats diag info end, cnt(153) --------
  -------- stats cm info start --------; 1 init_state = 1; 1 listener_state = 2; 4 listener_call_event_call_num = 301; 4 listener_call_event_parse_num = 300; 4 listener_subs_event_call_num = 44; 4 listener_subs_event_parse_num = 43; 4 listener_ss_event_call_num = 2210; 4 listener_ss_event_parse_num = 2209; 4 listener_stats_event_call_num = 98; 4 listener_stats_event_parse_num = 97; 4 poll_update_rf_call_num = 640; 4 poll_update_rf_parse_num = 638; 4 poll_update_lte_call_num = 512; 4 poll_update_lte_parse_num = 511; 4 poll_update_nr5g_call_num = 128; 4 poll_update_nr5g_parse_num = 127; -------- stats cm info end, cnt(211) --------
  -------- stats uim info start --------; 1 init_state = 1; 1 listener_state = 2; 4 listener_event_call_num = 9; 4 listener_event_parse_num = 8; -------- stats uim info end, cnt(221) --------
  $ for version in 0 1 2 3 255; do blocks $version > w; diff v w | grep -oE '[a-z_0-9]*(max|mask|num|count) |cnt.*' | uniq | xargs; done
  kolvo_system_heapi_mem_max_num kolvo_system_heapi_mem_cur_num modem_statsi_cmd_q_count modem_statsi_cmd_free_q_count g_kolvo_log_mask g_kolvo_log_stats_mask cnt(58) -------- cnt(26) -------- listener_event_callback_num listener_log_callback_num lte_cell_id_invalid_num nr5g_cell_id_invalid_num event_duration_ms_max log_duration_ms_max do_duration_ms_max debug_call_num debug_parse_num cust_event_call_num cust_event_parse_num cnt(153) -------- cnt(69) -------- cnt(211) -------- cnt(127) -------- cnt(221) -------- cnt(137) --------
  kolvo_system_heapi_mem_max_num kolvo_system_heapi_mem_cur_num modem_statsi_cmd_q_count modem_statsi_cmd_free_q_count g_kolvo_log_mask g_kolvo_log_stats_mask cnt(58) -------- cnt(26) -------- event_duration_ms_max log_duration_ms_max do_duration_ms_max debug_call_num debug_parse_num cust_event_call_num cust_event_parse_num cnt(153) -------- cnt(93) -------- cnt(211) -------- cnt(151) -------- cnt(221) -------- cnt(161) --------
  g_kolvo_log_mask g_kolvo_log_stats_mask cnt(58) -------- cnt(50) -------- cust_event_call_num cust_event_parse_num cnt(153) -------- cnt(137) -------- cnt(211) -------- cnt(195) -------- cnt(221) -------- cnt(205) --------
  g_kolvo_log_mask g_kolvo_log_stats_mask cnt(58) -------- cnt(50) -------- cnt(153) -------- cnt(145) -------- cnt(211) -------- cnt(203) -------- cnt(221) -------- cnt(213) --------
  

Counters at their limits, and the mask as it was given.

  $ boot '{"debug": {"version": 1, "diag": {"listener_log_call_num": "0xFFFFFFFFFFFFFFFF", "listener_event_num": 4294967295},
  >        "uim": {"init_state": 255}}}'
  $ vxk 7 1 5 | grep -E 'mask|listener_(log_call|event)_num|= 255' | folded
  Get the debug info of modem_stats, mask = 0x5 | UNPK[size:4], listener_event_num = 4294967295 | UNPK[size:8], listener_log_call_num = 18446744073709551615 | UNPK[size:1], init_state = 255
  $ vxk 7 1 -1 | head -1
  Get the debug info of modem_stats, mask = 0xffffffff

Payloads that end too early: none, the version alone, one byte less than the verdict needs, what it needs, one byte less than the
counters of version 0 need.

  $ bytes() { printf "$1 %.0s" $(seq "$2"); }
  $ for raw in '' 04 "00 $(bytes 01 24)" "00 01 $(bytes 00 24)" "00 $(bytes 00 135)"; do
  >   boot "{\"debug\": {\"raw\": \"$raw\"}}"; { answer 7 1 0; answer 7 1 1; } | grep -oE ".* = -103, .*|[a-z_]* = [0-9]+$|CLOSED|SUCCES" | xargs
  > done
  kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0 kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0
  kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0 kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0
  kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0 kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0
  version = 0 modem_stats_feature_enable_status = 1 version_not_support_num = 0 modem_stats_cmd_ok_count = 0 modem_stats_cmd_fail_count = 0 SUCCES kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0
  version = 0 modem_stats_feature_enable_status = 0 version_not_support_num = 0 modem_stats_cmd_ok_count = 0 modem_stats_cmd_fail_count = 0 CLOSED kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -103, rsp.result = 0

The request for the list fails: in the channel, in the modem, with an answer that is too short.

  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}}, "faults": [
  >   {"service": "extension", "code": 27, "action": "result", "result": 5},
  >   {"service": "extension", "code": 27, "action": "modem_result", "result": 9},
  >   {"service": "extension", "code": 27, "action": "payload", "bytes": "00 00 00 00 00 00 00 00 1B 00 00 00 01 00 00 00 01"}]}'
  $ for fault in 1 2 3; do answer 7 1 0 | tail -n +7; done
  5 QMI service framework error. Check client
  kelvra_common_qmi_req fail, result = -3, rsp_not_support.result = 0
  qmi response fail, result = 9, rsp_not_support.result = 9
  kelvra_common_qmi_req fail, result = -103, rsp_not_support.result = 0

Command lines that are wrong.

  $ for words in 0 1; do vxk 7 $words | helpless | folded; done
   | note: Too few parameters, Pls refer to the following cmd: | kelvra_test_modem_stats_parsing_process FAIL | 
   | note: Too few parameters, Pls refer to the following cmd: | kelvra_test_modem_stats_get_debug_info FAIL | 
